#include "module/statistics/GStatisticsCommon.h"

#include "module/statistics/counter_catalogue.h"

using namespace tarn::counter_catalogue;

const std::array<Row, rows> gpon_stat_common_strings = strings;
const std::array<std::int32_t, 16> gpon_stat_common_module_descr_offset = module_descr_offset;
const std::array<std::int32_t, 21> gpon_stat_common_module_descr_count = module_descr_count;

namespace {

// An index may lead into a neighbouring row, but not out of the catalogue.
const GStatCommonRecord *find_record(int common_module, int direction, int index) {
    const std::int32_t row = gpon_stat_common_get_module_offset(common_module, direction);
    const int flat = row * slots_per_row + static_cast<std::int16_t>(index);
    if (row < 0 || flat < 0 || flat >= rows * slots_per_row) {
        return nullptr;
    }
    return &gpon_stat_common_strings[static_cast<std::size_t>(flat / slots_per_row)]
                                    [static_cast<std::size_t>(flat % slots_per_row)];
}

}  // namespace

std::int32_t gpon_stat_common_get_module_offset(int common_module, int direction) {
    const auto module = static_cast<GStatCommonModule_t>(common_module);
    const auto towards = static_cast<GTrafficDirection_t>(direction);
    if (towards > GPON_DIRECTION_DOWNLINK || module >= gpon_stat_common_module_descr_offset.size()) {
        return -1;
    }
    return gpon_stat_common_module_descr_offset[module] + towards;
}

std::int32_t gpon_stat_common_get_counters_number(int common_module, int direction) {
    const std::int32_t row = gpon_stat_common_get_module_offset(common_module, direction);
    if (row < 0) {
        return -1;
    }
    const auto index = static_cast<std::size_t>(row);
    return index < gpon_stat_common_module_descr_count.size() ? gpon_stat_common_module_descr_count[index]
                                                              : count_of_last_row;
}

std::int8_t gpon_stat_common_get_counterid(int common_module, int direction, int index) {
    const GStatCommonRecord *record = find_record(common_module, direction, index);
    return record != nullptr ? record->counter_id : std::int8_t{-1};
}

std::int16_t gpon_stat_common_get_countermodule(int common_module, int direction, int index) {
    const GStatCommonRecord *record = find_record(common_module, direction, index);
    return record != nullptr ? record->module_type : std::int16_t{-1};
}

std::int16_t gpon_stat_common_get_counterentity(int common_module, int direction, int index) {
    const GStatCommonRecord *record = find_record(common_module, direction, index);
    return record != nullptr ? record->entity_type : std::int16_t{-1};
}

const char *gpon_stat_common_get_shortname(int common_module, int direction, int index) {
    const GStatCommonRecord *record = find_record(common_module, direction, index);
    return record != nullptr ? record->sn : nullptr;
}

const char *gpon_stat_common_get_longname(int common_module, int direction, int index) {
    const GStatCommonRecord *record = find_record(common_module, direction, index);
    return record != nullptr ? record->ln : nullptr;
}

std::int16_t gpon_stat_common_get_counterindex(int common_module, int direction, int counter_id) {
    const std::int32_t row = gpon_stat_common_get_module_offset(common_module, direction);
    if (row < 0) {
        return -1;
    }
    const Row &counters = gpon_stat_common_strings[static_cast<std::size_t>(row)];
    for (std::size_t index = 0; index < counters.size() && counters[index].sn != nullptr; ++index) {
        if (counters[index].counter_id == static_cast<std::int8_t>(counter_id)) {
            return static_cast<std::int16_t>(index);
        }
    }
    return -2;
}
