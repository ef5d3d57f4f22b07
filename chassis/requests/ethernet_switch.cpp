// The card's Ethernet switch: its configuration, and what it has learnt and counted. The configuration
// service, destination 5, reads and edits the working configuration; destination 8 shows the running one.
#include <algorithm>

#include "chassis/requests/selectors.h"
#include "wire/records/switch.h"

namespace tarn::chassis {
namespace {

constexpr std::uint8_t configuration = destination::configuration;
constexpr std::uint8_t services = destination::services;

SwitchConfig &working(Exchange &exchange) {
    return exchange.card.config.working(exchange.now).ethernet_switch;
}

const SwitchConfig &running(Exchange &exchange) {
    return exchange.card.config.running(exchange.now).ethernet_switch;
}

std::uint16_t payload_u16(const Exchange &exchange, std::size_t offset = 0) {
    return load_le16(exchange.request.data() + payload + offset);
}

// ---- VLANs: the configuration numbers them from 0, the running switch goes by their identifiers ----

template <const SwitchConfig &(*config)(Exchange &), std::uint16_t first_number>
Refusal list_vlans(Exchange &exchange) {
    const SwitchConfig &shown = config(exchange);
    append_le16(exchange.answer, static_cast<std::uint16_t>(shown.vlans.size()));
    for (const auto &[number, vlan] : shown.vlans) {
        append_le16(exchange.answer, static_cast<std::uint16_t>(number + first_number));
    }
    exchange.answer.resize(payload + vlan_list::size);
    return {};
}

template <const SwitchConfig &(*config)(Exchange &), std::uint16_t first_number>
Refusal get_vlan(Exchange &exchange) {
    const std::uint16_t number = payload_u16(exchange);
    const auto &vlans = config(exchange).vlans;
    const auto found = vlans.find(static_cast<std::uint16_t>(number - first_number));
    if (found == vlans.end()) {
        return {board_status::no_such_item, "no VLAN " + std::to_string(number)};
    }
    append_le16(exchange.answer, number);
    append(exchange.answer, found->second);
    return {};
}

const SwitchConfig &shown_working(Exchange &exchange) {
    return working(exchange);
}

Refusal get_vlans_block(Exchange &exchange) {
    const int first = payload_u16(exchange);
    if (first >= switch_vlans) {
        return {board_status::malformed, "VLAN number " + std::to_string(first) + " out of range"};
    }
    const int count = std::min<int>(payload_u16(exchange, 2), switch_vlans - first);
    append_le16(exchange.answer, static_cast<std::uint16_t>(first));
    append_le16(exchange.answer, static_cast<std::uint16_t>(count));
    const auto &vlans = working(exchange).vlans;
    for (int number = first; number < first + count; ++number) {
        const auto found = vlans.find(static_cast<std::uint16_t>(number));
        append(exchange.answer, found != vlans.end() ? found->second : VlanRecord{});
    }
    return {};
}

Refusal set_vlan(Exchange &exchange) {
    const std::uint16_t number = payload_u16(exchange);
    if (number >= switch_vlans) {
        return {board_status::malformed, "VLAN number " + std::to_string(number) + " out of range"};
    }
    VlanRecord record{};
    std::ranges::copy(exchange.request.subspan(payload + 2), record.begin());
    if (load_integer(record.data(), vlan_record::present) != 0) {
        working(exchange).vlans[number] = record;
    } else if (working(exchange).vlans.erase(number) == 0) {
        return {board_status::no_such_item, "no VLAN " + std::to_string(number)};
    }
    return {};
}

// ---- Whole sections ----

template <auto section>
Refusal get_section(Exchange &exchange) {
    append(exchange.answer, working(exchange).*section);
    return {};
}

template <auto section>
Refusal set_section(Exchange &exchange) {
    std::ranges::copy(exchange.request.subspan(payload), (working(exchange).*section).begin());
    return {};
}

Refusal get_rules(Exchange &exchange) {
    const auto &rules = working(exchange).acl_rules;
    append_le32(exchange.answer, static_cast<std::uint32_t>(rules.size()));
    for (const AclRule &rule : rules) {
        append(exchange.answer, rule);
    }
    return {};
}

Refusal set_rules(Exchange &exchange) {
    const std::uint32_t count = load_le32(exchange.request.data() + payload);
    if (count > switch_blacklist::rules_per_list) {
        return {board_status::malformed, std::to_string(count) + " rules"};
    }
    auto &rules = working(exchange).acl_rules;
    rules.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::ranges::copy(exchange.request.subspan(payload + 4 + i * sizeof(AclRule), sizeof(AclRule)),
                          rules[i].begin());
    }
    return {};
}

// ---- Learnt and counted ----

// Cursor at 32-35, where this part starts; at 36-39 the most entries that the caller takes in all.
Refusal get_macs(Exchange &exchange) {
    const auto &macs = exchange.card.ethernet_switch.macs;
    const std::size_t start = load_le32(exchange.request.data() + payload);
    if (start > macs.size()) {
        return {board_status::malformed, "cursor " + std::to_string(start) + " out of range"};
    }
    const std::size_t end = std::min(macs.size(), start + switch_mac::max_entries_per_part);
    append_le32(exchange.answer, static_cast<std::uint32_t>(end - start));
    append_le32(exchange.answer, static_cast<std::uint32_t>(end));
    for (std::size_t i = start; i < end; ++i) {
        append(exchange.answer, macs[i]);
    }
    exchange.answer.resize(switch_mac::part_is_last + 1);
    exchange.answer[switch_mac::part_is_last] = end == macs.size() ? 1 : 0;
    return {};
}

// A request that names a switch port at `offset` of its payload: `act` gets the port.
template <void (*act)(Exchange &, SwitchPort &), std::size_t offset = 0>
Refusal with_port(Exchange &exchange) {
    const std::uint8_t port = exchange.request[payload + offset];
    if (port >= switch_ports) {
        return {board_status::malformed, "switch port " + std::to_string(port) + " out of range"};
    }
    act(exchange, exchange.card.ethernet_switch.ports[port]);
    return {};
}

void get_counters(Exchange &exchange, SwitchPort &port) {
    append(exchange.answer, port_counters_record(port, exchange.now));
}

void reset_counters(Exchange &exchange, SwitchPort &port) {
    for (Counter &counter : port.counters) {
        counter.reset(exchange.now);
    }
    ++port.counter_resets;
}

void get_utilization(Exchange &exchange, SwitchPort &port) {
    append(exchange.answer, port_utilization_record(port, payload_u16(exchange)));
}

constexpr auto general = &SwitchConfig::general;
constexpr auto qos = &SwitchConfig::qos;
constexpr auto acl_lists = &SwitchConfig::acl_lists;

constexpr RequestRule rules[] = {
    {command::get_switch_vlan_list, configuration, 32, list_vlans<shown_working, 0>, u16_at(payload)},
    {command::get_switch_vlan_list, services, 32, list_vlans<running, 1>, u16_at(payload)},
    {command::get_switch_vlans_block, configuration, 36, get_vlans_block, u16_at(payload + 2)},
    {command::get_switch_vlan, configuration, 34, get_vlan<shown_working, 0>},
    {command::get_switch_vlan, services, 34, get_vlan<running, 1>},
    {command::set_switch_vlan, configuration, 118, set_vlan},
    {command::get_switch_general_cfg, configuration, 32, get_section<general>},
    {command::set_switch_general_cfg, configuration, 2615, set_section<general>},
    {command::get_switch_qos_cfg, configuration, 32, get_section<qos>},
    {command::set_switch_qos_cfg, configuration, 182, set_section<qos>},
    {command::get_switch_blacklist_cfg, configuration, 32, get_section<acl_lists>},
    {command::set_switch_blacklist_cfg, configuration, 392, set_section<acl_lists>},
    {command::get_switch_blacklist_rules, configuration, 32, get_rules, u32_at(payload)},
    {command::set_switch_blacklist_rules, configuration, 18468, set_rules},
    {command::get_switch_mac_table, services, 55, get_macs, u32_at(payload)},
    {command::get_switch_port_counters, services, 33, with_port<get_counters>},
    {command::reset_switch_port_counters, services, 33, with_port<reset_counters>},
    {command::get_switch_port_utilization, services, 35, with_port<get_utilization, 2>},
};

}  // namespace

std::span<const RequestRule> switch_requests() {
    return rules;
}

}  // namespace tarn::chassis
