// The frames at an ONT's Ethernet ports, upstream.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{15, 0, 15}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::ethernet_frame_counters_us>(GPON_DIRECTION_UPLINK, blocks);

MODULE_COUNTER_TABLE(tarnONTEthFrameExtendedPerformMonitoringUSTable, counters)
MODULE_COUNTERS_FUNCTION(get_ef_ext_us_counters, counters)
