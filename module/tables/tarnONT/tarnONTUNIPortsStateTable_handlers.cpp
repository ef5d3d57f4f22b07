// State of the four UNI ports of every working ONT.
#include "module/operations/ont_queries.h"
#include "module/store/ont_sections.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(ont_uni_ports::ports)};

// The ports' record, moved so that the fields of port 0 are those of the row's port.
std::uint8_t *port_block(Row &row) {
    std::uint8_t *record = get_ont_uni_ports_state(row.slot, row.serial.data());
    return record != nullptr ? record + row.number[0] * ont_uni_ports::block_size : nullptr;
}

int is_present(Row &row, const Reply &reply) {
    const std::uint8_t *record = get_ont_uni_ports_state(row.slot, row.serial.data());
    if (record == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    const bool present = load_integer(record, ont_uni_ports::port_count) > row.number[0];
    return reply.number(present ? 1 : 2);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, index_number(0, 1)},
    {4, integer, answered_by(is_present)},
    {5, integer, field_of(port_block, ont_uni_ports::value_0, nonzero_conversion)},
    {6, integer, field_of(port_block, ont_uni_ports::value_2)},
    {7, integer, field_of(port_block, ont_uni_ports::value_4)},
    {8, integer, truth_of(port_block, ont_uni_ports::flag_6)},
    {9, unsigned32, field_of(port_block, ont_uni_ports::value_8)},
    {10, unsigned32, field_of(port_block, ont_uni_ports::value_9)},
    {11, unsigned32, field_of(port_block, ont_uni_ports::value_10)},
    {12, unsigned32, field_of(port_block, ont_uni_ports::value_11)},
    {13, unsigned32, field_of(port_block, ont_uni_ports::value_12)},
};

bool is_working(const std::uint8_t *ont) {
    return is_ont_state_valid_unsafe(ont) != 0;
}

using WorkingPorts = EntriesOfListedOnts<ont_uni_ports::ports, is_working>;

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<WorkingPorts>("append_index_oupt"),
    .answers = row_first.with(&Answers::ignores_set),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTUNIPortsStateTable, table)
