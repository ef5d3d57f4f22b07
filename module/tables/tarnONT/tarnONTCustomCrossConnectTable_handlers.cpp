// The custom cross-connects of an ONT.
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(crossconnects)};

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, index_number(0, 0)},  // from 0, unlike the index
    {4, integer, truth(crossconnect_enabled), any_integer},
    {5, integer, field(crossconnect_value_2), any_integer},
    {6, integer, field(crossconnect_value_4), any_integer},
    {7, integer, field(crossconnect_value_5), any_integer},
};

constexpr Table table{
    .name = "tarnONTCustomCrossConnectTable",
    .index = row_index,
    .columns = columns,
    .find = find_ont_entry<crossconnect_size>,
    .next = next_ont_entry<crossconnects, crossconnect_size, has_serial, always>,
    .find_for_set = any_row,
    .stage = stage_ont,
    .edited = staged_entry<crossconnect_size>,
    .commit = commit_ont,
    .drop = invalidate_config_buffer,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTCustomCrossConnectTable, table)
