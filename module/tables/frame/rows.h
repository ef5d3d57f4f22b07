// Which rows a table has, and how a request finds its way to the next one.
#ifndef TARN_MODULE_TABLES_FRAME_ROWS_H
#define TARN_MODULE_TABLES_FRAME_ROWS_H

#include <cstddef>
#include <cstdint>

#include "module/tables/frame/row.h"

namespace tarn {

// A set of rows. An iterator table walks by `next`, a nextgen table by `successor`.
struct Rows {
    // The row that the index names, with row.record set; false when there is none. Null: every index in range
    // is a row.
    bool (*find)(Row &row) = nullptr;
    // The first row from *cursor on, which it moves past that row; false at the end. A walk begins with 0.
    bool (*next)(std::int64_t &cursor, Row &row) = nullptr;
    // The loop context of a walk is the record instead of the cursor.
    bool record_is_loop_context = false;
    // Turns the row that parse_partial_index made of a request into the next one; false at the end.
    bool (*successor)(Row &row) = nullptr;
    // Nextgen style: told of every GET, whatever it asks for.
    void (*asked)(int slot) = nullptr;
    // Nextgen style: the name under which a lack of memory for a new identifier is logged.
    const char *index_builder = nullptr;
    // Nextgen style: sub-identifiers of the table's own OID.
    std::size_t prefix = 11;
};

inline bool next_only_row(std::int64_t &cursor, Row & /*row*/) {
    return cursor++ == 0;
}
// One row a slot, without a record.
inline constexpr Rows row_of_slot{.next = next_only_row};

template <int Count>
bool next_number(std::int64_t &cursor, Row &row) {
    if (cursor >= Count) {
        return false;
    }
    row.number[0] = cursor++;
    return true;
}
// A row a number from 0 on, without a record.
template <int Count>
inline constexpr Rows numbers_up_to{.next = next_number<Count>};

}  // namespace tarn

#endif
