// Reading and clearing counters.
#include "chassis/requests/selectors.h"
#include "chassis/state/performance.h"

namespace tarn::chassis {
namespace {

constexpr std::uint16_t ont_group = 5;
constexpr std::uint16_t channel_group = 16;
constexpr std::uint8_t half_of_the_olt = 4;  // channels

void reset_channel(Channel &channel, Moment now) {
    channel.received.reset(now);
    ++channel.counter_resets;
}

void reset_ont(Exchange &exchange, Ont &ont) {
    ont.errors.reset(exchange.now);
    ont.counters_since = exchange.now;
    ++ont.counter_resets;
}

// The first channel of a half stands for the whole half: an OLT's counters are cleared by two requests.
Refusal reset_channels(Exchange &exchange) {
    const std::uint8_t first = exchange.request[36];
    if (!is_channel(first)) {
        return no_such_channel(first);
    }
    const std::size_t count = first % half_of_the_olt == 0 ? half_of_the_olt : 1;
    for (Channel &channel : std::span(exchange.card.channels).subspan(first, count)) {
        reset_channel(channel, exchange.now);
    }
    return {};
}

// Group at 32-33, channel at 36, serial at 37-44.
Refusal reset(Exchange &exchange) {
    const std::uint16_t group = load_le16(exchange.request.data() + payload);
    switch (group) {
        case ont_group:
            return with_ont<reset_ont, 37>(exchange);
        case channel_group:
            return reset_channels(exchange);
        default:
            return {board_status::malformed, "counter group " + std::to_string(group) + ", expected 5 or 16"};
    }
}

// Counter module at 32-33, direction at 34-35, channel at 36, key at 37-40, ONT number at 41-44. The answer
// is a count and the values.
Refusal get(Exchange &exchange) {
    const std::uint8_t *request = exchange.request.data();
    const CounterSelection selection{load_le16(request + 32), load_le16(request + 34),
                                     load_le32(request + 37)};
    const std::uint8_t channel = request[36];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    if (!has_counters(selection)) {
        return {board_status::malformed, "no counters of module " + std::to_string(selection.module) +
                                             ", direction " + std::to_string(selection.direction) + ", key " +
                                             std::to_string(selection.key)};
    }
    const Ont *ont = find_ont(exchange.card.onts, channel, load_le32(request + 41));
    if (ont == nullptr) {
        return no_such_ont();
    }
    if (ont->code_at(exchange.now) != ont_code::working) {
        return {board_status::not_available, "the ONT is not working"};
    }
    const std::vector<std::uint32_t> values = counter_values(exchange.card, *ont, selection, exchange.now);
    exchange.answer.push_back(static_cast<std::uint8_t>(values.size()));
    for (const std::uint32_t value : values) {
        append_le32(exchange.answer, value);
    }
    return {};
}

constexpr RequestRule rules[] = {
    {command::get_counters, destination::services, 50, get, u8_at(32)},
    {command::reset_counters, destination::services, 50, reset},
};

}  // namespace

std::span<const RequestRule> counter_requests() {
    return rules;
}

}  // namespace tarn::chassis
