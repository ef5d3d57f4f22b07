// The frames at an ONT's Ethernet ports, downstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{15, 0, 15}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::ethernet_frame_counters_ds>(GPON_DIRECTION_DOWNLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTEthFrameExtendedPerformMonitoringDSTable, counters)
MODULE_COUNTERS_FUNCTION(get_ef_ext_ds_counters, counters)
