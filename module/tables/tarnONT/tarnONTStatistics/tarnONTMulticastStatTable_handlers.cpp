// Multicast that an ONT receives: bandwidth, joins, groups. The key is always 0.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{13, 0, 4}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::multicast_counters>(GPON_DIRECTION_NO_DIRECTION, blocks);

MODULE_COUNTER_TABLE(tarnONTMulticastStatTable, counters)
