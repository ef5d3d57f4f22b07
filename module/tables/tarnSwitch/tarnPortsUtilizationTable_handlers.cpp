// The traffic of each switch port over the utilization interval, as the card measured it. Every other pair of
// values is presented in units of 125.
#include "module/switch/switch_operations.h"
#include "module/tables/tarnSwitch/switch_port_rows.h"
#include "wire/records/switch.h"

using namespace tarn;

constexpr Conversion divided_by_125{.to_snmp = [](std::int64_t stored) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(stored) / 125);
}};

constexpr Source value(int n, Conversion conversion = {}) {
    return field_of(switch_port_record<get_switch_port_utilization>, switch_port_utilization::value(n),
                    conversion);
}

constexpr Column columns[] = {
    {3, counter_64, value(3, divided_by_125)},
    {4, counter_64, value(2, divided_by_125)},
    {5, counter_64, value(1)},
    {6, counter_64, value(0)},
    {7, counter_64, value(7, divided_by_125)},
    {8, counter_64, value(6, divided_by_125)},
    {9, counter_64, value(5)},
    {10, counter_64, value(4)},
};

constexpr Table table{
    .index = switch_port_index,
    .columns = columns,
    .rows = numbers_up_to<switch_ports>,
};

MODULE_ITERATOR_TABLE(tarnPortsUtilizationTable, table)
