// The counters of an ONT's Ethernet ports: errors, the PPPoE filter, traffic.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{5, 0, 15}, {6, 1, 1}, {7, 1, 14}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::ethernet_counters>(GPON_DIRECTION_NO_DIRECTION, blocks);

MODULE_COUNTER_TABLE(tarnONTEthPerformMonitoringHistDataTable, counters)
MODULE_COUNTERS_FUNCTION(get_epmhd_counters, counters)

TARN_EXPORT const char *get_epmhd_counter_name(int position) {
    return tarn::counter_name(counters, position);
}
