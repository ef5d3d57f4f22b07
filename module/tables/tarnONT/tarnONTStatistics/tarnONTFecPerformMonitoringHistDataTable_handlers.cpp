// Forward error correction of an ONT. The key is always 0.
#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"

static constexpr tarn::CounterBlock blocks[] = {{9, 0, 6}};
static constexpr tarn::CounterTable counters =
    tarn::counter_table<&tarn::CounterSections::fec_counters>(GPON_DIRECTION_NO_DIRECTION, blocks);

MODULE_COUNTER_TABLE(tarnONTFecPerformMonitoringHistDataTable, counters)

TARN_EXPORT std::uint32_t *get_fpmhd_counters(int slot, const std::uint8_t *ont_entry, int channel,
                                              int ont_id) {
    return tarn::get_counters(counters, slot, ont_entry, channel, ont_id, 0);
}
