// The records of a card's Ethernet switch.
#ifndef TARN_MODULE_SWITCH_SWITCH_RECORDS_H
#define TARN_MODULE_SWITCH_SWITCH_RECORDS_H

#include "tarn/record.h"

namespace tarn {

inline constexpr int switch_ports = 13;    // with counters and utilization: ports 0-12
inline constexpr int switch_vlans = 4094;  // board VLAN number n is VLAN identifier n + 1

namespace vlan_list {
inline constexpr std::size_t size = 8190;  // a 16-bit count, then up to 4094 16-bit board VLAN numbers
inline constexpr Field count = u16_at(0);
inline constexpr Field first = u16_at(2);
}  // namespace vlan_list

namespace vlan_record {
inline constexpr std::size_t size = 84;
}
namespace switch_general {
inline constexpr std::size_t size = 2583;
}
namespace switch_qos {
inline constexpr std::size_t size = 150;
inline constexpr int queues = 7;
}  // namespace switch_qos
namespace switch_blacklist {
inline constexpr std::size_t size = 360;
inline constexpr int lists = 8;
inline constexpr int rules_per_list = 1024;
inline constexpr std::size_t rule_size = 18;
}  // namespace switch_blacklist
namespace switch_port_counters {
inline constexpr std::size_t size = 248;
}
namespace switch_port_utilization {
inline constexpr std::size_t size = 64;
}
namespace switch_mac {
inline constexpr std::size_t size = 10;
inline constexpr int max_entries = 16384;
}  // namespace switch_mac

}  // namespace tarn

#endif
