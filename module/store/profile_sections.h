// The ONT profiles and the OLT profiles of the chassis.
#ifndef TARN_MODULE_STORE_PROFILE_SECTIONS_H
#define TARN_MODULE_STORE_PROFILE_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/profile.h"

namespace tarn {

struct ProfileSections {
    Records<management_profile::size, management_profile::count> management_profiles;
    Stamp management_stamp;
    Records<crossconnect_profile::size, crossconnect_profile::count> crossconnect_profiles;
    Stamp crossconnect_stamp;
    Records<shaping_profile::size, shaping_profile::count> shaping_profiles;
    Stamp shaping_stamp;
    Records<alloc_profile::size, alloc_profile::count> alloc_profiles;
    Stamp alloc_stamp;
    Records<ports_profile::size, ports_profile::count> ports_profiles;
    Stamp ports_stamp;
};

struct OltProfileSections {
    Section<olt_address_table_profile::size * olt_address_table_profile::count> olt_address_table_profiles;
    Section<olt_vlan_profile::size * olt_vlan_profile::count> olt_vlan_profiles;
};

}  // namespace tarn

#endif
