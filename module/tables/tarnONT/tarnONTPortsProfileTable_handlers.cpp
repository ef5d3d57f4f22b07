// Ports profiles. Their UNI ports and their multicast and MLD entries have tables of their own.
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::ports_profile;

constexpr Column columns[] = {
    profile_number,
    profile_description,
    profile_name,
    {4, unsigned32, field(value_280), unsigned_within(1, 3, SNMP_ERR_WRONGVALUE)},
    {5, integer, field(value_281), any_integer},
    {6, integer, truth(flag_283), any_integer},
    {7, unsigned32, field(value_285), any_unsigned32},
    {8, ip_address, field(address_286), address_up_to(4)},
    {9, unsigned32, field(value_290), any_unsigned32},
    {10, unsigned32, field(value_294), any_unsigned32},
    {11, unsigned32, field(value_298), any_unsigned32},
    {12, integer, truth(flag_1376), any_integer},
    {13, unsigned32, field(value_1378), any_unsigned32},
    {14, unsigned32, field(value_1380), any_unsigned32},
    {15, integer, field(value_1381), any_integer},
    {16, unsigned32, field(value_1388), any_unsigned32},
    {17, unsigned32, field(value_1390), any_unsigned32},
    PortsProfiles::row_status(20),
    {21, unsigned32, field(value_1383), any_unsigned32},
    {22, unsigned32, field(value_1385), any_unsigned32},
    {23, integer, field(value_1386), any_integer},
    {30, integer, field(value_278), integer_in(0, 1)},
    {31, unsigned32, field(value_502), unsigned_within(1, 2, SNMP_ERR_WRONGVALUE)},
    {32, integer, field(value_503), any_integer},
    {33, integer, truth(flag_505), any_integer},
    {34, unsigned32, field(value_507), any_unsigned32},
    {35, octet_string, field(octets_508), octets_of(16)},
    {36, unsigned32, field(value_524), any_unsigned32},
    {37, unsigned32, field(value_528), any_unsigned32},
    {38, unsigned32, field(value_532), any_unsigned32},
};

MODULE_ITERATOR_TABLE(tarnONTPortsProfileTable,
                      PortsProfiles::table<commit_set<commit_ports_profiles>>(columns))
