// The multicast groups that clients of an ONT have joined, at most sixteen: the key is the group.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{14, 0, 6}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::multicast_groups>(GPON_DIRECTION_NO_DIRECTION, blocks);

MODULE_COUNTER_TABLE(tarnONTMulticastActiveGroupsTable, counters)
