// Synchronisation counters of a line card. Cards do not report any: the table keeps its place in the MIB and
// its counters read 0.
#include "module/tables/frame/table.h"

using namespace tarn;

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, reads_zero},
    {3, unsigned32, reads_zero},
};

constexpr Table table{
    .index = slot_index,
    .columns = columns,
    .rows = row_of_slot,
    .answers = deaf_to_sets,
};

MODULE_ITERATOR_TABLE(tarnSyncCountersTable, table)
