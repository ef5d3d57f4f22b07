// Tables with one row a switch port, the ports 0 to 12 of every slot.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_SWITCH_PORT_ROWS_H
#define TARN_MODULE_TABLES_TARNSWITCH_SWITCH_PORT_ROWS_H

#include "module/tables/frame/table.h"
#include "wire/records/switch.h"

namespace tarn {

inline constexpr IndexPart switch_port_index[] = {slot_part, ordinal_part(switch_ports)};

inline int switch_port_of(const Row &row) {
    return static_cast<int>(row.number[0]);
}

// The record of the row's port that an operation returns.
template <std::uint8_t *(*Get)(int slot, int port)>
std::uint8_t *switch_port_record(Row &row) {
    return Get(row.slot, switch_port_of(row));
}

}  // namespace tarn

#endif
