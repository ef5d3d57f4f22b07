// Tables with one row a slot.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_SINGLE_ROW_H
#define TARN_MODULE_TABLES_TARNSWITCH_SINGLE_ROW_H

#include "module/tables/frame/table.h"

namespace tarn {

inline constexpr IndexPart slot_index[] = {slot_part};

// The walk: the one row, whose data is the refreshed record.
template <std::uint8_t *(*Record)(Row &row)>
bool single_row(std::int64_t &cursor, Row &row) {
    if (!next_only_row(cursor, row)) {
        return false;
    }
    row.record = Record(row);
    return row.record != nullptr;
}
template <std::uint8_t *(*Record)(Row &row)>
inline constexpr Rows record_of_slot{.next = single_row<Record>};

}  // namespace tarn

#endif
