// Samples for trials without a card.
#include <random>

#include "module/abi/sample_data.h"
#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/switch_sections.h"
#include "module/switch/switch_mac_table.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

// Room for `count` cleared entries in the slot's table; empty without memory.
MacEntries make_room(int slot, std::size_t count) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr || !db->mac_table.resize(count)) {
        return {};
    }
    std::memset(db->mac_table.bytes, 0, count * switch_mac::size);
    db->mac_count = static_cast<std::uint32_t>(count);
    db->mac_stamp.set();
    return {reinterpret_cast<switch_mac_list_t *>(db->mac_table.bytes), count};
}

}  // namespace

void emulate_mac_table(int slot) {
    std::minstd_rand random;
    std::size_t position = 0;
    for (switch_mac_list_t &entry : make_room(slot, std::size_t{40} * 256)) {
        store_le16(entry.vlan, static_cast<std::uint16_t>(random() % 2000));
        std::memset(entry.mac, 0xAA, 4);
        entry.mac[4] = static_cast<std::uint8_t>(position / 256);
        entry.mac[5] = static_cast<std::uint8_t>(position % 256);
        ++position;
    }
}

void fake_switch_mac_table(int slot) {
    std::minstd_rand random;
    const MacEntries entries = make_room(slot, switch_mac::max_entries);
    for (switch_mac_list_t &entry : entries) {
        store_le16(entry.vlan, static_cast<std::uint16_t>(2 + random() % 300));
        for (std::uint8_t &octet : entry.mac) {
            octet = static_cast<std::uint8_t>(random() >> 8);
        }
    }
    // A pair that compares equal, and one entry without an address.
    if (!entries.empty()) {
        entries[0] = entries[1];
        std::memset(entries[2].mac, 0, sizeof entries[2].mac);
    }
    log_add(log_information, "%s : first sort start\n", __func__);
    sort_mac_entries(entries);
}
