// The caching rule that every query follows: ask the board only when the section's stamp has expired. What a
// query asks for and how long it waits is data, a line each; what is done with the answer is the query's
// section, or a function of its own where the answer needs taking apart.
#ifndef TARN_MODULE_STORE_CACHED_QUERY_H
#define TARN_MODULE_STORE_CACHED_QUERY_H

#include <algorithm>
#include <cstring>

#include "module/common/envelope.h"
#include "module/common/log.h"
#include "module/store/sections.h"

namespace tarn {

// When a section is stamped, and so how soon it is asked for again.
enum class Stamped : std::uint8_t {
    before,      // the attempt
    afterwards,  // after the attempt, whether or not an answer came
    by_answer,   // after an answer only: without one the next read asks again
};

// What a section shows after a failed attempt.
enum class OnFailure : std::uint8_t { keeps, clears };

inline constexpr int standard_period = 0;  // the host's

// How a query goes about it.
struct Pace {
    int timeout_ms = default_timeout_ms;
    int period_seconds = standard_period;
    Stamped stamped = Stamped::afterwards;
    OnFailure on_failure = OnFailure::keeps;

    [[nodiscard]] bool due(const Stamp &stamp) const {
        return period_seconds == standard_period ? stamp.expired() : stamp.expired(period_seconds);
    }
};
inline constexpr Pace usual_pace{};

// `place` is a topic's Section, its Sections (one a channel, port or ONT) or, for an answer that is taken
// apart, the Stamp or Stamps of what is taken.
template <class Place, class Topic>
struct Query {
    std::uint16_t command;
    std::uint8_t destination;
    Pace pace;
    Place Topic::*place;
    std::size_t record_at = payload;  // where the section's record begins in the answer
};
template <class Place, class Topic>
Query(std::uint16_t, std::uint8_t, Pace, Place Topic::*, std::size_t = payload) -> Query<Place, Topic>;

// What a request asks for: its bytes after the header.
template <std::size_t Length>
using Selector = std::array<std::uint8_t, Length>;
inline constexpr Selector<0> everything{};
inline constexpr Selector<1> every_channel{255};

// Where an operation was called: answers are freed under the caller's name.
struct Caller {
    const char *operation;
    const char *file;
    int line;

    Caller(const char *name, const char *from = __builtin_FILE(), int at = __builtin_LINE())
        : operation(name), file(from), line(at) {}
};

// One request where it is due. `take` gets an answer of at least `minimum` bytes; when it returns false,
// nothing counts as asked for.
template <class Place, class Topic, std::size_t Length, class Take>
void ask_when_due(const Query<Place, Topic> &query, Stamp &stamp, int slot, const Selector<Length> &selector,
                  std::size_t minimum, const Caller &caller, Take take) {
    if (!query.pace.due(stamp)) {
        return;
    }
    if (query.pace.stamped == Stamped::before) {
        stamp.set();
    }
    Request<payload + Length> request(query.command, query.destination);
    std::copy(selector.begin(), selector.end(), request.bytes.begin() + payload);
    const Answer answer =
        ask(request, caller.operation, slot, minimum, query.pace.timeout_ms, caller.file, caller.line);
    if (answer) {
        if (!take(answer)) {
            return;
        }
        stamp.filled = true;
    }
    if (query.pace.stamped == Stamped::afterwards || (query.pace.stamped == Stamped::by_answer && answer)) {
        stamp.set();
    }
}

template <class Place, class Topic, std::size_t Size, std::size_t Length>
std::uint8_t *refresh_section(const Query<Place, Topic> &query, Section<Size> &section, int slot,
                              const Selector<Length> &selector, std::size_t size, const Caller &caller) {
    std::uint8_t *record = section.record.data();
    if (!query.pace.due(section.stamp)) {
        return record;
    }
    if (query.pace.on_failure == OnFailure::clears) {
        std::memset(record, 0, size);
    }
    ask_when_due(query, section.stamp, slot, selector, query.record_at + size, caller,
                 [&](const Answer &answer) {
                     answer.copy(record, query.record_at, size);
                     return true;
                 });
    return record;
}

// Each refreshes what its query stands for and returns it, or null without a database.

// A section; of one that is longer than the answer's record, the first `size` bytes.
template <std::size_t Size, class Topic, std::size_t Length = 0>
std::uint8_t *refresh(const Query<Section<Size>, Topic> &query, int slot, const Caller &caller,
                      const Selector<Length> &selector = everything, std::size_t size = Size) {
    Topic *topic = slot_sections<Topic>(slot);
    return topic != nullptr ? refresh_section(query, topic->*query.place, slot, selector, size, caller)
                            : nullptr;
}

// One of several sections; null also for an index that none has.
template <std::size_t Size, std::size_t Count, class Topic, std::size_t Length>
std::uint8_t *refresh(const Query<Sections<Size, Count>, Topic> &query, int slot, int index,
                      const Selector<Length> &selector, const Caller &caller) {
    Topic *topic = slot_sections<Topic>(slot);
    const auto place = static_cast<std::size_t>(index);
    return topic != nullptr && place < Count
               ? refresh_section(query, (topic->*query.place)[place], slot, selector, Size, caller)
               : nullptr;
}

// A topic of which `take` fills its part from an answer of at least `minimum` bytes.
template <class Topic, std::size_t Length, class Take>
Topic *refresh(const Query<Stamp, Topic> &query, int slot, const Selector<Length> &selector,
               std::size_t minimum, const Caller &caller, Take take) {
    Topic *topic = slot_sections<Topic>(slot);
    if (topic != nullptr) {
        ask_when_due(query, topic->*query.place, slot, selector, minimum, caller, [&](const Answer &answer) {
            take(*topic, answer, caller.operation);
            return true;
        });
    }
    return topic;
}

// A topic of which `fetch` fills its part with requests of its own; stamped unless it returns false.
template <class Topic, class Fetch>
Topic *refresh_in_parts(const Query<Stamp, Topic> &query, int slot, Fetch fetch) {
    Topic *topic = slot_sections<Topic>(slot);
    if (topic != nullptr && query.pace.due(topic->*query.place) && fetch(*topic)) {
        (topic->*query.place).set();
    }
    return topic;
}

// Whether a section may be edited and sent back: not unless it shows what the card has, which is logged.
inline bool may_edit(const Stamp &section, const char *operation, int slot) {
    const bool allowed = section.held || section.filled;
    if (!allowed) {
        const bool card = slot < chassis_slot::line_cards;
        log_add(log_error, "%s : %s %d has not sent its configuration, which is not overwritten\n", operation,
                card ? "slot" : "address", card ? slot + 1 : slot);
    }
    return allowed;
}

}  // namespace tarn

#endif
