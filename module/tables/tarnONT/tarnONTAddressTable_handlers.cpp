// The addresses learnt behind a card's ONTs, in the order of their ONTs' serials; an entry's number is its
// position in that order.
#include <algorithm>

#include "module/operations/address_table.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/records/address.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(any_unsigned)};

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, field(ont_address::serial)},
    {3, unsigned32, index_number(0, 1)},
    {4, integer, field(ont_address::value_0)},
    {5, integer, field(ont_address::value_4)},
    {6, integer, field(ont_address::value_6)},
    {7, octet_string, field(ont_address::mac)},
    {8, integer, truth(ont_address::flag_14)},
    {9, integer, truth(ont_address::flag_16)},
    {10, unsigned32, field(ont_address::value_29)},
    {11, integer, field(ont_address::value_31)},
    {12, unsigned32, field(ont_address::value_33)},
    {13, unsigned32, field(ont_address::value_35)},
    {14, integer, field(ont_address::value_2)},
};

// The first position whose entry lies after (serial, entry number).
std::size_t first_after(const AddressSections &db, const Serial &serial, std::int64_t entry_number) {
    std::size_t low = 0;
    std::size_t high = sorted_address_entries(db);
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        const int order =
            compare_serials(address_by_serial(db, middle) + ont_address::serial.offset, serial.data());
        if (order > 0 || (order == 0 && static_cast<std::int64_t>(middle) > entry_number)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

struct AddressesBySerial {
    static bool may_walk(const Row &row) { return check_slot_link(row.slot) != 0; }
    static AddressSections *read(const Row &row) {
        return get_global_ont_address_table(row.slot) != nullptr ? slot_sections<AddressSections>(row.slot)
                                                                 : nullptr;
    }
    static std::int64_t count(const AddressSections *db) {
        return static_cast<std::int64_t>(sorted_address_entries(*db));
    }
    static std::int64_t position(const AddressSections *db, const Row &row) {
        const std::uint8_t *entry = address_by_serial(*db, static_cast<std::size_t>(row.number[0]));
        const bool of_ont =
            entry != nullptr && compare_serials(entry + ont_address::serial.offset, row.serial.data()) == 0;
        return of_ont ? row.number[0] : -1;
    }
    static std::int64_t after(const AddressSections *db, const Row &row) {
        return static_cast<std::int64_t>(first_after(*db, row.serial, row.number[0]));
    }
    static bool enter(AddressSections *db, Row &row, std::int64_t position) {
        const std::uint8_t *entry = address_by_serial(*db, static_cast<std::size_t>(position));
        row.serial = serial_at(entry + ont_address::serial.offset);
        row.number[0] = position;
        row.record = db->addresses.bytes + (entry - db->addresses.bytes);
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<AddressesBySerial>("append_index_tarnONTAddressTable"),
    .answers = row_first,
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTAddressTable, table)
