// The cross-connects of an ONT, downstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{2, 0, 4}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::crossconnect_counters_ds>(GPON_DIRECTION_DOWNLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTCrossConnectDSTable, counters)
MODULE_COUNTERS_FUNCTION(get_ccds_counters, counters)
