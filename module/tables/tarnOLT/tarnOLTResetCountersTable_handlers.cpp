// A trigger to reset the counters of a line card's OLT.
#include "module/common/operations/board_actions.h"
#include "module/tables/frame/table.h"

using namespace tarn;

// Stands for the row of every slot, which has no data.
TARN_EXPORT_DATA std::uint32_t dummy = 0;

namespace {

constexpr IndexPart row_index[] = {slot_part};

int reset_counters(const Row &row) {
    return reset_olt_counters(row.slot);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, reads_zero, any_unsigned32, on_any_value<reset_counters>},
};

bool next_slot_row(std::int64_t &cursor, Row &row) {
    row.record = reinterpret_cast<std::uint8_t *>(&dummy);
    return next_only_row(cursor, row);
}

constexpr Table table{
    .name = "tarnOLTResetCountersTable",
    .index = row_index,
    .columns = columns,
    .next = next_slot_row,
    .missing_row = SNMP_NOSUCHOBJECT,
    .no_row_data = SNMP_NOSUCHOBJECT,
    .set_without_row_data = SNMP_NOSUCHOBJECT,
    .refused_in_action = SNMP_ERR_NOERROR,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnOLTResetCountersTable, table)
