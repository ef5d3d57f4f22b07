// The catalogue of the counters that cards and ONTs report: for a counter module and a direction the ordered
// list of its counters, with the board's ids and display names.
#ifndef TARN_MODULE_STATISTICS_GSTATISTICSCOMMON_H
#define TARN_MODULE_STATISTICS_GSTATISTICSCOMMON_H

#include <array>
#include <cstdint>

#include "module/common/exports.h"

enum GTrafficDirection_enum : std::uint16_t {
    GPON_DIRECTION_UPLINK = 0,
    GPON_DIRECTION_DOWNLINK = 1,
    GPON_DIRECTION_UPLINK_AND_DOWNLINK = 2,
    GPON_DIRECTION_NO_DIRECTION = 3
};
using GTrafficDirection_t = std::uint16_t;
using GStatCommonModule_t = std::uint16_t;  // 0-15

struct GStatCommonRecord {
    std::int16_t module_type;  // the board's code of the counter block; -1 for an ONT's attributes
    std::int16_t entity_type;  // the board's entity code: 0 channel, 3 Port-ID; -1 for an ONT's attributes
    std::int8_t counter_id;    // within its block, or the attribute's number; -1 ends a row
    const char *sn;            // short name
    const char *ln;            // long name, may be empty
};
using GStatCommonRecord_t = GStatCommonRecord;

// The tables that the lookups below read: the lists, 22 rows of 128 slots; the row of each module's uplink
// list; the length of the lists of rows 0 to 20.
extern "C" {
TARN_EXPORT_DATA extern const std::array<std::array<GStatCommonRecord, 128>, 22> gpon_stat_common_strings;
TARN_EXPORT_DATA extern const std::array<std::int32_t, 16> gpon_stat_common_module_descr_offset;
TARN_EXPORT_DATA extern const std::array<std::int32_t, 21> gpon_stat_common_module_descr_count;
}

// Module and direction are 16 bits wide, the index (from 0) is signed 16-bit. Every lookup gives -1, or null
// for a name, for a direction other than up and down, for a module above 15 and for an index that leads out
// of the catalogue. Modules 5 to 14 have one list, for the uplink; asked for the downlink they show the next
// module's.

// The row of the module's list.
TARN_EXPORT std::int32_t gpon_stat_common_get_module_offset(int common_module, int direction);
// The length of the list; 4 for the downlink of module 15, whose list is longer.
TARN_EXPORT std::int32_t gpon_stat_common_get_counters_number(int common_module, int direction);
TARN_EXPORT std::int8_t gpon_stat_common_get_counterid(int common_module, int direction, int index);
TARN_EXPORT std::int16_t gpon_stat_common_get_countermodule(int common_module, int direction, int index);
TARN_EXPORT std::int16_t gpon_stat_common_get_counterentity(int common_module, int direction, int index);
TARN_EXPORT const char *gpon_stat_common_get_shortname(int common_module, int direction, int index);
TARN_EXPORT const char *gpon_stat_common_get_longname(int common_module, int direction, int index);
// The position of a counter id in the list; -2 when it is not there.
TARN_EXPORT std::int16_t gpon_stat_common_get_counterindex(int common_module, int direction, int counter_id);

#endif
