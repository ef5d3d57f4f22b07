// Clearing counters.
#include "chassis/requests/selectors.h"

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

constexpr RequestRule rules[] = {
    {command::reset_counters, destination::services, 50, "reset_counters", reset},
};

}  // namespace

std::span<const RequestRule> counter_requests() {
    return rules;
}

}  // namespace tarn::chassis
