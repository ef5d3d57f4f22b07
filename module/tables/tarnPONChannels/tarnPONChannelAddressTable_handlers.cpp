// The addresses learnt behind a card's ONTs, one row an entry, in the card's order. The rows are therefore
// not in the order of their identifiers, which begin with the channel; the host sorts them.
#include "module/operations/address_table.h"
#include "module/tables/frame/table.h"
#include "wire/records/address.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

// A request's channel is not looked at: the entry number alone names the row.
constexpr IndexPart row_index[] = {slot_part, unchecked_ordinal_part(channels_per_slot),
                                   ordinal_part(any_unsigned)};
constexpr std::size_t channel = 0;
constexpr std::size_t entry = 1;

constexpr Column columns[] = {
    {4, octet_string, field(ont_address::serial)},  {5, unsigned32, field(ont_address::value_18)},
    {6, integer, field(ont_address::value_0)},      {7, integer, field(ont_address::value_4)},
    {8, integer, field(ont_address::value_6)},      {9, octet_string, field(ont_address::mac)},
    {10, integer, truth(ont_address::flag_14)},     {11, integer, truth(ont_address::flag_16)},
    {12, unsigned32, field(ont_address::value_29)}, {13, integer, field(ont_address::value_31)},
    {14, unsigned32, field(ont_address::value_33)}, {15, unsigned32, field(ont_address::value_35)},
    {16, integer, field(ont_address::value_2)},
};

bool find_entry(Row &row) {
    std::uint8_t *entries = get_global_ont_address_table(row.slot);
    const std::int64_t number = row.number[entry];
    if (entries == nullptr || number < 0 ||
        number >= static_cast<std::int64_t>(address_entries(*slot_sections<AddressSections>(row.slot)))) {
        return false;
    }
    row.record = entries + number * static_cast<std::int64_t>(ont_address::size);
    return true;
}

bool next_entry(Row &row) {
    ++row.number[entry];
    if (!find_entry(row)) {
        return false;
    }
    row.number[channel] = load_integer(row.record, ont_address::channel);
    return true;
}

constexpr Table table{
    .name = "tarnPONChannelAddressTable",
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_entry,
             .successor = next_entry,
             .index_builder = "tarnPONChannelAddressTable_append_index"},
    .answers = {.missing_row = SNMP_NOSUCHOBJECT, .ignores_set = true},
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnPONChannelAddressTable, table)

// The entry number (from 1) that follows the one in the identifier; 1 when it names none. 0: there is none.
TARN_EXPORT int tarnPONChannelAddressTable_get_first_available_config_index_2(int slot, const oid *name,
                                                                              std::size_t length) {
    const std::int64_t next = length < 16 ? 1 : std::int64_t{get_int_from_oid(name, length, 15)} + 1;
    get_global_ont_address_table(slot);
    const AddressSections *db = slot_sections<AddressSections>(slot_byte(slot));
    return db != nullptr && next >= 1 && static_cast<std::size_t>(next) <= address_entries(*db)
               ? static_cast<int>(next)
               : 0;
}

// Builds the identifier of a row: channel 0-7, entry number from 1.
TARN_EXPORT void tarnPONChannelAddressTable_append_index(table_entry *result, const oid *name,
                                                         std::size_t length, int slot, int channel_number,
                                                         int entry_number, int column) {
    Row row;
    row.slot = slot;
    row.number[channel] = channel_number;
    row.number[entry] = entry_number - 1;
    append_index(table, result, name, length, row, column, __FILE__, __LINE__);
}

// The entry that an identifier names, or null.
TARN_EXPORT std::uint8_t *get_entry_by_oid(int slot, const oid *name, std::size_t length) {
    Row row;
    row.slot = slot_byte(slot);
    if (length < 16 || !parse_exact_index(row_index, name + 13, length - 13, row) || !find_entry(row)) {
        return nullptr;
    }
    return row.record;
}
