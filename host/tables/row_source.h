// Asks the module for all rows that a table has in a slot.
#ifndef TARN_HOST_TABLES_ROW_SOURCE_H
#define TARN_HOST_TABLES_ROW_SOURCE_H

#include <cstddef>
#include <utility>
#include <vector>

#include "host/tables/row_index.h"
#include "host/tables/table_callbacks.h"

namespace tarn::host {

// The most rows that a table may have in one slot: nothing that the module does makes the agent loop for
// ever.
inline constexpr std::size_t most_rows_of_a_slot = std::size_t{1} << 20;

// How far the enumeration of a slot has come.
struct Enumeration {
    RowIndexBuilder rows{};
    std::size_t steps = 0;    // rows that the module gave, with those that were left out
    std::vector<oid> name{};  // of the last one; empty at the beginning
    CycleGuard guard{};

    struct Place {
        std::size_t rows, steps;
        std::vector<oid> name;
        CycleGuard guard;
    };
    [[nodiscard]] Place place() const { return {rows.size(), steps, name, guard}; }
    // Forgets what was enumerated since then.
    void go_back(Place place) {
        rows.cut(place.rows);
        steps = place.steps;
        name = std::move(place.name);
        guard = std::move(place.guard);
    }
};

class RowSource {
  public:
    // Both are kept by reference and must outlive the source.
    RowSource(const TableSchema &schema, const TableCallbacks &callbacks)
        : schema_(schema), callbacks_(callbacks) {}

    // Goes on with an enumeration for at most `steps` rows; true when there are no more. Iterator tables are
    // enumerated in one go, since the module's row cursors are shared by all walks. Rows whose index does not
    // fit in an OID or names another slot are left out. A finder that comes back to a row ends the slot.
    bool enumerate(int slot, Enumeration &enumeration, std::size_t steps);

  private:
    void enumerate_iterator(int slot, RowIndexBuilder &builder);
    bool enumerate_nextgen(int slot, Enumeration &enumeration, std::size_t steps);
    [[nodiscard]] bool acceptable(std::span<const std::uint32_t> suffix, int slot) const;
    void complain(int slot, const char *what);

    const TableSchema &schema_;
    const TableCallbacks &callbacks_;
    bool complained_ = false;
};

}  // namespace tarn::host

#endif
