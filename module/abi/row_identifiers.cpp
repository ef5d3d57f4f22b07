// Readers and builders of rows' identifiers, for callers outside who know the tables by these names. The
// module's own tables go by their descriptions.
#include <algorithm>
#include <climits>

#include "module/operations/address_table.h"
#include "module/operations/ont_queries.h"
#include "module/switch/switch_mac_table.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/records/ont.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

// Where the parts stand in an identifier whose index begins with the slot and a serial.
constexpr std::size_t serial_position = 15;
constexpr std::size_t ordinal_position = serial_position + serial_size;
constexpr std::size_t row_position = 13;

// A serial byte beyond the end reads as 0.
void read_serial(const oid *name, std::size_t length, std::size_t position, std::uint8_t *serial) {
    for (std::size_t i = 0; i < serial_size; ++i) {
        serial[i] = position + i < length ? static_cast<std::uint8_t>(name[position + i]) : std::uint8_t{0};
    }
}

// Counted from 0; one that is absent or 0 reads as -1.
int read_ordinal(const oid *name, std::size_t length, std::size_t position) {
    const oid sub_id = position < length ? name[position] : 0;
    return static_cast<int>(std::min<oid>(sub_id, INT_MAX)) - 1;
}

Serial serial_in(const oid *name, std::size_t length, std::size_t position = serial_position) {
    Serial serial;
    read_serial(name, length, position, serial.data());
    return serial;
}

void append(const char *table, table_entry *result, const oid *name, std::size_t length, const Row &row,
            int column) {
    append_index(*find_table(table), result, name, length, row, column, __FILE__, __LINE__);
}

Row ont_row(int slot, const std::uint8_t *serial, std::int64_t number = 0, std::int64_t second = 0) {
    Row row;
    row.slot = slot;
    row.serial = serial_at(serial);
    row.number = {number, second};
    return row;
}

// The record that an identifier of at least `least` sub-identifiers names, or null.
std::uint8_t *record_named(const char *table, int slot, const oid *name, std::size_t length,
                           std::size_t least) {
    const Table &described = *find_table(table);
    Row row;
    row.slot = slot_byte(slot);
    if (described.rows.asked != nullptr) {
        described.rows.asked(row.slot);
    }
    const bool found = length >= least &&
                       parse_exact_index(described.index, name + row_position, length - row_position, row) &&
                       described.rows.find(row);
    return found ? row.record : nullptr;
}

bool is_working(const OntSections &db, std::size_t position) {
    return is_ont_state_valid_unsafe(db.ont_list[position].data()) != 0;
}

}  // namespace

// ---- tarnONTStateTable ----

TARN_EXPORT void append_index_state(table_entry *result, const oid *name, std::size_t length,
                                    const std::uint8_t *serial, int slot, int column) {
    append("tarnONTStateTable", result, name, length, ont_row(slot, serial), column);
}
TARN_EXPORT void get_serial_from_oid_state(const oid *name, std::size_t length, std::uint8_t *serial) {
    read_serial(name, length, serial_position, serial);
}
// The position, in the order by serial, of the ONT that follows the one in the identifier; -1 at the end.
TARN_EXPORT int get_first_available_config_index_2_state(int slot, const oid *name, std::size_t length) {
    const OntSections *db = walked_onts(slot);
    const Serial serial = serial_in(name, length);
    const std::size_t rest = db != nullptr ? onts_after(*db, serial.data()).size() : 0;
    return rest != 0 ? max_onts - static_cast<int>(rest) : -1;
}

// ---- tarnONTUNIPortsStateTable: ports 0-3 ----

