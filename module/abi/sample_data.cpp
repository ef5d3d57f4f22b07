#include "module/abi/sample_data.h"

#include "module/operations/address_table.h"
#include "module/operations/sessions.h"
#include "module/store/address_sections.h"
#include "module/store/cached_query.h"
#include "wire/records/address.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr int sample_addresses = 14;
constexpr int sample_sessions = 10;

void write_sample_address(std::uint8_t *entry, int number) {
    const auto low = static_cast<std::uint8_t>(number);
    const std::uint8_t serial[serial_size] = {'T', 'A', 'R', 'N', 0, 0, 0, low};
    const std::uint8_t mac[6] = {2, 0, 0, 0, 0, low};
    std::memset(entry, 0, ont_address::size);
    std::memcpy(entry + ont_address::serial.offset, serial, sizeof serial);
    std::memcpy(entry + ont_address::mac.offset, mac, sizeof mac);
    store_integer(entry, ont_address::channel, number % channels_per_slot);
    store_integer(entry, ont_address::value_18, number / channels_per_slot);
}

}  // namespace

void fake_global_ont_address_table(int slot) {
    AddressSections *db = slot_sections<AddressSections>(slot);
    if (db == nullptr || !db->addresses.resize(sample_addresses)) {
        return;
    }
    db->address_count = sample_addresses;
    for (int i = 0; i < sample_addresses; ++i) {
        write_sample_address(db->addresses.at(static_cast<std::size_t>(i)), i + 1);
    }
    insert_sort_global_ont_address_table(slot);
    db->addresses_stamp.set();
}

void fake_pppoe_sessions(int slot) {
    SessionSections *db = slot_sections<SessionSections>(slot);
    if (db == nullptr || !db->pppoe_sessions.resize(sample_sessions)) {
        return;
    }
    db->pppoe_session_count = sample_sessions;
    std::memset(db->pppoe_sessions.bytes, 0, sample_sessions * pppoe_session::size);
    db->pppoe_stamp.set();
}

void fake_igmp_stats(int slot) {
    cleanup_igmp_stats(slot);
}

std::uint8_t *fake_vlan_list(void) {
    constexpr int count = 3000;
    static std::uint8_t fake_list[vlan_list::size];
    static bool already = false;
    if (!already) {
        store_integer(fake_list, vlan_list::count, count);
        for (int i = 0; i < count; ++i) {
            store_integer(fake_list, vlan_list::number(i), i + 1);
        }
        already = true;
    }
    return fake_list;
}
