// PON channels: state, configuration, activation authentication.
#include <algorithm>

#include "chassis/requests/selectors.h"
#include "wire/records/channel.h"

namespace tarn::chassis {
namespace {

// Selector, then the records of all eight channels, whichever channel is asked for.
template <auto record>
void get_channels(Exchange &exchange, std::uint8_t selector) {
    exchange.answer.push_back(selector);
    for (int channel = 0; channel < channels_per_slot; ++channel) {
        append(exchange.answer, record(exchange.card.channels[static_cast<std::size_t>(channel)],
                                       working_onts(exchange.card, channel, exchange.now), exchange.now));
    }
}

void reconfigure(Exchange &exchange, Channel &channel) {
    ++channel.reconfigurations;
    reregister_onts(exchange.card, exchange.request[payload], exchange.now);
}

void get_config(Exchange &exchange, Channel &channel) {
    exchange.answer.push_back(exchange.request[payload]);
    append(exchange.answer, channel.config);
}

void set_config(Exchange &exchange, Channel &channel) {
    std::ranges::copy(exchange.request.subspan(payload + 1), channel.config.begin());
}

void get_activation_auth(Exchange &exchange, Channel &channel) {
    exchange.answer.push_back(exchange.request[payload]);
    append_le16(exchange.answer, channel.activation_auth);
}

Refusal set_activation_auth(Exchange &exchange) {
    const std::uint8_t channel = exchange.request[payload];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    const std::uint16_t mode = load_le16(exchange.request.data() + payload + 1);
    if (mode != activation_auth_on && mode != activation_auth_off) {
        return {board_status::malformed, "activation mode " + std::to_string(mode) + ", expected 2 or 4"};
    }
    exchange.card.channels[channel].activation_auth = mode;
    return {};
}

constexpr RequestRule rules[] = {
    {command::get_olt_channel_state, destination::services, 33,
     with_selector<get_channels<full_channel_state>>},
    {command::get_olt_channels_state_lite, destination::services, 33,
     with_selector<get_channels<short_channel_state>>},
    {command::reconfigure_olt_channel, destination::services, 33, with_channel<reconfigure>},
    {command::get_olt_channel_config, destination::services, 33, with_channel<get_config>},
    {command::set_olt_channel_config, destination::services, 130, with_channel<set_config>},
    {command::get_activation_auth_mode, destination::services, 33, with_channel<get_activation_auth>},
    {command::set_activation_auth_mode, destination::services, 35, set_activation_auth},
};

}  // namespace

std::span<const RequestRule> channel_requests() {
    return rules;
}

}  // namespace tarn::chassis
