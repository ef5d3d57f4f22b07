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
    // A RowStatus of destroy goes to the card at once and edits nothing in place.
    bool deletes_at_once = false;
    // Sends what was staged; 0 or an error.
    int (*commit)(Row &row) = nullptr;
    // The SET failed: takes back what it did. The transaction is still there, and is forgotten afterwards.
    void (*undo)() = nullptr;

    // A style with something of the table's own.
    constexpr Writes deleting_at_once() const {
        Writes writes = *this;
        writes.deletes_at_once = true;
        return writes;
    }
    constexpr Writes for_any_index() const {
        Writes writes = *this;
        writes.set_needs_row = false;
        return writes;
    }
    constexpr Writes undone_by(void (*function)()) const {
        Writes writes = *this;
        writes.undo = function;
        return writes;
    }
    constexpr Writes foreseen_by(void (*function)(const Row &, const Column &, const Binding &)) const {
        Writes writes = *this;
        writes.foresee = function;
        return writes;
    }
    constexpr Writes found_by(bool (*function)(Row &row)) const {
        Writes writes = *this;
        writes.find = function;
        return writes;
    }
    constexpr Writes remembering(TransactionOf what) const {
        Writes writes = *this;
        writes.transaction = what;
        return writes;
    }
    constexpr Writes staged_by(int (*function)(Row &row, const Column &, const Binding &)) const {
        Writes writes = *this;
        writes.stage = function;
        return writes;
    }
};

// ---- Styles ----

// Columns act, or send what they edit, at once: nothing is left for a later phase.
inline constexpr Writes acts_at_once{};

inline int item_of_number(const Row &row) {
    return static_cast<int>(row.number[0]);
}
inline int item_of_slot(const Row &row) {
    return row.slot;
}
template <auto &Edited, int (*ItemOf)(const Row &row)>
int note_item(Row &row, const Column & /*column*/, const Binding & /*value*/) {
    Edited.state.add(ItemOf(row));
    return SNMP_ERR_NOERROR;
}
// Edits a cached section in place, notes which of its items in the state of the transaction `Edited` (a
// CommitSet) and sends those by `Commit`.
template <auto &Edited, Stamp *(*Section)(const Row &row), int (*Commit)(Row &row),
          int (*ItemOf)(const Row &row) = item_of_number>
inline constexpr Writes edits_section{.transaction = transaction_of<Edited>,
                                      .stage = note_item<Edited, ItemOf>,
                                      .section = Section,
                                      .commit = Commit};

// Stages one record, by `Stage`, edits the copy at `Record` and sends it once.
template <int (*Stage)(Row &row, const Column &column, const Binding &value), RecordOf Record,
          int (*Commit)(Row &row), void (*Drop)()>
inline constexpr Writes stages_one{.stage = Stage, .record = Record, .commit = Commit, .undo = Drop};

// Collects what the variables say in the state of the transaction `Request`, which `Commit` makes a request
// of. `Note` is told of a variable before its column is written, into `Record` if it has no action.
template <auto &Request, int (*Note)(Row &row, const Column &column, const Binding &value),
          int (*Commit)(Row &row), RecordOf Record = nullptr>
inline constexpr Writes collects_request{
    .transaction = transaction_of<Request>, .stage = Note, .record = Record, .commit = Commit};

}  // namespace tarn

#endif
