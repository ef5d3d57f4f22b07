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

constexpr Table table{
    .name = "tarnONTFullServicesConfigTable",
    .index = row_index,
    .columns = columns,
    .find = find_ont_entry<service_profile_size>,
    .next = next_ont_entry<services, service_profile_size, has_serial, always>,
    .find_for_set = any_row,
    .stage = stage_ont,
    .edited = staged_entry<service_profile_size>,
    .commit = commit_ont,
    .drop = invalidate_config_buffer,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFullServicesConfigTable, table)
