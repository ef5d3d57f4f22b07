// The MAC addresses that a card's switch has learnt.
#ifndef TARN_MODULE_SWITCH_SWITCH_MAC_TABLE_H
#define TARN_MODULE_SWITCH_SWITCH_MAC_TABLE_H

#include <cstdint>
#include <span>

#include "module/common/exports.h"
#include "wire/records/switch.h"

// An entry as the card sends it (see switch_mac).
extern "C" struct switch_mac_list_t {
    std::uint8_t port;
    std::uint8_t flags;
    std::uint8_t vlan[2];
    std::uint8_t mac[6];
};
static_assert(sizeof(switch_mac_list_t) == tarn::switch_mac::size && alignof(switch_mac_list_t) == 1);

// The entries in the slot database, ascending by VLAN and MAC address; null when there are none.
TARN_EXPORT std::uint8_t *get_switch_mac_table(int slot);
// The table as text: "v1", then 29 characters an entry; null when it was never fetched.
TARN_EXPORT char *get_raw_switch_mac_table(int slot);
// Negative, 0 or positive as a stands before, with or after b: by VLAN, then by MAC address.
TARN_EXPORT int switch_mac_list_t_comparator(switch_mac_list_t a, switch_mac_list_t b);

namespace tarn {

using MacEntries = std::span<switch_mac_list_t>;

// A slot's entries, refreshed.
MacEntries mac_entries(int slot);

// VLAN and MAC address as one number that orders as the entries do.
constexpr std::uint64_t mac_key(std::uint64_t vlan, const std::uint8_t *mac) {
    std::uint64_t key = vlan;
    for (int i = 0; i < 6; ++i) {
        key = key << 8 | mac[i];
    }
    return key;
}
inline std::uint64_t mac_key(const switch_mac_list_t &entry) {
    return mac_key(load_le16(entry.vlan), entry.mac);
}
inline constexpr std::uint64_t mac_of_key = (std::uint64_t{1} << 48) - 1;

// The port number as it is presented, from 1; port groups follow the ports.
constexpr int presented_port(const switch_mac_list_t &entry) {
    return entry.port + ((entry.flags & switch_mac::group_bit) != 0 ? 21 : 1);
}

// Sorts as the card's agent does: entries that compare equal end up in a fixed order of their own.
void sort_mac_entries(MacEntries entries);

}  // namespace tarn

#endif
