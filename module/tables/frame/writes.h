// What a SET of a table does in its phases, around what its columns do.
#ifndef TARN_MODULE_TABLES_FRAME_WRITES_H
#define TARN_MODULE_TABLES_FRAME_WRITES_H

#include "module/common/cache.h"
#include "module/tables/frame/column.h"
#include "module/tables/frame/transaction.h"

namespace tarn {

struct Writes {
    // Whether a SET needs the row that the index names; if not, stage decides, and an index that is no row's
    // reads as zeros.
    bool set_needs_row = true;
    // The row that a SET works on, with row.record set where columns are stored there; null: as in a GET.
    bool (*find)(Row &row) = nullptr;
    // What the SET is about, where a table's functions have to remember it between the phases.
    TransactionOf transaction{};
    // Told of every variable that passes the first phase, so that the action phase knows what the others do.
    void (*foresee)(const Row &row, const Column &column, const Binding &value) = nullptr;
    // In the action phase, before a column is written; 0 or an error.
    int (*stage)(Row &row, const Column &column, const Binding &value) = nullptr;
    // The record that columns without an action of their own are stored in; null: the column's own, or the
    // row's.
    RecordOf record = nullptr;
    // The stamp of the cached section that a SET edits in place, or null. A section that does not show what
    // the card has is not edited. From the first edit to the end of the commit it is held: not read again.
    // When a SET fails that has edited it, the next read fetches what the card holds; one that fails before
    // its first edit leaves the section as it is. An action that edits before it may fail holds it first.
    Stamp *(*section)(const Row &row) = nullptr;
    // Sends what was staged; 0 or an error.
    int (*commit)(Row &row) = nullptr;
    // The SET failed: takes back what it did. The transaction is still there, and is forgotten afterwards.
    void (*undo)() = nullptr;
};

}  // namespace tarn

#endif
