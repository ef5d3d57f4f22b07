// The two profiles of each of an ONT's services.
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(services)};

constexpr Column columns[] = {
    {4, unsigned32, profile(service_profile_1756), any_unsigned32},
    {5, unsigned32, profile(service_profile_1788), any_unsigned32},
};

constexpr Table table = ont_entries_table<services, service_profile_size, true>(
    "tarnONTFullServicesConfigTable", row_index, columns);

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFullServicesConfigTable, table)
