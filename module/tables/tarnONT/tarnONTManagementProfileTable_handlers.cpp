// Management profiles.
#include "module/store/profile_sections.h"
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::management_profile;

namespace {

// What a SET edits, less what it deletes.
Transaction<CommitSet<count>> edited;
using Profiles = ProfileKind<get_management_profiles, add_management_profile, delete_management_profile, size,
                             &ProfileSections::management_stamp, edited>;

constexpr Column columns[] = {
    profile_number,
    profile_description,
    profile_name,
    {5, octet_string, field(text_280), octets_up_to(127)},
    {6, octet_string, field(text_408), octets_up_to(26)},
    {7, octet_string, field(text_434), octets_up_to(26)},
    {8, integer, field(flag_278, nonzero_conversion), any_integer},
    Profiles::row_status(20),
};

// Unlike the other kinds, the profile is sent for each of its columns.
int commit(Row &row) {
    const int index = item_of_number(row);
    return !edited.state.contains(index) || set_management_profile(index) == 0 ? SNMP_ERR_NOERROR
                                                                               : SNMP_ERR_COMMITFAILED;
}

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTManagementProfileTable, Profiles::table<commit>(columns))
