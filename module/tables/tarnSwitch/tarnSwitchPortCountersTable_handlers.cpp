// The 31 counters of each switch port, with a trigger that resets them.
#include "module/switch/switch_operations.h"
#include "module/tables/tarnSwitch/switch_port_rows.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

int reset_counters(const Row &row) {
    return reset_switch_port_counters(row.slot, switch_port_of(row));
}

// Counter n is column n + 3.
constexpr auto columns = [] {
    std::array<Column, switch_port_counters::count + 1> list{};
    for (int n = 0; n < switch_port_counters::count; ++n) {
        const Field counter = switch_port_counters::counter(n);
        list[static_cast<std::size_t>(n)] = {3 + n, counter_64,
                                             field_of(switch_port_record<get_switch_port_counters>, counter)};
    }
    list.back() = {50, unsigned32, reads_zero, any_unsigned32, on_any_value<reset_counters>};
    return list;
}();

constexpr Table table{
    .index = switch_port_index,
    .columns = columns,
    .rows = numbers_up_to<switch_ports>,
    .answers = usual.with(setting, no_column, accepted),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnSwitchPortCountersTable, table)
