// The cross-connects of an ONT, upstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{2, 0, 6}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::crossconnect_counters_us>(GPON_DIRECTION_UPLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTCrossConnectUSTable, counters)
MODULE_COUNTERS_FUNCTION(get_ccus_counters, counters)
