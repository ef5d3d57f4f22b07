// What requests are called, and what each names besides its slot, for those who show requests to people.
#ifndef TARN_WIRE_COMMAND_NAMES_H
#define TARN_WIRE_COMMAND_NAMES_H

#include <array>
#include <span>
#include <string_view>

#include "wire/protocol.h"
#include "wire/serial.h"

namespace tarn {

// A field of the request, from its first byte.
struct RequestField {
    std::string_view name;
    Field field;
};

struct CommandName {
    std::uint16_t command;
    std::uint8_t destination;  // as on the wire
    std::string_view name;
    std::span<const RequestField> fields{};
};

namespace command_names {

inline constexpr std::uint8_t any_destination = 0;

inline constexpr RequestField of_channel[] = {{"channel", u8_at(32)}};
inline constexpr RequestField of_serial[] = {{"serial", octets_at(32, serial_size)}};
inline constexpr RequestField of_channel_and_serial[] = {{"channel", u8_at(32)},
                                                         {"serial", octets_at(33, serial_size)}};
inline constexpr RequestField of_number[] = {{"channel", u8_at(40)}, {"ont", u32_at(41)}};
inline constexpr RequestField of_ont[] = {{"channel", u8_at(32)}, {"ont", u32_at(33)}};
inline constexpr RequestField of_task[] = {
    {"serial", octets_at(32, serial_size)}, {"channel", u8_at(40)}, {"ont", u32_at(41)}};
inline constexpr RequestField of_counters[] = {{"module", u16_at(32)},
                                               {"direction", u16_at(34)},
                                               {"channel", u8_at(36)},
                                               {"key", u32_at(37)},
                                               {"ont", u32_at(41)}};
inline constexpr RequestField of_reset[] = {
    {"group", u16_at(32)}, {"channel", u8_at(36)}, {"serial", octets_at(37, serial_size)}};
inline constexpr RequestField of_port[] = {{"port", u8_at(32)}};
inline constexpr RequestField of_vlan[] = {{"vlan", u16_at(32)}};
inline constexpr RequestField of_utilization[] = {{"interval", u16_at(32)}, {"port", u8_at(34)}};
inline constexpr RequestField of_index[] = {{"index", u16_at(32)}};
inline constexpr RequestField of_alarm[] = {{"index", u32_at(32)}};

// By command.
inline constexpr std::array all = {
    CommandName{command::link, any_destination, "link"},
    CommandName{command::reconfigure_olt, any_destination, "reconfigure_olt"},
    CommandName{command::reconfigure_olt_channel, any_destination, "reconfigure_olt_channel", of_channel},
    CommandName{command::reconfigure_ont, any_destination, "reconfigure_ont", of_serial},
    CommandName{command::reboot_ont, any_destination, "reboot_ont", of_serial},
    CommandName{command::update_olt_firmware, any_destination, "update_olt_firmware"},
    CommandName{command::update_ont_firmware, any_destination, "update_ont_firmware"},
    CommandName{command::save_to_startup, any_destination, "save_to_startup"},
    CommandName{command::get_counters, any_destination, "get_counters", of_counters},
    CommandName{command::reset_counters, any_destination, "reset_counters", of_reset},
    CommandName{command::get_olt_state, any_destination, "get_olt_state"},
    CommandName{command::get_olt_channel_state, any_destination, "get_olt_channel_state", of_channel},
    CommandName{command::get_olt_channels_state_lite, any_destination, "get_olt_channels_state_lite",
                of_channel},
    CommandName{command::get_ont_state, any_destination, "get_ont_state", of_serial},
    CommandName{command::get_ont_list, any_destination, "get_ont_list", of_channel},
    CommandName{command::get_igmp_stats, any_destination, "get_igmp_stats", of_channel},
    CommandName{command::get_global_ont_address_table, any_destination, "get_global_ont_address_table",
                of_channel},
    CommandName{command::get_terminal_vlans, any_destination, "get_terminal_vlans"},
    CommandName{command::get_olt_channel_config, any_destination, "get_olt_channel_config", of_channel},
    CommandName{command::set_olt_channel_config, any_destination, "set_olt_channel_config", of_channel},
    CommandName{command::get_olt_cfg, any_destination, "get_olt_cfg"},
    CommandName{command::set_olt_cfg, any_destination, "set_olt_cfg"},
    CommandName{command::get_olt_vlan_profiles, any_destination, "get_olt_vlan_profiles"},
    CommandName{command::get_olt_address_table_profiles, any_destination, "get_olt_address_table_profiles"},
    CommandName{command::set_ont_config, any_destination, "set_ont_config", of_ont},
    CommandName{command::get_management_profiles, any_destination, "get_management_profiles"},
    CommandName{command::add_management_profile, any_destination, "add_management_profile", of_index},
    CommandName{command::set_management_profile, any_destination, "set_management_profile", of_index},
    CommandName{command::delete_management_profile, any_destination, "delete_management_profile", of_index},
    CommandName{command::get_shaping_profiles, any_destination, "get_shaping_profiles"},
    CommandName{command::add_shaping_profile, any_destination, "add_shaping_profile", of_index},
    CommandName{command::set_shaping_profile, any_destination, "set_shaping_profile", of_index},
    CommandName{command::delete_shaping_profile, any_destination, "delete_shaping_profile", of_index},
    CommandName{command::get_ports_profiles, any_destination, "get_ports_profiles"},
    CommandName{command::add_ports_profile, any_destination, "add_ports_profile", of_index},
    CommandName{command::set_ports_profile, any_destination, "set_ports_profile", of_index},
    CommandName{command::delete_ports_profile, any_destination, "delete_ports_profile", of_index},
    CommandName{command::get_switch_port_counters, any_destination, "get_switch_port_counters", of_port},
    CommandName{command::get_switch_vlan_list, destination::configuration, "get_switch_vlan_list"},
    CommandName{command::get_switch_vlan_list, destination::services, "get_switch_vlan_list_operational"},
    CommandName{command::get_switch_mac_table, any_destination, "get_switch_mac_table"},
    CommandName{command::get_switch_general_cfg, any_destination, "get_switch_general_cfg"},
    CommandName{command::get_switch_vlan, destination::configuration, "get_switch_vlan", of_vlan},
    CommandName{command::get_switch_vlan, destination::services, "get_switch_vlan_operational", of_vlan},
    CommandName{command::get_switch_vlans_block, any_destination, "get_switch_vlans_block", of_vlan},
    CommandName{command::get_switch_blacklist_cfg, any_destination, "get_switch_blacklist_cfg"},
    CommandName{command::get_switch_blacklist_rules, any_destination, "get_switch_blacklist_rules"},
    CommandName{command::get_switch_qos_cfg, any_destination, "get_switch_qos_cfg"},
    CommandName{command::set_switch_general_cfg, any_destination, "set_switch_general_cfg"},
    CommandName{command::set_switch_vlan, any_destination, "set_switch_vlan", of_vlan},
    CommandName{command::set_switch_blacklist_cfg, any_destination, "set_switch_blacklist_cfg"},
    CommandName{command::set_switch_blacklist_rules, any_destination, "set_switch_blacklist_rules"},
    CommandName{command::set_switch_qos_cfg, any_destination, "set_switch_qos_cfg"},
    CommandName{command::get_pppoe_sessions, any_destination, "get_pppoe_sessions", of_channel},
    CommandName{command::get_alarms_config, any_destination, "get_alarms_config"},
    CommandName{command::set_network_cfg, any_destination, "set_network_cfg"},
    CommandName{command::add_update_scheduler, any_destination, "add_update_scheduler", of_task},
    CommandName{command::delete_update_scheduler, any_destination, "delete_update_scheduler", of_task},
    CommandName{command::get_update_scheduler, any_destination, "get_update_scheduler"},
    CommandName{command::get_crossconnect_profiles, any_destination, "get_crossconnect_profiles"},
    CommandName{command::add_crossconnect_profile, any_destination, "add_crossconnect_profile", of_index},
    CommandName{command::set_crossconnect_profile, any_destination, "set_crossconnect_profile", of_index},
    CommandName{command::delete_crossconnect_profile, any_destination, "delete_crossconnect_profile",
                of_index},
    CommandName{command::get_ont_i2c, any_destination, "get_ont_i2c", of_serial},
    CommandName{command::enable_ont, any_destination, "enable_ont", of_channel_and_serial},
    CommandName{command::get_ont_downstream_ber, any_destination, "get_ont_downstream_ber", of_serial},
    CommandName{command::get_alloc_profiles, any_destination, "get_alloc_profiles"},
    CommandName{command::add_alloc_profile, any_destination, "add_alloc_profile", of_index},
    CommandName{command::set_alloc_profile, any_destination, "set_alloc_profile", of_index},
    CommandName{command::delete_alloc_profile, any_destination, "delete_alloc_profile", of_index},
    CommandName{command::ont_default_via_omci, any_destination, "ont_default_via_omci", of_serial},
    CommandName{command::get_ont_uni_ports_state, any_destination, "get_ont_uni_ports_state", of_serial},
    CommandName{command::set_ont_template, any_destination, "set_ont_template", of_index},
    CommandName{command::get_all_config, any_destination, "get_all_config"},
    CommandName{command::get_ont_connections, any_destination, "get_ont_connections", of_number},
    CommandName{command::parse_auto_update_entries, any_destination, "parse_auto_update_entries"},
    CommandName{command::get_activation_auth_mode, any_destination, "get_activation_auth_mode", of_channel},
    CommandName{command::set_activation_auth_mode, any_destination, "set_activation_auth_mode", of_channel},
    CommandName{command::reset_switch_port_counters, any_destination, "reset_switch_port_counters", of_port},
    CommandName{command::set_alarms_entry, any_destination, "set_alarms_entry", of_alarm},
    CommandName{command::commit_change, destination::configuration, "commit_change"},
    CommandName{command::commit_change, destination::services, "reread_config"},
    CommandName{command::reload_slot, any_destination, "reload_slot"},
    CommandName{command::get_version_information, any_destination, "get_version_information"},
    CommandName{command::get_hardware_information, any_destination, "get_hardware_information"},
    CommandName{command::set_to_default, any_destination, "set_to_default"},
    CommandName{command::rollback_change, any_destination, "rollback_change"},
    CommandName{command::confirm_change, any_destination, "confirm_change"},
    CommandName{command::get_switch_port_utilization, any_destination, "get_switch_port_utilization",
                of_utilization},
    CommandName{command::get_ont_services_utilization, any_destination, "get_ont_services_utilization",
                of_serial}};

}  // namespace command_names

// The command's entry, the destination's where names depend on it, or else the first; null: there is none.
inline const CommandName *find_command_name(std::uint16_t command, std::uint8_t destination) {
    const CommandName *found = nullptr;
    for (const CommandName &entry : command_names::all) {
        if (entry.command == command && (found == nullptr || entry.destination == destination)) {
            found = &entry;
        }
    }
    return found;
}

// "unknown" where there is none.
inline std::string_view command_name(std::uint16_t command,
                                     std::uint8_t destination = command_names::any_destination) {
    const CommandName *entry = find_command_name(command, destination);
    return entry != nullptr ? entry->name : "unknown";
}

}  // namespace tarn

#endif
