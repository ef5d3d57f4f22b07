// Network settings and alarms. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_NETWORK_H
#define TARN_WIRE_RECORDS_NETWORK_H

#include "wire/record.h"

namespace tarn {

// Network settings of a slot or of the chassis: a 15-byte head, then the terminal VLANs.
namespace network_config {
inline constexpr std::size_t size = 847;
inline constexpr RecordKind layout{size};
inline constexpr int terminal_vlans = 32;
inline constexpr int terminal_vlan_size = 26;
// The fields of entry 0.
inline constexpr Field vlan_in_use = layout.u8(15 + 4);
inline constexpr Field vlan_name = layout.text(15 + 5, 18);
inline constexpr Field vlan_value_23 = layout.u16(15 + 23);
inline constexpr Field vlan_value_25 = layout.u8(15 + 25);
static_assert(15 + terminal_vlans * terminal_vlan_size == size);
}  // namespace network_config

namespace alarms_config {
inline constexpr std::size_t size = 801;
inline constexpr RecordKind layout{size};
inline constexpr int entries = 46;
inline constexpr int entry_size = 17;
// The fields of entry 0.
inline constexpr Field type = layout.u32(4);
inline constexpr Field value_9 = layout.u16(9);
inline constexpr Field value_11 = layout.u16(11);
}  // namespace alarms_config

}  // namespace tarn

#endif
