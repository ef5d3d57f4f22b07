// The OLT's address-table profiles.
#include "module/tables/tarnOLT/olt_profile_rows.h"
#include "wire/records/profile.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(tarnOLTAddressTableProfilesTable,
                      olt_profile_table<get_olt_address_table_profiles, olt_address_table_profile::size,
                                        olt_address_table_profile::count>())
