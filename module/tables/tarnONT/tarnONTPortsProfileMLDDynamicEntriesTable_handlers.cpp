// The MLD entries of the ports profiles.
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::ports_profile;

constexpr IndexPart row_index[] = {number_part(any_unsigned), number_part(mld_entries)};

// What does not fill an address leaves zeros after it.
constexpr Column columns[] = {
    {2, unsigned32, field(mld_value), any_unsigned32},  // 65535: none
    {5, octet_string, field(mld_address_2), any_octets},
    {6, octet_string, field(mld_address_18), any_octets},
    {7, unsigned32, field(mld_value_34), any_unsigned32},
    {8, unsigned32, field(mld_value_36), any_unsigned32},
    {9, unsigned32, field(mld_value_38), any_unsigned32},
    {10, unsigned32, field(mld_value_40), any_unsigned32},
};

MODULE_ITERATOR_TABLE(
    tarnONTPortsProfileMLDDynamicEntriesTable,
    PortsProfiles::entries_table<mld_entries, mld_entry_size, commit_set<commit_ports_profiles>>(row_index,
                                                                                                 columns))
