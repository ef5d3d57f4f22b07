// The rows of one table and slot, sorted by their index.
#ifndef TARN_HOST_TABLES_ROW_INDEX_H
#define TARN_HOST_TABLES_ROW_INDEX_H

#include <cstdint>
#include <span>
#include <vector>

#include "host/tables/table_schema.h"

namespace tarn::host {

// A row's suffix: the sub-identifiers after the column. They are kept as 32-bit numbers in one array,
// since a table may have hundreds of thousands of rows a slot.
class RowIndex {
  public:
    enum class Origin {
        card,     // all that was asked for was answered
        failure,  // a card did not answer: there may be more
        nothing,  // what was asked for is still under way
    };
    Origin origin = Origin::card;

    [[nodiscard]] std::size_t size() const { return rows_.size(); }
    [[nodiscard]] std::span<const std::uint32_t> suffix(std::size_t row) const {
        return {subids_.data() + offsets_[row], offsets_[row + 1] - offsets_[row]};
    }
    // The module's data of the row: a hint that may be out of date, the index decides.
    [[nodiscard]] void *data(std::size_t row) const { return rows_[row]; }

    // The first row at or after the suffix, and the first one after it; size() when there is none.
    [[nodiscard]] std::size_t lower_bound(std::span<const oid> suffix) const;
    [[nodiscard]] std::size_t upper_bound(std::span<const oid> suffix) const;
    // The row with exactly this suffix; size() when there is none.
    [[nodiscard]] std::size_t find(std::span<const oid> suffix) const;

  private:
    friend class RowIndexBuilder;
    std::vector<std::uint32_t> subids_;
    std::vector<std::uint32_t> offsets_{0};  // one more than rows
    std::vector<void *> rows_;
};

class RowIndexBuilder {
  public:
    void add(std::span<const std::uint32_t> suffix, void *data);
    [[nodiscard]] std::size_t size() const { return unsorted_.size(); }
    // Forgets all but the first rows.
    void cut(std::size_t rows);
    // Sorts the rows and drops duplicates, of which the first one stays. The builder is empty afterwards.
    RowIndex finish();

  private:
    RowIndex unsorted_;
};

// Finds out that an enumeration goes round in circles, in constant memory: every row is compared with one
// that is remembered, and after each power of two steps the current row is remembered instead.
class CycleGuard {
  public:
    // True when the row was seen before.
    bool repeats(std::span<const std::uint32_t> suffix);

  private:
    std::vector<std::uint32_t> remembered_;
    std::size_t steps_ = 0;
    std::size_t limit_ = 1;
    bool any_ = false;
};

}  // namespace tarn::host

#endif
