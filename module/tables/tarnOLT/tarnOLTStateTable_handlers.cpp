// What a line card reports as the state of its OLT, as dotted texts, with a trigger to reconfigure it.
#include <array>
#include <cstdio>
#include <string>

#include "module/operations/board_actions.h"
#include "module/operations/channel_queries.h"
#include "module/tables/frame/table.h"
#include "wire/records/olt.h"

using namespace tarn;

namespace {

// A word keeps its sign: from 32768 on it prints as a 32-bit number near the end of its range. The texts of
// two values lie side by side in the record, word by word.
template <char Conversion, int... Words>
int dotted_words(Row &row, const Reply &reply) {
    const std::uint8_t *state = get_olt_state(row.slot);
    if (state == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    std::string text;
    for (const int word : {Words...}) {
        const auto value = static_cast<unsigned>(load_integer(state, olt_state::word(word)));
        std::array<char, 12> number{};
        if constexpr (Conversion == 'X') {
            std::snprintf(number.data(), number.size(), "%X", value);
        } else {
            std::snprintf(number.data(), number.size(), "%u", value);
        }
        text.append(text.empty() ? "" : ".").append(number.data());
    }
    return reply.text(text);
}

int slot_number(Row &row, const Reply &reply) {
    if (get_olt_state(row.slot) == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    return reply.number(row.slot + 1);
}

std::uint8_t *state(Row &row) {
    return get_olt_state(row.slot);
}

std::int64_t zero(const std::uint8_t * /*state*/) {
    return 0;
}

int reconfigure(const Row &row) {
    return reconfigure_olt(row.slot);
}

constexpr Column columns[] = {
    {1, unsigned32, answered_by(slot_number)},
    {2, octet_string, answered_by(dotted_words<'u', 1, 2, 3>)},
    {3, octet_string, answered_by(dotted_words<'u', 4, 6, 8, 10>)},
    {4, octet_string, answered_by(dotted_words<'X', 12, 14>)},
    {5, octet_string, answered_by(dotted_words<'u', 5, 7, 9, 11>)},
    {6, octet_string, answered_by(dotted_words<'X', 13, 15>)},
    {10, unsigned32, computed_of(state, zero), any_unsigned32, on_one<reconfigure>},
};

constexpr Table table{
    .index = slot_index,
    .columns = columns,
    .rows = row_of_slot,
    .answers = usual.with(reading, no_row_data, SNMP_NOSUCHOBJECT),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnOLTStateTable, table)
