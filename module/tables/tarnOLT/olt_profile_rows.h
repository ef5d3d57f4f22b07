// The lists of chassis-wide OLT profiles: number and name of each profile in use.
#ifndef TARN_MODULE_TABLES_TARNOLT_OLT_PROFILE_ROWS_H
#define TARN_MODULE_TABLES_TARNOLT_OLT_PROFILE_ROWS_H

#include "module/config/olt_config.h"
#include "module/tables/frame/table.h"
#include "wire/records/profile.h"

namespace tarn {

template <std::uint8_t *(*Get)(), std::size_t Size>
bool find_olt_profile(Row &row) {
    std::uint8_t *first = Get();
    if (first == nullptr) {
        return false;
    }
    row.record = first + row.number[0] * static_cast<std::int64_t>(Size);
    return load_integer(row.record, olt_profile::in_use) != 0;
}

template <std::uint8_t *(*Get)(), std::size_t Size, int Count>
bool next_olt_profile(std::int64_t &cursor, Row &row) {
    while (cursor < Count) {
        row.number[0] = cursor++;
        if (find_olt_profile<Get, Size>(row)) {
            return true;
        }
    }
    return false;
}

template <int Count>
inline constexpr IndexPart olt_profile_index[] = {number_part(Count)};

inline constexpr Column olt_profile_columns[] = {
    {1, unsigned32, index_number(0, 0)},
    {2, octet_string, field(olt_profile::name)},
};

template <std::uint8_t *(*Get)(), std::size_t Size, int Count>
constexpr Table olt_profile_table(const char *name) {
    return {
        .name = name,
        .index = olt_profile_index<Count>,
        .columns = olt_profile_columns,
        .rows = {.find = find_olt_profile<Get, Size>,
                 .next = next_olt_profile<Get, Size, Count>,
                 .record_is_loop_context = true},
        .answers = deaf_to_sets,
    };
}

}  // namespace tarn

#endif
