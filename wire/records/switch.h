// The records of a card's Ethernet switch. Fields whose meaning only the card knows are named after their
// offset.
#ifndef TARN_WIRE_RECORDS_SWITCH_H
#define TARN_WIRE_RECORDS_SWITCH_H

#include "wire/record.h"

namespace tarn {

inline constexpr int switch_ports = 13;    // with counters and utilization: ports 0-12
inline constexpr int switch_vlans = 4094;  // board VLAN number n is VLAN identifier n + 1
// The operational list may carry identifiers as well as numbers.
inline constexpr int operational_vlans_limit = 4096;

// The VLANs of a card, in ascending order.
namespace vlan_list {
inline constexpr std::size_t size = 8190;  // a 16-bit count, then up to 4094 16-bit board VLAN numbers
inline constexpr RecordKind layout{size};
inline constexpr Field count = layout.u16(0);
inline constexpr Field first = layout.u16(2);
constexpr Field number(int position) {
    return first.at(position, 2);
}
static_assert(number(switch_vlans - 1).offset + first.size == size);
}  // namespace vlan_list

namespace vlan_record {
inline constexpr std::size_t size = 84;
inline constexpr RecordKind layout{size};
inline constexpr Field name = layout.text(0, 32);  // NUL-terminated
inline constexpr std::size_t longest_name = 31;
inline constexpr Field present = layout.u8(32);
inline constexpr Field first_ports = layout.u32(34);  // bit n is switch port n
inline constexpr Field second_ports = layout.u32(38);
inline constexpr Field first_groups = layout.u16(42);
inline constexpr Field second_groups = layout.u16(44);
inline constexpr Field flag_46 = layout.u8(46);
inline constexpr Field flag_47 = layout.u8(47);
inline constexpr Field value_50 = layout.u8(50);
inline constexpr Field value_52 = layout.u8(52);
inline constexpr Field value_53 = layout.u16(53);
inline constexpr Field value_55 = layout.u8(55);
inline constexpr Field value_56 = layout.u8(56);
inline constexpr Field flag_67 = layout.u8(67);
inline constexpr Field flag_68 = layout.u8(68);
}  // namespace vlan_record

namespace switch_general {
inline constexpr std::size_t size = 2583;
inline constexpr RecordKind layout{size};
inline constexpr Field igmp_snooping = layout.u8(6);
inline constexpr Field p2p = layout.u8(2572);
}  // namespace switch_general

namespace switch_qos {
inline constexpr std::size_t size = 150;
inline constexpr RecordKind layout{size};
inline constexpr int queues = 7;
inline constexpr Field value_0 = layout.u8(0);
inline constexpr Field value_64 = layout.u8(64);
inline constexpr Field flag_65 = layout.u8(65);
// Which code points (bit d of 64) and which priorities (bit p of 8) a queue takes.
constexpr Field dscp_mask(int queue) {
    return layout.u64(1).at(queue, 8);
}
constexpr Field priority_mask(int queue) {
    return layout.u8(57).at(queue, 1);
}
// After the section: the queues whose masks were written last.
inline constexpr Field last_priority_queue = u8_at(150);
inline constexpr Field last_dscp_queue = u8_at(151);
static_assert(dscp_mask(queues).offset == 57 && priority_mask(queues).offset == 64);
}  // namespace switch_qos

// ACL lists and their rules.
namespace switch_blacklist {
inline constexpr std::size_t size = 360;
inline constexpr RecordKind layout{size};
inline constexpr int lists = 8;
inline constexpr int rules_per_list = 1024;
inline constexpr std::size_t rule_size = 18;
inline constexpr Field rule_list = layout.u8(0);  // the list that a rule belongs to
inline constexpr int deleted_rule = 8;            // in its place
}  // namespace switch_blacklist

namespace switch_port_counters {
inline constexpr std::size_t size = 248;
inline constexpr RecordKind layout{size};
inline constexpr int count = 31;
constexpr Field counter(int n) {
    return layout.u64(0).at(n, 8);
}
static_assert(counter(count).offset == size);
}  // namespace switch_port_counters

namespace switch_port_utilization {
inline constexpr std::size_t size = 64;
inline constexpr RecordKind layout{size};
constexpr Field value(int n) {
    return layout.u64(0).at(n, 8);
}
}  // namespace switch_port_utilization

// One learnt MAC address.
namespace switch_mac {
inline constexpr std::size_t size = 10;
inline constexpr RecordKind layout{size};
inline constexpr int max_entries = 16384;
inline constexpr Field port = layout.u8(0);
inline constexpr Field flags = layout.u8(1);
inline constexpr int flag_bit = 1;
inline constexpr int group_bit = 2;  // the port is a port group
inline constexpr Field vlan = layout.u16(2);
inline constexpr Field mac = layout.octets(4, 6);

// An answer carries a part of the table: count and cursor for the next part in front; a byte after the
// room for the most entries marks the last part.
inline constexpr int max_entries_per_part = 128;
inline constexpr std::size_t part_count = 32;
inline constexpr std::size_t part_cursor = 36;
inline constexpr std::size_t part_entries = 40;
inline constexpr std::size_t part_is_last = part_entries + max_entries_per_part * size;
static_assert(part_is_last == 1320);
}  // namespace switch_mac

}  // namespace tarn

#endif
