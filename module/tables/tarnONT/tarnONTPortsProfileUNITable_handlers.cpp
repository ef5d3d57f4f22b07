// The UNI ports of the ports profiles.
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::ports_profile;

constexpr IndexPart row_index[] = {number_part(any_unsigned), number_part(uni_ports)};

constexpr Column columns[] = {
    {1, unsigned32, index_number(1, 0)},
    {2, integer, field(uni_value_1398), any_integer},
    {3, integer, truth(uni_flag_1403), any_integer},
    {4, unsigned32, field(uni_value_1405), any_unsigned32},
    {5, unsigned32, field(uni_value_1407), any_unsigned32},
    {6, integer, field(uni_value_1408), any_integer},
    {7, unsigned32, field(uni_value_1415), any_unsigned32},
    {8, unsigned32, field(uni_value_1417), any_unsigned32},
    {9, integer, truth(uni_flag_1421), any_integer},
    {10, unsigned32, field(uni_value_1423), any_unsigned32},
    {11, unsigned32, field(uni_value_1427), any_unsigned32},
    {12, integer, truth(uni_flag_1431), any_integer},
    {13, unsigned32, field(uni_value_1433), any_unsigned32},
    {14, unsigned32, field(uni_value_1437), any_unsigned32},
    {15, unsigned32, field(uni_value_1410), any_unsigned32},
    {16, unsigned32, field(uni_value_1412), any_unsigned32},
    {17, integer, field(uni_value_1413), any_integer},
};

MODULE_ITERATOR_TABLE(
    tarnONTPortsProfileUNITable,
    PortsProfiles::entries_table<uni_ports, uni_port_size, commit_set<commit_ports_profiles>>(row_index,
                                                                                              columns))
