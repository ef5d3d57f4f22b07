// A trigger to reset the counters of a line card's OLT.
#include "module/operations/board_actions.h"
#include "module/store/sections.h"
#include "module/tables/slot_trigger_table.h"

using namespace tarn;

// Stands for the row of every slot, which has no data.
TARN_EXPORT_DATA std::uint32_t dummy = 0;

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, reads_zero, any_unsigned32, on_any_value<act_on_slot<reset_olt_counters>>},
};

constexpr Table table{
    .index = slot_index,
    .columns = columns,
    .answers = trigger_answers,
};

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
