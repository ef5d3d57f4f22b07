// The GEM ports of an ONT, upstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{3, 0, 4}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::gem_port_counters_us>(GPON_DIRECTION_UPLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTGEMPortPerformMonitoringUSTable, counters)
MODULE_COUNTERS_FUNCTION(get_gppmus_counters, counters)
