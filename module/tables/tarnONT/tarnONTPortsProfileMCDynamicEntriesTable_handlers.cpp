// The multicast entries of the ports profiles.
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::ports_profile;

constexpr IndexPart row_index[] = {number_part(any_unsigned), number_part(multicast_entries)};

constexpr Column columns[] = {
    {2, unsigned32, field(multicast_value), any_unsigned32},  // 65535: none
    {3, ip_address, field(multicast_address_2), address_of(4)},
    {4, ip_address, field(multicast_address_6), address_of(4)},
};

MODULE_ITERATOR_TABLE(tarnONTPortsProfileMCDynamicEntriesTable,
                      PortsProfiles::entries_table<multicast_entries, multicast_entry_size,
                                                   commit_set<commit_ports_profiles>>(row_index, columns))
