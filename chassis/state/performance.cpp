#include "chassis/state/performance.h"

#include <algorithm>

#include "chassis/state/generator.h"
#include "chassis/state/multicast.h"

namespace tarn::chassis {
namespace {

struct CounterModule {
    int module;
    int direction;
    std::uint32_t keys;
    int values;
    std::int64_t per_interval;  // the most that a counter counts in one interval
    bool in_intervals = true;
    // Instead: what is so at the moment.
    std::vector<std::uint32_t> (*now)(Card &card, const Ont &ont, std::uint32_t key, Moment now) = nullptr;
};

// kbit/s, joins, how often there was too little bandwidth, groups.
std::vector<std::uint32_t> multicast(Card &card, const Ont &ont, std::uint32_t /*key*/, Moment now) {
    std::uint32_t bandwidth = 0;
    std::uint32_t joins = 0;
    const std::vector<JoinedGroup> groups = joined_groups(card, ont, now);
    for (const JoinedGroup &group : groups) {
        bandwidth += group.bandwidth;
        joins += group.joins;
    }
    return {bandwidth, joins, 0, static_cast<std::uint32_t>(groups.size())};
}

// Client, group, source, seconds since it was joined, VLAN, kbit/s; zeros where there is no group.
std::vector<std::uint32_t> multicast_group(Card &card, const Ont &ont, std::uint32_t key, Moment now) {
    const std::vector<JoinedGroup> groups = joined_groups(card, ont, now);
    if (key >= groups.size()) {
        return std::vector<std::uint32_t>(6, 0);
    }
    const JoinedGroup &group = groups[key];
    return {group.client, group.group,
            group.source, static_cast<std::uint32_t>((now - group.joined) / 1000),
            group.vlan,   group.bandwidth};
}

// The counters that the agent's tables ask for.
constexpr CounterModule modules[] = {
    {2, counter_direction::down, 16, 4, 2000000, false},
    {2, counter_direction::up, 16, 6, 1000000, false},
    {3, counter_direction::down, 10, 4, 2000000},
    {3, counter_direction::up, 10, 4, 1000000},
    {5, counter_direction::none, 4, 15, 3},
    {6, counter_direction::none, 4, 2, 50},
    {7, counter_direction::none, 4, 15, 500000},
    {8, counter_direction::none, 16, 2, 20},
    {9, counter_direction::none, 1, 6, 900},
    {13, counter_direction::none, 1, 4, 0, false, multicast},
    {14, counter_direction::none, 16, 6, 0, false, multicast_group},
    {15, counter_direction::down, 5, 15, 800000},
    {15, counter_direction::up, 5, 15, 300000},
};

const CounterModule *find_module(const CounterSelection &selection) {
    const auto *found = std::ranges::find_if(modules, [&](const CounterModule &module) {
        return module.module == selection.module && module.direction == selection.direction;
    });
    return found != std::end(modules) && selection.key < found->keys ? found : nullptr;
}

// What the counters of one interval count; with interval 0 the pace of those that count on.
Generator generator_of(const Card &card, const Ont &ont, const CounterSelection &selection,
                       std::uint64_t interval) {
    const std::uint64_t serial = load_le64(ont.serial.data());
    const auto which = static_cast<std::uint64_t>(selection.module) << 40 |
                       static_cast<std::uint64_t>(selection.direction) << 32 | selection.key;
    return {card.seed, card.slot, "counters", mix(mix(serial ^ which) ^ interval)};
}

// How much of an interval lies behind the last reset, in milliseconds.
Moment counted_in(const Ont &ont, std::uint64_t interval) {
    const Moment begin = std::max(interval * interval_ms, ont.counters_since);
    const Moment end = (interval + 1) * interval_ms;
    return begin < end ? end - begin : 0;
}

}  // namespace

bool has_counters(const CounterSelection &selection) {
    return find_module(selection) != nullptr;
}

std::vector<std::uint32_t> counter_values(Card &card, const Ont &ont, const CounterSelection &selection,
                                          Moment now) {
    const CounterModule &module = *find_module(selection);
    if (module.now != nullptr) {
        return module.now(card, ont, selection.key, now);
    }
    std::vector<std::uint32_t> values(static_cast<std::size_t>(module.values), 0);
    const std::uint64_t finished = now / interval_ms;
    const std::uint64_t shown = module.in_intervals ? finished - 1 : 0;
    if (module.in_intervals && finished == 0) {
        return values;
    }
    Generator generator = generator_of(card, ont, selection, shown);
    const Moment counted = module.in_intervals ? counted_in(ont, shown) : now - ont.counters_since;
    for (std::uint32_t &value : values) {
        const auto pace = static_cast<std::uint64_t>(generator.between(0, module.per_interval));
        value = static_cast<std::uint32_t>(pace * counted / interval_ms);
    }
    if (module.in_intervals) {
        values[0] = static_cast<std::uint32_t>(finished % 256);
    }
    return values;
}

}  // namespace tarn::chassis
