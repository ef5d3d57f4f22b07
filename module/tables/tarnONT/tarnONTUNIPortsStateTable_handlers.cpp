// State of the four UNI ports of every working ONT.
#include "module/operations/ont_queries.h"
#include "module/store/ont_sections.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(ont_uni_ports::ports)};

std::int64_t &port_of(Row &row) {
    return row.number[0];
}

// The ports' record, moved so that the fields of port 0 are those of the row's port.
std::uint8_t *port_block(Row &row) {
    std::uint8_t *record = get_ont_uni_ports_state(row.slot, row.serial.data());
    return record != nullptr ? record + port_of(row) * ont_uni_ports::block_size : nullptr;
}

int is_present(Row &row, const Reply &reply) {
    const std::uint8_t *record = get_ont_uni_ports_state(row.slot, row.serial.data());
    if (record == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    const bool present = load_integer(record, ont_uni_ports::port_count) > port_of(row);
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

bool find_port(Row &row) {
    return find_ont(row) && is_ont_state_valid_unsafe(row.record) != 0;
}

// The first working ONT of a part of the order by serial, as its position in that part; its size: none.
std::size_t first_working(const OntSections &db, OntOrder order) {
    std::size_t i = 0;
    while (i < order.size() && is_ont_state_valid_unsafe(db.ont_list[order[i]].data()) == 0) {
        ++i;
    }
    return i;
}

bool is_working(const OntSections &db, const std::uint8_t *serial) {
    const int position = find_ont_position(db, serial);
    return position >= 0 &&
           is_ont_state_valid_unsafe(db.ont_list[static_cast<std::size_t>(position)].data()) != 0;
}

bool next_port(Row &row) {
    OntSections *db = walked_onts(row.slot);
    if (db == nullptr) {
        return false;
    }
    if (port_of(row) + 1 < ont_uni_ports::ports && is_working(*db, row.serial.data())) {
        ++port_of(row);
        return find_port(row);
    }
    const OntOrder rest = onts_after(*db, row.serial.data());
    const std::size_t next = first_working(*db, rest);
    if (next == rest.size()) {
        return false;
    }
    row.record = db->ont_list[rest[next]].data();
    row.serial = serial_at(row.record);
    port_of(row) = 0;
    return true;
}

constexpr Table table{
    .name = "tarnONTUNIPortsStateTable",
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_port, .successor = next_port, .index_builder = "append_index_oupt"},
    .answers = {.row_before_column = true, .ignores_set = true},
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTUNIPortsStateTable, table)
