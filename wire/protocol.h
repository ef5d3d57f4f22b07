// The wire form of board requests and answers: the 32-byte header, destinations and command codes.
#ifndef TARN_WIRE_PROTOCOL_H
#define TARN_WIRE_PROTOCOL_H

#include "wire/record.h"

namespace tarn {

// The header at the start of every request and of every answer; the payload follows at byte 32.
namespace board_header {
inline constexpr std::size_t size = 32;
inline constexpr Field command = u16_at(0);
inline constexpr Field kind = u8_at(2);          // 1 in a request
inline constexpr Field destination = u16_at(5);  // see below; low byte adjusted by the envelope
inline constexpr Field slot = u8_at(7);
inline constexpr Field version_1 = u8_at(8);
inline constexpr Field version_2 = u8_at(9);
inline constexpr Field version_3 = u16_at(10);
inline constexpr Field version_4 = u16_at(12);
inline constexpr Field status = u8_at(14);  // of an answer: 0 success, otherwise an error code
inline constexpr Field version_5 = u32_at(16);
inline constexpr Field length = u32_at(20);  // whole message in bytes, this header included
static_assert(length.offset + length.size <= size);
}  // namespace board_header

// The release number, stamped into every request in the header's five version fields.
inline constexpr int release_numbers[5] = {3, 3, 38, 1, 36};

// Where on the card a request goes, as the caller writes it. The envelope sends 9 as 5.
namespace destination {
inline constexpr std::uint8_t configuration = 5;
inline constexpr std::uint8_t services = 8;
inline constexpr std::uint8_t ethernet_switch = 9;
}  // namespace destination

// Targets beyond the sixteen line cards, addressed like slots.
namespace chassis_slot {
inline constexpr int line_cards = 16;       // line cards are the slots 0-15
inline constexpr int profiles = 16;         // ONT profiles and templates
inline constexpr int olt_profiles = 17;     // OLT address-table and VLAN profiles
inline constexpr int chassis_network = 18;  // chassis-wide network and alarms configuration
}  // namespace chassis_slot

// What the simulated chassis answers in the status byte.
namespace board_status {
inline constexpr std::uint8_t success = 0;
inline constexpr std::uint8_t not_available = 1;  // of a counters request: nothing to report
inline constexpr std::uint8_t malformed = 2;      // wrong length or a field out of its range
inline constexpr std::uint8_t unknown_command = 3;
inline constexpr std::uint8_t wrong_destination = 4;
inline constexpr std::uint8_t busy = 5;
inline constexpr std::uint8_t no_such_item = 6;  // an ONT, profile or VLAN that the card does not have
inline constexpr std::uint8_t wrong_slot = 7;
}  // namespace board_status

namespace command {
inline constexpr std::uint16_t link = 0;  // opens a connection to one slot; see docs/protocol.md
inline constexpr std::uint16_t reconfigure_olt = 13;
inline constexpr std::uint16_t reconfigure_olt_channel = 14;
inline constexpr std::uint16_t reconfigure_ont = 15;
inline constexpr std::uint16_t reboot_ont = 16;
inline constexpr std::uint16_t update_olt_firmware = 17;
inline constexpr std::uint16_t update_ont_firmware = 18;
inline constexpr std::uint16_t save_to_startup = 61;
inline constexpr std::uint16_t get_counters = 66;
inline constexpr std::uint16_t reset_counters = 67;
inline constexpr std::uint16_t get_olt_state = 69;
inline constexpr std::uint16_t get_olt_channel_state = 70;
inline constexpr std::uint16_t get_olt_channels_state_lite = 71;
inline constexpr std::uint16_t get_ont_state = 72;
inline constexpr std::uint16_t get_ont_list = 73;
inline constexpr std::uint16_t get_igmp_stats = 79;
inline constexpr std::uint16_t get_global_ont_address_table = 80;
inline constexpr std::uint16_t get_terminal_vlans = 84;
inline constexpr std::uint16_t get_olt_channel_config = 85;
inline constexpr std::uint16_t set_olt_channel_config = 86;
inline constexpr std::uint16_t get_olt_cfg = 87;
inline constexpr std::uint16_t set_olt_cfg = 88;
inline constexpr std::uint16_t get_olt_vlan_profiles = 97;
inline constexpr std::uint16_t get_olt_address_table_profiles = 103;
inline constexpr std::uint16_t set_ont_config = 123;
inline constexpr std::uint16_t get_management_profiles = 127;
inline constexpr std::uint16_t add_management_profile = 128;
inline constexpr std::uint16_t set_management_profile = 129;
inline constexpr std::uint16_t delete_management_profile = 130;
inline constexpr std::uint16_t get_shaping_profiles = 137;
inline constexpr std::uint16_t add_shaping_profile = 138;
inline constexpr std::uint16_t set_shaping_profile = 139;
inline constexpr std::uint16_t delete_shaping_profile = 140;
inline constexpr std::uint16_t get_ports_profiles = 142;
inline constexpr std::uint16_t add_ports_profile = 143;
inline constexpr std::uint16_t set_ports_profile = 144;
inline constexpr std::uint16_t delete_ports_profile = 145;
inline constexpr std::uint16_t get_switch_port_counters = 167;
inline constexpr std::uint16_t get_switch_vlan_list = 170;
inline constexpr std::uint16_t get_switch_mac_table = 171;
inline constexpr std::uint16_t get_switch_general_cfg = 173;
inline constexpr std::uint16_t get_switch_vlan = 179;
inline constexpr std::uint16_t get_switch_vlans_block = 180;
inline constexpr std::uint16_t get_switch_blacklist_cfg = 182;
inline constexpr std::uint16_t get_switch_blacklist_rules = 184;
inline constexpr std::uint16_t get_switch_qos_cfg = 185;
inline constexpr std::uint16_t set_switch_general_cfg = 190;
inline constexpr std::uint16_t set_switch_vlan = 195;
inline constexpr std::uint16_t set_switch_blacklist_cfg = 198;
inline constexpr std::uint16_t set_switch_blacklist_rules = 200;
inline constexpr std::uint16_t set_switch_qos_cfg = 201;
inline constexpr std::uint16_t get_pppoe_sessions = 205;
inline constexpr std::uint16_t get_alarms_config = 208;
inline constexpr std::uint16_t set_network_cfg = 215;
inline constexpr std::uint16_t add_update_scheduler = 222;
inline constexpr std::uint16_t delete_update_scheduler = 223;
inline constexpr std::uint16_t get_update_scheduler = 225;
inline constexpr std::uint16_t get_crossconnect_profiles = 246;
inline constexpr std::uint16_t add_crossconnect_profile = 247;
inline constexpr std::uint16_t set_crossconnect_profile = 248;
inline constexpr std::uint16_t delete_crossconnect_profile = 249;
inline constexpr std::uint16_t get_ont_i2c = 250;
inline constexpr std::uint16_t enable_ont = 275;  // enables or disables, by its 16-bit value
inline constexpr std::uint16_t get_ont_downstream_ber = 277;
inline constexpr std::uint16_t get_alloc_profiles = 280;
inline constexpr std::uint16_t add_alloc_profile = 281;
inline constexpr std::uint16_t set_alloc_profile = 282;
inline constexpr std::uint16_t delete_alloc_profile = 283;
inline constexpr std::uint16_t ont_default_via_omci = 291;
inline constexpr std::uint16_t get_ont_uni_ports_state = 298;
inline constexpr std::uint16_t set_ont_template = 301;
inline constexpr std::uint16_t get_all_config = 302;
inline constexpr std::uint16_t get_ont_connections = 305;
inline constexpr std::uint16_t parse_auto_update_entries = 310;
inline constexpr std::uint16_t get_activation_auth_mode = 313;
inline constexpr std::uint16_t set_activation_auth_mode = 314;
inline constexpr std::uint16_t reset_switch_port_counters = 338;
inline constexpr std::uint16_t set_alarms_entry = 403;
inline constexpr std::uint16_t commit_change = 406;  // to destination services: re-read the configuration
inline constexpr std::uint16_t reload_slot = 407;
inline constexpr std::uint16_t get_version_information = 412;
inline constexpr std::uint16_t get_hardware_information = 413;
inline constexpr std::uint16_t set_to_default = 419;
inline constexpr std::uint16_t rollback_change = 420;
inline constexpr std::uint16_t confirm_change = 421;
inline constexpr std::uint16_t get_switch_port_utilization = 434;
inline constexpr std::uint16_t get_ont_services_utilization = 450;
}  // namespace command

// The largest message that either side takes: above a table of 65,535 addresses, an answer of 2,424,830
// bytes.
inline constexpr std::size_t max_message_size = std::size_t{4} * 1024 * 1024;

}  // namespace tarn

#endif
