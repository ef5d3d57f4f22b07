// Which rows a table has, and how a request finds its way to the next one.
#ifndef TARN_MODULE_TABLES_FRAME_ROWS_H
#define TARN_MODULE_TABLES_FRAME_ROWS_H

#include <cstddef>
#include <cstdint>

#include "module/tables/frame/row.h"
#include "wire/record.h"

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

// ---- Sets that are described once ----
//
// A set is a struct of static functions. Its positions count from 0 in the order of the walk; `from` is what
// its rows lie in, whatever that is.
//   read(row)              `from`, refreshed; null: there are no rows
//   count(from)            how many positions there are
//   enter(from, row, p)    makes `row` the one at position p; false when none stands there
// and where the table needs it
//   position(from, row)    of the row that the index names; outside the count when it names none
//   find(row)              instead of position, where a row is not found by its position
//   after(from, row)       the first position after what there is of an index, for a nextgen table
//   may_walk(row)          whether there is a walk at all, asked before its rows are read; default: yes
//   begin()                at the first step of an iterator table's walk

// The row at the index' position, whether or not one stands there; false outside the count.
template <class Set>
bool enter_named(Row &row, bool &stands) {
    const auto from = Set::read(row);
    const std::int64_t position = from != nullptr ? Set::position(from, row) : -1;
    if (position < 0 || position >= Set::count(from)) {
        return false;
    }
    stands = Set::enter(from, row, position);
    return true;
}

template <class Set>
bool find_in(Row &row) {
    if constexpr (requires { Set::find(row); }) {
        return Set::find(row);
    } else {
        bool stands = false;
        return enter_named<Set>(row, stands) && stands;
    }
}
// The place of a row, for a SET that may create it.
template <class Set>
bool find_place_in(Row &row) {
    bool stands = false;
    return enter_named<Set>(row, stands);
}

// The first row from a position on, which is moved past it.
template <class Set, class From>
bool enter_first(From from, std::int64_t &position, Row &row) {
    while (position < Set::count(from)) {
        if (Set::enter(from, row, position++)) {
            return true;
        }
    }
    return false;
}

template <class Set>
bool may_walk(Row &row) {
    if constexpr (requires { Set::may_walk(row); }) {
        return Set::may_walk(row);
    } else {
        return true;
    }
}

template <class Set>
bool next_in(std::int64_t &cursor, Row &row) {
    if constexpr (requires { Set::begin(); }) {
        if (cursor == 0) {
            Set::begin();
        }
    }
    if (!may_walk<Set>(row)) {
        return false;
    }
    const auto from = Set::read(row);
    return from != nullptr && enter_first<Set>(from, cursor, row);
}

template <class Set>
bool successor_in(Row &row) {
    if (!may_walk<Set>(row)) {
        return false;
    }
    const auto from = Set::read(row);
    if (from == nullptr) {
        return false;
    }
    std::int64_t position = Set::after(from, row);
    return enter_first<Set>(from, position, row);
}

// The rows of a set in an iterator table, and in a nextgen table.
template <class Set>
inline constexpr Rows rows_of{.find = find_in<Set>, .next = next_in<Set>};
template <class Set>
constexpr Rows sorted_rows_of(const char *index_builder) {
    return {.find = find_in<Set>, .successor = successor_in<Set>, .index_builder = index_builder};
}

// ---- Common sets ----

inline bool next_only_row(std::int64_t &cursor, Row & /*row*/) {
    return cursor++ == 0;
}
// One row a slot, without a record.
inline constexpr Rows row_of_slot{.next = next_only_row};

// The same with a refreshed record as its data.
template <std::uint8_t *(*Record)(Row &row)>
bool next_record_of_slot(std::int64_t &cursor, Row &row) {
    row.record = next_only_row(cursor, row) ? Record(row) : nullptr;
    return row.record != nullptr;
}
template <std::uint8_t *(*Record)(Row &row)>
inline constexpr Rows record_of_slot{.next = next_record_of_slot<Record>};
// The same where the table's columns lie in that record.
template <std::uint8_t *(*Record)(Row &row)>
bool find_record_of_slot(Row &row) {
    row.record = Record(row);
    return row.record != nullptr;
}
template <std::uint8_t *(*Record)(Row &row)>
inline constexpr Rows found_record_of_slot{.find = find_record_of_slot<Record>,
                                           .next = next_record_of_slot<Record>};

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

// The records of an array of `Count` that are in use, each with `Entries` entries that lie `Stride` bytes
// apart. Number 0 of a row is the record, number 1 the entry.
template <std::uint8_t *(*Get)(), std::size_t Size, int Count, Field InUse, int Entries = 1, int Stride = 0>
struct RecordsInUse {
    static std::uint8_t *read(Row & /*row*/) { return Get(); }
    static std::int64_t count(const std::uint8_t * /*first*/) { return std::int64_t{Count} * Entries; }
    static std::int64_t position(const std::uint8_t * /*first*/, const Row &row) {
        return row.number[0] * Entries + row.number[1];
    }
    static bool enter(std::uint8_t *first, Row &row, std::int64_t position) {
        row.number[0] = position / Entries;
        row.number[1] = position % Entries;
        std::uint8_t *record = first + row.number[0] * static_cast<std::int64_t>(Size);
        row.record = record + row.number[1] * Stride;
        return load_integer(record, InUse) != 0;
    }
};

}  // namespace tarn

#endif
