// What the tables of configured and of operational VLANs share.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_VLAN_COLUMNS_H
#define TARN_MODULE_TABLES_TARNSWITCH_VLAN_COLUMNS_H

#include "module/switch/switch_ports.h"
#include "module/tables/frame/column.h"

namespace tarn {

// A port mask of the row's record and its group mask, as a list of ports.
template <Field Ports, Field Groups>
int answer_ports(Row &row, const Reply &reply) {
    std::uint8_t list[4];
    store_le32(list, portlist_switch_to_snmp(static_cast<std::uint32_t>(load_integer(row.record, Ports)),
                                             static_cast<std::uint16_t>(load_integer(row.record, Groups))));
    return reply.octets(list, sizeof list);
}

}  // namespace tarn

#endif
