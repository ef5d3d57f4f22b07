// The custom cross-connects of an ONT, whether its slot is configured or not.
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

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

MODULE_ITERATOR_TABLE(tarnONTCustomCrossConnectTable,
                      ont_entries_table<crossconnects, crossconnect_size>(row_index, columns))
