// The OLT's VLAN profiles.
#include "module/tables/tarnOLT/olt_profile_rows.h"
#include "wire/records/profile.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(
    tarnOLTVlanProfilesTable,
    olt_profile_table<get_olt_vlan_profiles, olt_vlan_profile::size, olt_vlan_profile::count>())
