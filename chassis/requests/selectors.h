// What requests select: a channel, all channels, an ONT.
#ifndef TARN_CHASSIS_REQUESTS_SELECTORS_H
#define TARN_CHASSIS_REQUESTS_SELECTORS_H

#include "chassis/requests/dispatcher.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"

namespace tarn::chassis {

inline constexpr std::uint8_t all_channels = 255;
inline constexpr std::size_t payload = board_header::size;

inline Refusal no_such_channel(int channel) {
    return {board_status::malformed, "channel " + std::to_string(channel) + " out of range"};
}

inline Refusal no_such_ont() {
    return {board_status::no_such_item, "no such ONT"};
}

// Whether the payload's first byte is one channel, or all of them.
inline bool is_channel(std::uint8_t selector) {
    return selector < channels_per_slot;
}
inline bool is_channel_or_all(std::uint8_t selector) {
    return is_channel(selector) || selector == all_channels;
}
inline bool selects(std::uint8_t selector, std::uint8_t channel) {
    return selector == all_channels || selector == channel;
}

// The ONT whose serial stands at `offset` of the request, or null.
inline Ont *requested_ont(Exchange &exchange, std::size_t offset) {
    return find_ont(exchange.card.onts, exchange.request.subspan(offset).first<serial_size>());
}

// A request that names an ONT by the serial at the start of its payload: `act` gets the ONT.
template <void (*act)(Exchange &, Ont &), std::size_t offset = payload>
Refusal with_ont(Exchange &exchange) {
    Ont *ont = requested_ont(exchange, offset);
    if (ont == nullptr) {
        return no_such_ont();
    }
    act(exchange, *ont);
    return {};
}

// A request whose payload starts with one channel or 255 for all: `act` gets that byte.
template <void (*act)(Exchange &, std::uint8_t selector)>
Refusal with_selector(Exchange &exchange) {
    const std::uint8_t selector = exchange.request[payload];
    if (!is_channel_or_all(selector)) {
        return no_such_channel(selector);
    }
    act(exchange, selector);
    return {};
}

// A request whose payload starts with one channel: `act` gets the channel.
template <void (*act)(Exchange &, Channel &)>
Refusal with_channel(Exchange &exchange) {
    const std::uint8_t channel = exchange.request[payload];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    act(exchange, exchange.card.channels[channel]);
    return {};
}

}  // namespace tarn::chassis

#endif
