// The lists of chassis-wide OLT profiles: number and name of each profile in use.
#ifndef TARN_MODULE_TABLES_TARNOLT_OLT_PROFILE_ROWS_H
#define TARN_MODULE_TABLES_TARNOLT_OLT_PROFILE_ROWS_H

#include "module/config/olt_config.h"
#include "module/tables/frame/table.h"
#include "wire/records/profile.h"

namespace tarn {

template <int Count>
inline constexpr IndexPart olt_profile_index[] = {number_part(Count)};

inline constexpr Column olt_profile_columns[] = {
    {1, unsigned32, index_number(0, 0)},
    {2, octet_string, field(olt_profile::name)},
};

template <std::uint8_t *(*Get)(), std::size_t Size, int Count>
constexpr Table olt_profile_table() {
    Rows rows = rows_of<RecordsInUse<Get, Size, Count, olt_profile::in_use>>;
    rows.record_is_loop_context = true;
    return {
        .index = olt_profile_index<Count>,
        .columns = olt_profile_columns,
        .rows = rows,
        .answers = deaf_to_sets,
    };
}

}  // namespace tarn

#endif
