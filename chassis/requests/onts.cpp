// ONTs: the list, states and readings, and what can be done to one.
#include "chassis/requests/selectors.h"

namespace tarn::chassis {
namespace {

constexpr std::uint16_t enable_value = 0;
constexpr std::uint16_t disable_value = 255;

void get_list(Exchange &exchange, std::uint8_t selector) {
    std::uint32_t count = 0;
    exchange.answer.push_back(selector);
    exchange.answer.resize(exchange.answer.size() + sizeof count);
    for (const Ont &ont : exchange.card.onts) {
        if (selects(selector, ont.channel)) {
            append(exchange.answer, list_record(ont, exchange.now));
            ++count;
        }
    }
    store_le32(exchange.answer.data() + payload + 1, count);
}

template <auto record>
void get_record(Exchange &exchange, Ont &ont) {
    append(exchange.answer, record(ont, exchange.now));
}

// Channel at byte 40 and ONT number at bytes 41-44; the answer repeats the payload, then count and log.
Refusal get_connections(Exchange &exchange) {
    const std::uint8_t channel = exchange.request[40];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    const Ont *ont = find_ont(exchange.card.onts, channel, load_le32(exchange.request.data() + 41));
    if (ont == nullptr) {
        return no_such_ont();
    }
    append(exchange.answer, exchange.request.subspan(payload));
    const std::size_t count = begun_connections(*ont, exchange.now, exchange.card.start_time);
    exchange.answer.push_back(static_cast<std::uint8_t>(count));
    append(exchange.answer, connections_record(*ont, count));
    return {};
}

void down_and_up(Exchange &exchange, Ont &ont) {
    reregister(ont, exchange.now, exchange.card.reregister_time, exchange.card.start_time);
}

void reconfigure(Exchange &exchange, Ont &ont) {
    ++ont.reconfigurations;
    down_and_up(exchange, ont);
}

void reboot(Exchange &exchange, Ont &ont) {
    ++ont.reboots;
    down_and_up(exchange, ont);
}

void to_defaults(Exchange &exchange, Ont &ont) {
    ++ont.defaults;
    down_and_up(exchange, ont);
}

// Channel at byte 32, serial at 33-40, what to do at 45-46.
Refusal enable(Exchange &exchange) {
    const std::uint8_t channel = exchange.request[payload];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    const std::uint16_t value = load_le16(exchange.request.data() + 45);
    if (value != enable_value && value != disable_value) {
        return {board_status::malformed, "value " + std::to_string(value) + ", expected 0 or 255"};
    }
    Ont *ont = requested_ont(exchange, payload + 1);
    if (ont == nullptr || ont->channel != channel) {
        return no_such_ont();
    }
    const bool was_enabled = ont->enabled;
    ont->enabled = value == enable_value;
    if (ont->enabled && !was_enabled) {
        down_and_up(exchange, *ont);
    } else if (!ont->enabled && was_enabled) {
        end_connection(*ont, exchange.now, ont_code::disabled, exchange.card.start_time);
    }
    return {};
}

constexpr RequestRule rules[] = {
    {command::get_ont_list, destination::services, 33, with_selector<get_list>, u32_at(33)},
    {command::get_ont_state, destination::services, 45, with_ont<get_record<state_record>>},
    {command::get_ont_i2c, destination::services, 45, with_ont<get_record<i2c_record>>},
    {command::get_ont_uni_ports_state, destination::services, 45, with_ont<get_record<uni_ports_record>>},
    {command::get_ont_connections, destination::services, 45, get_connections, u8_at(45)},
    {command::reconfigure_ont, destination::services, 45, with_ont<reconfigure>},
    {command::reboot_ont, destination::services, 45, with_ont<reboot>},
    {command::ont_default_via_omci, destination::services, 45, with_ont<to_defaults>},
    {command::enable_ont, destination::services, 47, enable},
};

}  // namespace

std::span<const RequestRule> ont_requests() {
    return rules;
}

}  // namespace tarn::chassis