TARN_EXPORT void append_index_oupt(table_entry *result, const oid *name, std::size_t length,
                                   const std::uint8_t *serial, int slot, int column, int port) {
    append("tarnONTUNIPortsStateTable", result, name, length, ont_row(slot, serial, port), column);
}
TARN_EXPORT void get_serial_from_oid_oupt(const oid *name, std::size_t length, std::uint8_t *serial) {
    read_serial(name, length, serial_position, serial);
}
// -1 when the identifier names none.
TARN_EXPORT int get_port_id_from_oid_oupt(const oid *name, std::size_t length) {
    return read_ordinal(name, length, ordinal_position);
}
// Positions, in the order by serial, of the working ONT that the identifier names, and of the first one after
// its serial; -1 when there is none.
TARN_EXPORT int get_exact_state_index_2_oupt(int slot, const oid *name, std::size_t length) {
    const OntSections *db = walked_onts(slot);
    const Serial serial = serial_in(name, length);
    const int position = db != nullptr ? find_ont_position(*db, serial.data()) : -1;
    return position >= 0 && is_working(*db, static_cast<std::size_t>(position))
               ? max_onts - static_cast<int>(onts_from(*db, serial.data()).size())
               : -1;
}
TARN_EXPORT int get_first_available_state_index_oupt(int slot, const oid *name, std::size_t length) {
    const OntSections *db = walked_onts(slot);
    if (db == nullptr) {
        return -1;
    }
    const OntOrder rest = onts_after(*db, serial_in(name, length).data());
    const auto next = std::ranges::find_if(rest, [db](std::size_t ont) { return is_working(*db, ont); });
    return next != rest.end() ? max_onts - static_cast<int>(rest.end() - next) : -1;
}

// ---- tarnONTAddressTable: entries from 0, in the order by serial ----

TARN_EXPORT void append_index_tarnONTAddressTable(table_entry *result, const oid *name, std::size_t length,
                                                  const std::uint8_t *serial, int slot, int column,
                                                  int entry_number) {
    append("tarnONTAddressTable", result, name, length, ont_row(slot, serial, entry_number), column);
}
TARN_EXPORT void get_serial_from_oid_tarnONTAddressTable(const oid *name, std::size_t length,
                                                         std::uint8_t *serial) {
    read_serial(name, length, serial_position, serial);
}
// -1 when the identifier names none.
TARN_EXPORT int get_record_id_from_oid_tarnONTAddressTable(const oid *name, std::size_t length) {
    return read_ordinal(name, length, ordinal_position);
}
// The position of the entry that follows the one in the identifier; -1 at the end.
TARN_EXPORT int get_first_available_config_index_2_tarnONTAddressTable(int slot, const oid *name,
                                                                       std::size_t length) {
    Row row = ont_row(slot, serial_in(name, length).data(), read_ordinal(name, length, ordinal_position));
    return find_table("tarnONTAddressTable")->rows.successor(row) ? static_cast<int>(row.number[0]) : -1;
}

// ---- tarnPONChannelAddressTable: channels 0-7, entries from 1 ----

// The entry that follows the one in the identifier; 1 when it names none. 0: there is none.
TARN_EXPORT int tarnPONChannelAddressTable_get_first_available_config_index_2(int slot, const oid *name,
                                                                              std::size_t length) {
    const std::int64_t next = length < 16 ? 1 : std::int64_t{get_int_from_oid(name, length, 15)} + 1;
    get_global_ont_address_table(slot);
    const AddressSections *db = slot_sections<AddressSections>(slot_byte(slot));
    return db != nullptr && next >= 1 && static_cast<std::size_t>(next) <= address_entries(*db)
               ? static_cast<int>(next)
               : 0;
}
TARN_EXPORT void tarnPONChannelAddressTable_append_index(table_entry *result, const oid *name,
                                                         std::size_t length, int slot, int channel,
                                                         int entry_number, int column) {
    Row row;
    row.slot = slot;
    row.number = {channel, entry_number - 1};
    append("tarnPONChannelAddressTable", result, name, length, row, column);
}
// The entry that an identifier names, or null.
TARN_EXPORT std::uint8_t *get_entry_by_oid(int slot, const oid *name, std::size_t length) {
    return record_named("tarnPONChannelAddressTable", slot, name, length, 16);
}

// ---- tarnSwitchMacListTable ----

TARN_EXPORT void tarnSwitchMacListTable_append_index(table_entry *result, const oid *name, std::size_t length,
                                                     int slot, switch_mac_list_t *entry, int column) {
    Row row;
    row.slot = slot;
    row.number[0] = load_le16(entry->vlan);
    std::copy(std::begin(entry->mac), std::end(entry->mac), row.number.begin() + 1);
    row.record = &entry->port;
    append("tarnSwitchMacListTable", result, name, length, row, column);
}
// The entry that an identifier names, or null.
TARN_EXPORT std::uint8_t *get_switch_mac_list_entry_by_oid(int slot, const oid *name, std::size_t length) {
    return record_named("tarnSwitchMacListTable", slot, name, length, 21);
}

// ---- tarnSwitchVLANTable ----

