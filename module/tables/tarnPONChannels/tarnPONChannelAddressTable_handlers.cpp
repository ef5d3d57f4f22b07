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
