// A trigger to reset the counters of one ONT. Rows are the ONT list up to its first free position, in list
// order.
#include "module/operations/board_actions.h"
#include "module/operations/ont_queries.h"
#include "module/tables/frame/table.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

int reset_counters(const Row &row) {
    return reset_ont_counters(row.slot, row.serial.data());
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, row_serial},
    {3, unsigned32, reads_zero, any_unsigned32, on_any_value<reset_counters>},
};

bool next_listed_ont(std::int64_t &cursor, Row &row) {
    std::uint8_t *list = get_ont_list(row.slot);
    if (list == nullptr || cursor < 0 || cursor >= max_onts) {
        return false;
    }
    std::uint8_t *record = list + cursor * static_cast<std::int64_t>(ont_list::size);
    if (is_zero_serial(record)) {
        return false;
    }
    ++cursor;
    row.record = record;
    row.serial = serial_at(record);
    return true;
}

constexpr Table table{
    .index = ont_index,
    .columns = columns,
    .rows = {.next = next_listed_ont},
    .answers = trigger_answers,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTResetCountersTable, table)
