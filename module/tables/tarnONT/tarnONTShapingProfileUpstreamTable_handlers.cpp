// The cross-connects of the shaping profiles, each with a short and a long entry in the profile.
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::shaping_profile;

namespace {

constexpr IndexPart row_index[] = {number_part(any_unsigned), number_part(crossconnects)};
constexpr std::size_t crossconnect = 1;

std::uint8_t *short_entry(Row &row) {
    return row.record + row.number[crossconnect] * short_entry_size;
}
std::uint8_t *long_entry(Row &row) {
    return row.record + row.number[crossconnect] * long_entry_size;
}

// The number passes the first phase as an INTEGER, which it is not when read.
int refuse(Row & /*row*/, const Binding & /*value*/) {
    return SNMP_ERR_NOTWRITABLE;
}

constexpr Column columns[] = {
    {1, unsigned32, index_number(crossconnect, 0), any_integer, refuse},
    {2, integer, truth_of(long_entry, long_flag), any_integer},
    {3, unsigned32, field_of(long_entry, long_value_2), any_unsigned32},
    {4, unsigned32, field_of(long_entry, long_value_6), any_unsigned32},
    {5, integer, truth_of(short_entry, short_flag), any_integer},
    {6, unsigned32, field_of(short_entry, short_value), any_unsigned32},
};

}  // namespace

MODULE_ITERATOR_TABLE(
    tarnONTShapingProfileUpstreamTable,
    ShapingProfiles::entries_table<crossconnects, 0, commit_set<commit_shaping_profiles>>(row_index, columns))
