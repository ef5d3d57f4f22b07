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

struct Addresses {
    static AddressSections *read(const Row &row) {
        return get_global_ont_address_table(row.slot) != nullptr ? slot_sections<AddressSections>(row.slot)
                                                                 : nullptr;
    }
    static std::int64_t count(const AddressSections *db) {
        return static_cast<std::int64_t>(address_entries(*db));
    }
    static std::int64_t position(const AddressSections * /*db*/, const Row &row) { return row.number[entry]; }
    static std::int64_t after(const AddressSections * /*db*/, const Row &row) {
        return row.number[entry] + 1;
    }
    static bool enter(AddressSections *db, Row &row, std::int64_t position) {
        row.record = db->addresses.at(static_cast<std::size_t>(position));
        row.number[channel] = load_integer(row.record, ont_address::channel);
        row.number[entry] = position;
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<Addresses>("tarnPONChannelAddressTable_append_index"),
    .answers = no_row_no_object.with(&Answers::ignores_set),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnPONChannelAddressTable, table)
