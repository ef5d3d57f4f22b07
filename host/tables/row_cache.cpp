#include "host/tables/row_cache.h"

#include <algorithm>

#include "host/services/cache_clock.h"

namespace tarn::host {

std::shared_ptr<const RowIndex> RowCache::get(const void *table, int slot, long transaction,
                                              const std::function<RowIndex()> &build) {
    const Key key{table, slot};
    const auto found = entries_.find(key);
    if (found != entries_.end()) {
        Entry &entry = found->second;
        const std::int64_t period = std::int64_t{cache_period()} * 1'000'000'000;
        if (!entry.expired && (entry.transaction == transaction || agent_time() - entry.built_at < period)) {
            entry.last_use = ++uses_;
            return entry.rows;
        }
    }
    return build_entry(key, transaction, build);
}

std::shared_ptr<const RowIndex> RowCache::renew(const void *table, int slot, long transaction,
                                                const std::function<RowIndex()> &build) {
    const Key key{table, slot};
    const auto found = entries_.find(key);
    if (found != entries_.end() && found->second.transaction == transaction && !found->second.expired) {
        return found->second.rows;
    }
    return build_entry(key, transaction, build);
}

std::shared_ptr<const RowIndex> RowCache::build_entry(const Key &key, long transaction,
                                                      const std::function<RowIndex()> &build) {
    auto rows = std::make_shared<const RowIndex>(build());
    if (rows->origin == RowIndex::Origin::nothing) {
        return rows;
    }
    if (const auto old = entries_.find(key); old != entries_.end()) {
        // A walk must not end as if the rows of a card that does not answer were gone.
        if (rows->origin == RowIndex::Origin::failure && rows->size() < old->second.rows->size()) {
            rows = old->second.rows;
        }
        drop(old);
    }
    while (!entries_.empty() && rows_ + rows->size() > row_budget_) {
        drop(std::min_element(entries_.begin(), entries_.end(), [](const auto &a, const auto &b) {
            return a.second.last_use < b.second.last_use;
        }));
    }
    rows_ += rows->size();
    entries_.insert_or_assign(key, Entry{rows, agent_time(), transaction, ++uses_, false});
    return rows;
}

void RowCache::drop(std::map<Key, Entry>::iterator entry) {
    rows_ -= entry->second.rows->size();
    entries_.erase(entry);
}

void RowCache::expire() {
    ++changes_;
    for (auto &[key, entry] : entries_) {
        entry.expired = true;
    }
}

void RowCache::clear() {
    ++changes_;
    entries_.clear();
    rows_ = 0;
}

}  // namespace tarn::host
