// The two profiles of each of an ONT's services.
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(services)};

constexpr Column columns[] = {
    {4, unsigned32, profile(service_profile_1756), any_unsigned32},
    {5, unsigned32, profile(service_profile_1788), any_unsigned32},
};

MODULE_ITERATOR_TABLE(tarnONTFullServicesConfigTable,
                      ont_entries_table<services, service_profile_size, true>(row_index, columns))
