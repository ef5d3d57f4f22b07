// Cross-connect profiles.
#include "module/store/profile_sections.h"
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::crossconnect_profile;

namespace {

Transaction<CommitSet<count>> edited;
using Profiles = ProfileKind<get_crossconnect_profiles, add_crossconnect_profile, delete_crossconnect_profile,
                             size, &ProfileSections::crossconnect_stamp, edited>;

// Its range is 16 bits, but only the action phase says so.
int set_value_295(Row &row, const Binding &value) {
    if (*value.val.integer >= 65536) {
        return SNMP_ERR_WRONGVALUE;
    }
    store_integer(row.record, value_295, *value.val.integer);
    return SNMP_ERR_NOERROR;
}

constexpr Column columns[] = {
    profile_number,
    profile_description,
    profile_name,
    {4, integer, field(value_278), any_integer},
    {5, unsigned32, field(value_280), any_unsigned32},
    {6, integer, field(value_281), any_integer},
    {7, integer, field(value_283), any_integer},
    {8, integer, field(value_285), any_integer},
    {9, integer, field(value_286), any_integer},
    {10, integer, field(value_288), any_integer},
    {11, integer, field(value_290), any_integer},
    {12, integer, field(value_291), any_integer},
    {13, integer, field(value_293), any_integer},
    {14, integer, field(value_295), any_integer, set_value_295},
    {15, unsigned32, field(value_297), unsigned_within(0, 7, SNMP_ERR_WRONGVALUE)},
    Profiles::row_status(20),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTCrossConnectProfileTable,
                      Profiles::table<commit_row<edited, set_crossconnect_profile>>(columns))
