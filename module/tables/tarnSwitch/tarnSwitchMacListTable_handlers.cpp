// The MAC addresses that a card's switch has learnt, in the order of their identifiers.
#include <algorithm>
#include <cstdio>

#include "module/common/log.h"
#include "module/store/sections.h"
#include "module/switch/switch_mac_table.h"
#include "module/tables/frame/table.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr IndexPart octet_part = number_part(256);
constexpr IndexPart row_index[] = {slot_part,  number_part(65536), octet_part, octet_part,
                                   octet_part, octet_part,         octet_part, octet_part};

// VLAN and MAC address of a row; a part that a request left out reads as 0.
std::uint64_t key_of(const Row &row) {
    std::uint8_t mac[6];
    for (std::size_t i = 0; i < sizeof mac; ++i) {
        mac[i] = static_cast<std::uint8_t>(std::max<std::int64_t>(row.number[i + 1], 0));
    }
    return mac_key(static_cast<std::uint64_t>(std::max<std::int64_t>(row.number[0], 0)), mac);
}

void enter(Row &row, switch_mac_list_t &entry) {
    row.number[0] = load_le16(entry.vlan);
    std::copy(std::begin(entry.mac), std::end(entry.mac), row.number.begin() + 1);
    row.record = &entry.port;
}

bool entry_before(const switch_mac_list_t &entry, std::uint64_t key) {
    return mac_key(entry) < key;
}

bool before_entry(std::uint64_t key, const switch_mac_list_t &entry) {
    return key < mac_key(entry);
}

void trace_lookup(int slot) {
    for (const int place : {37, 43}) {
        log_add(log_error, "file: %s; line: %d; slot: %u", "tarnSwitch/tarnSwitchMacListTable_handlers",
                place, static_cast<unsigned>(slot));
    }
}

bool find_entry(Row &row) {
    const MacEntries entries = mac_entries(row.slot);
    const std::uint64_t key = key_of(row);
    const auto found = std::lower_bound(entries.begin(), entries.end(), key, entry_before);
    if (found == entries.end() || mac_key(*found) != key) {
        return false;
    }
    row.record = &found->port;
    return true;
}

// An entry without an address is no row of the walk.
bool next_entry(Row &row) {
    const MacEntries entries = mac_entries(row.slot);
    auto next = std::upper_bound(entries.begin(), entries.end(), key_of(row), before_entry);
    while (next != entries.end() && (mac_key(*next) & mac_of_key) == 0) {
        ++next;
    }
    if (next == entries.end()) {
        return false;
    }
    enter(row, *next);
    return true;
}

const switch_mac_list_t &entry_of(const std::uint8_t *record) {
    return *reinterpret_cast<const switch_mac_list_t *>(record);
}

std::int64_t port_of(const std::uint8_t *record) {
    return presented_port(entry_of(record));
}

std::int64_t flag_of(const std::uint8_t *record) {
    return (entry_of(record).flags & switch_mac::flag_bit) != 0 ? 1 : 2;
}

int answer_mac(Row &row, const Reply &reply) {
    const std::uint8_t *mac = entry_of(row.record).mac;
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1],
                                     mac[2], mac[3], mac[4], mac[5]);
    return reply.octets(text, static_cast<std::size_t>(length));
}

constexpr Column columns[] = {
    {4, unsigned32, computed(port_of)},
    {5, integer, computed(flag_of)},
    {6, octet_string, answered_by(answer_mac)},
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_entry,
             .successor = next_entry,
             .asked = trace_lookup,
             .index_builder = "tarnSwitchMacListTable_append_index"},
    .answers = no_row_no_object.with(reserving, no_row, accepted),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnSwitchMacListTable, table)
