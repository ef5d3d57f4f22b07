// Slips in a table's description, none of which may compile. check_refused.cmake compiles this file and wants
// the compiler's complaints to be the lines marked `refused`, in their order; without WRONG it must compile.
#include "module/tables/frame/table.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part};

bool find(Row & /*row*/) {
    return false;
}
int act(const Row & /*row*/) {
    return 0;
}

constexpr RecordKind layout{18};
constexpr RecordKind other_layout{18};
constexpr Field text = layout.text(0, 16);
constexpr Field number = layout.u16(16);

constexpr Column slot{1, unsigned32, slot_plus(1)};
constexpr Column name{2, octet_string, field(text), octets_up_to(15)};
constexpr Column trigger{4, unsigned32, reads_zero, any_unsigned32, on_one<act>};

constexpr Table table_of(std::span<const Column> columns) {
    return {
        .index = row_index,
        .columns = columns,
        .rows = {.find = find, .next = next_only_row},
    };
}

constexpr Column columns[] = {slot, name, trigger};
constexpr Table right = table_of(columns);

}  // namespace

MODULE_ITERATOR_TABLE(rightTable, right)

#ifdef WRONG

#define WRONG_COLUMNS(T, ...)                            \
    static constexpr Column T##_columns[] = __VA_ARGS__; \
    static constexpr Table T = table_of(T##_columns);

// refused: columns ascend without repetition
WRONG_COLUMNS(repeated, {slot, name, name})
MODULE_ITERATOR_TABLE(repeated, repeated)

// refused: columns ascend without repetition
WRONG_COLUMNS(descending, {slot, trigger, name})
MODULE_ITERATOR_TABLE(descending, descending)

// refused: a column's type fits its field and its check
WRONG_COLUMNS(text_as_number, {{2, integer, field(text)}})
MODULE_ITERATOR_TABLE(text_as_number, text_as_number)

// refused: a column's type fits its field and its check
WRONG_COLUMNS(number_as_text, {{2, octet_string, field(number)}})
MODULE_ITERATOR_TABLE(number_as_text, number_as_text)

// refused: a column's type fits its field and its check
WRONG_COLUMNS(text_checked_as_number, {{2, octet_string, field(text), any_integer}})
MODULE_ITERATOR_TABLE(text_checked_as_number, text_checked_as_number)

// refused: a column's type fits its field and its check
WRONG_COLUMNS(longer_than_its_field, {{2, octet_string, field(text), octets_up_to(17)}})
MODULE_ITERATOR_TABLE(longer_than_its_field, longer_than_its_field)

// refused: a record has its own fields
WRONG_COLUMNS(strange_field, {{2, octet_string, field(text)}, {3, integer, field(other_layout.u16(16))}})
MODULE_ITERATOR_TABLE(strange_field, strange_field)

// refused: field_ends_beyond_its_record
constexpr Field too_long = layout.text(3, 16);

// refused: a writable column has an action or a field
WRONG_COLUMNS(written_nowhere, {{4, unsigned32, reads_zero, any_unsigned32}})
MODULE_ITERATOR_TABLE(written_nowhere, written_nowhere)

// refused: a table that leaves SETs alone has no writable column
static constexpr Table deaf{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find, .next = next_only_row},
    .answers = deaf_to_sets,
};
MODULE_ITERATOR_TABLE(deaf, deaf)

// refused: a table whose columns lie in its rows' records finds them
static constexpr Table blind{
    .index = row_index,
    .columns = columns,
    .rows = {.next = next_only_row},
};
MODULE_ITERATOR_TABLE(blind, blind)

// refused: an iterator table walks by next
static constexpr Table lame{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find},
};
MODULE_ITERATOR_TABLE(lame, lame)

// refused: a nextgen table walks by successor
static constexpr Table other_style{
    .index = row_index,
    .columns = columns,
    .rows = {.find = find, .next = next_only_row, .index_builder = "builder"},
};
MODULE_NEXTGEN_TABLE(other_style, other_style)

#endif