TARN_EXPORT void append_vlan_index(table_entry *result, const oid *name, std::size_t length, int slot,
                                   int index, int column) {
    Row row;
    row.slot = slot;
    row.number[0] = index;
    append("tarnSwitchVLANTable", result, name, length, row, column);
}

// ---- The tables of ONT performance monitoring ----

namespace {

// Their identifiers are one sub-identifier longer.
constexpr std::size_t counter_column_position = 13;
constexpr std::size_t counter_serial_position = 16;
constexpr std::size_t counter_key_position = counter_serial_position + serial_size;
constexpr std::size_t counter_number_position = counter_key_position + 1;

// The first position of a slot's ONT list whose serial compares so with the identifier's, or -1.
template <class Compare>
int list_position(const oid *name, std::size_t length, const std::uint8_t *ont_list, Compare matches) {
    const Serial serial = serial_in(name, length, counter_serial_position);
    for (int position = 0; position < max_onts; ++position) {
        const std::uint8_t *record = ont_list + static_cast<std::size_t>(position) * ont_list::size;
        if (matches(compare_serials(record, serial.data()))) {
            return position;
        }
    }
    return -1;
}

int exact_ont(const oid *name, std::size_t length, const std::uint8_t *ont_list) {
    const Serial serial = serial_in(name, length, counter_serial_position);
    return is_zero_serial(serial.data())
               ? -1
               : list_position(name, length, ont_list, [](int order) { return order == 0; });
}

}  // namespace

// Column, serial, key and counter of an identifier, the latter two from 0; positions in a slot's list of the
// identifier's ONT, and of the first one with a greater serial, -1 when there is none; and a row's
// identifier.
#define COUNTER_TABLE(T, key_reader)                                                                      \
    TARN_EXPORT int get_colnum_from_oid_##T(const oid *name, std::size_t length) {                        \
        return get_int_from_oid(name, length, counter_column_position);                                   \
    }                                                                                                     \
    TARN_EXPORT void get_serial_from_oid_##T(const oid *name, std::size_t length, std::uint8_t *serial) { \
        read_serial(name, length, counter_serial_position, serial);                                       \
    }                                                                                                     \
    TARN_EXPORT int key_reader##_##T(const oid *name, std::size_t length) {                               \
        return read_ordinal(name, length, counter_key_position);                                          \
    }                                                                                                     \
    TARN_EXPORT int get_counter_id_from_oid_##T(const oid *name, std::size_t length) {                    \
        return read_ordinal(name, length, counter_number_position);                                       \
    }                                                                                                     \
    TARN_EXPORT int get_exact_state_index_2_##T(const oid *name, std::size_t length,                      \
                                                const std::uint8_t *ont_list) {                           \
        return exact_ont(name, length, ont_list);                                                         \
    }                                                                                                     \
    TARN_EXPORT int get_first_available_state_index_##T(const oid *name, std::size_t length,              \
                                                        const std::uint8_t *ont_list) {                   \
        return list_position(name, length, ont_list, [](int order) { return order > 0; });                \
    }                                                                                                     \
    TARN_EXPORT void append_index_##T(table_entry *result, const oid *name, std::size_t length,           \
                                      const std::uint8_t *serial, int slot, int column, int key,          \
                                      int position) {                                                     \
        append(#T, result, name, length, ont_row(slot, serial, key, position), column);                   \
    }

COUNTER_TABLE(tarnONTEthPerformMonitoringHistDataTable, get_port_id_from_oid)
COUNTER_TABLE(tarnONTGalEthPerformMonitoringHistDataTable, get_cc_id_from_oid)
COUNTER_TABLE(tarnONTFecPerformMonitoringHistDataTable, get_dummy_from_oid)
COUNTER_TABLE(tarnONTGEMPortPerformMonitoringDSTable, get_cc_id_from_oid)
COUNTER_TABLE(tarnONTGEMPortPerformMonitoringUSTable, get_cc_id_from_oid)
COUNTER_TABLE(tarnONTCrossConnectDSTable, get_cc_id_from_oid)
COUNTER_TABLE(tarnONTCrossConnectUSTable, get_cc_id_from_oid)
COUNTER_TABLE(tarnONTEthFrameExtendedPerformMonitoringDSTable, get_port_id_from_oid)
COUNTER_TABLE(tarnONTEthFrameExtendedPerformMonitoringUSTable, get_port_id_from_oid)
