// Asks the module for all rows that a table has in a slot.
#ifndef TARN_HOST_TABLES_ROW_SOURCE_H
#define TARN_HOST_TABLES_ROW_SOURCE_H

#include "host/tables/row_index.h"
#include "host/tables/table_callbacks.h"

namespace tarn::host {

// The most rows that a table may have in one slot: nothing that the module does makes the agent loop for
// ever.
inline constexpr std::size_t most_rows_of_a_slot = std::size_t{1} << 20;

class RowSource {
  public:
    // Both are kept by reference and must outlive the source.
    RowSource(const TableSchema &schema, const TableCallbacks &callbacks)
        : schema_(schema), callbacks_(callbacks) {}

    // Enumerates in one go, since the module's row cursors are shared by all walks. Rows whose index does not
    // fit in an OID or names another slot are left out. A finder that comes back to a row ends the slot.
    RowIndex enumerate(int slot);

  private:
    void enumerate_iterator(int slot, RowIndexBuilder &builder);
    void enumerate_nextgen(int slot, RowIndexBuilder &builder);
    [[nodiscard]] bool acceptable(std::span<const std::uint32_t> suffix, int slot) const;
    void complain(int slot, const char *what);

    const TableSchema &schema_;
    const TableCallbacks &callbacks_;
    bool complained_ = false;
};

}  // namespace tarn::host

#endif
