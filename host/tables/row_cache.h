// The row indices that are in use, of all tables and slots.
#ifndef TARN_HOST_TABLES_ROW_CACHE_H
#define TARN_HOST_TABLES_ROW_CACHE_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "host/tables/row_index.h"

namespace tarn::host {

class RowCache {
  public:
    // At most `row_budget` rows are kept in all; beyond it the index that was used least recently goes.
    explicit RowCache(std::size_t row_budget) : row_budget_(row_budget) {}

    // The index of a table, known by its address, in a slot. It is built anew when there is none or when it
    // is older than the cache period, but not twice for one transaction. When a card does not answer, an
    // index that had more rows stays.
    std::shared_ptr<const RowIndex> get(const void *table, int slot, long transaction,
                                        const std::function<RowIndex()> &build);
    // The same, built anew unless this transaction built it: before a SET, the module must hold fresh rows.
    std::shared_ptr<const RowIndex> renew(const void *table, int slot, long transaction,
                                          const std::function<RowIndex()> &build);

    // After a SET: all are built anew.
    void expire();
    // After a change of slots: nothing of what was there holds any more.
    void clear();
    // How often either was done: what was begun before it is out of date.
    [[nodiscard]] std::uint64_t changes() const { return changes_; }

  private:
    struct Entry {
        std::shared_ptr<const RowIndex> rows;
        std::int64_t built_at;
        long transaction;
        std::uint64_t last_use;
        bool expired;
    };
    using Key = std::pair<const void *, int>;

    std::shared_ptr<const RowIndex> build_entry(const Key &key, long transaction,
                                                const std::function<RowIndex()> &build);
    void drop(std::map<Key, Entry>::iterator entry);

    std::size_t row_budget_;
    std::size_t rows_ = 0;
    std::uint64_t uses_ = 0;
    std::uint64_t changes_ = 0;
    std::map<Key, Entry> entries_;
};

}  // namespace tarn::host

#endif
