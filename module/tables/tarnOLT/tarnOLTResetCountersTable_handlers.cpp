// A trigger to reset the counters of a line card's OLT.
#include "module/operations/board_actions.h"
#include "module/store/sections.h"
#include "module/tables/frame/table.h"

using namespace tarn;

// Stands for the row of every slot, which has no data.
TARN_EXPORT_DATA std::uint32_t dummy = 0;

namespace {

int reset_counters(const Row &row) {
    return reset_olt_counters(row.slot);
}

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, reads_zero, any_unsigned32, on_any_value<reset_counters>},
};

constexpr Table table{
    .name = "tarnOLTResetCountersTable",
    .index = slot_index,
    .columns = columns,
    .answers = trigger_answers,
};

}  // namespace

// The walk: the one row of the slot.
TARN_EXPORT netsnmp_variable_list *tarnOLTResetCountersTable_next_index(void **loop_context,
                                                                        void **data_context,
                                                                        netsnmp_variable_list *indexes,
                                                                        int slot) {
    if (*loop_context != nullptr) {
        return nullptr;
    }
    Row row;
    row.slot = slot_byte(slot);
    fill_index_list(slot_index, row, indexes);
    *loop_context = &dummy;
    *data_context = &dummy;
    return indexes;
}

MODULE_ITERATOR_HANDLER(tarnOLTResetCountersTable, table)
