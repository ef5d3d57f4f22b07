// A table of one row a slot whose column 2, written with exactly 1, makes the line card do something.
#ifndef TARN_MODULE_TABLES_SLOT_TRIGGER_TABLE_H
#define TARN_MODULE_TABLES_SLOT_TRIGGER_TABLE_H

#include "module/tables/frame/table.h"

namespace tarn {

template <int (*Act)(int slot)>
int act_on_slot(const Row &row) {
    return Act(row.slot);
}

template <int (*Act)(int slot)>
inline constexpr Column slot_trigger_columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, reads_zero, any_unsigned32, on_one<act_on_slot<Act>, SNMP_ERR_COMMITFAILED>},
};

// Act gives 0 or a failure, which is reported as commitFailed; `refused` answers a SET of another column.
template <int (*Act)(int slot)>
constexpr Table slot_trigger_table(int refused) {
    return {
        .index = slot_index,
        .columns = slot_trigger_columns<Act>,
        .rows = row_of_slot,
        .answers = usual.with(reserving, no_column, refused),
    };
}

}  // namespace tarn

#endif
