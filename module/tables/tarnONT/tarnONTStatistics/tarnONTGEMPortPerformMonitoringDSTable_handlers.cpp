// The GEM ports of an ONT, downstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{3, 0, 4}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::gem_port_counters_ds>(GPON_DIRECTION_DOWNLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTGEMPortPerformMonitoringDSTable, counters)
MODULE_COUNTERS_FUNCTION(get_gppmds_counters, counters)
