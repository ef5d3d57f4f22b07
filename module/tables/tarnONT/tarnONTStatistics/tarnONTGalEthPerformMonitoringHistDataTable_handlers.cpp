// The GEM adaptation layer of an ONT, by cross-connect.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{8, 0, 2}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::gal_ethernet_counters>(GPON_DIRECTION_NO_DIRECTION, blocks);

MODULE_COUNTER_TABLE(tarnONTGalEthPerformMonitoringHistDataTable, counters)
MODULE_COUNTERS_FUNCTION(get_gepmhd_counters, counters)
