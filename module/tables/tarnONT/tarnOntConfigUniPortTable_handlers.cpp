// The UNI ports of an ONT's configuration. A port is a row while it is enabled.
#include "module/tables/tarnONT/ont_config_rows.h"

using namespace tarn;
using namespace tarn::ont_config;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(uni_ports)};

constexpr Column columns[] = {
    {4, integer, field(uni_enabled, row_status_conversion), integer_in(4, 6)},
    {5, integer, truth(uni_enabled), truth_value},
    {6, unsigned32, field(uni_value_8), unsigned_within(0, 5, SNMP_ERR_WRONGVALUE)},
    {7, unsigned32, field(uni_value_9), unsigned_within(1, 3, SNMP_ERR_WRONGVALUE)},
};

bool enabled(const std::uint8_t *port) {
    return load_integer(port, uni_enabled) != 0;
}

using Ports = OntEntries<uni_ports, uni_port_size, true, any_record, enabled>;

bool may_be_set(Row &row) {
    return slot_isconfigured(row.slot) != 0 && !is_zero_serial(row.serial.data());
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = rows_of<Ports>,
    .writes = stages_one_ont<staged_entry<uni_port_size>>.found_by(may_be_set),
    .answers = row_first,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnOntConfigUniPortTable, table)
