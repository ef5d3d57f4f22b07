#include "host/tables/row_index.h"

#include <algorithm>
#include <compare>
#include <numeric>
#include <utility>

namespace tarn::host {
namespace {

std::strong_ordering compare(std::span<const std::uint32_t> a, std::span<const oid> b) {
    return std::lexicographical_compare_three_way(
        a.begin(), a.end(), b.begin(), b.end(),
        [](std::uint32_t x, oid y) { return static_cast<oid>(x) <=> y; });
}

// The number of rows at the front for which `before` holds; it holds for none after one for which it does
// not.
template <class Before>
std::size_t partition_point(std::size_t rows, Before before) {
    std::size_t first = 0;
    while (rows > 0) {
        const std::size_t half = rows / 2;
        if (before(first + half)) {
            first += half + 1;
            rows -= half + 1;
        } else {
            rows = half;
        }
    }
    return first;
}

}  // namespace

std::size_t RowIndex::lower_bound(std::span<const oid> wanted) const {
    return partition_point(size(), [&](std::size_t row) { return std::is_lt(compare(suffix(row), wanted)); });
}

std::size_t RowIndex::upper_bound(std::span<const oid> wanted) const {
    return partition_point(size(),
                           [&](std::size_t row) { return std::is_lteq(compare(suffix(row), wanted)); });
}

std::size_t RowIndex::find(std::span<const oid> wanted) const {
    const std::size_t row = lower_bound(wanted);
    return row < size() && std::is_eq(compare(suffix(row), wanted)) ? row : size();
}

void RowIndexBuilder::add(std::span<const std::uint32_t> suffix, void *data) {
    unsorted_.subids_.insert(unsorted_.subids_.end(), suffix.begin(), suffix.end());
    unsorted_.offsets_.push_back(static_cast<std::uint32_t>(unsorted_.subids_.size()));
    unsorted_.rows_.push_back(data);
}

void RowIndexBuilder::cut(std::size_t rows) {
    unsorted_.offsets_.resize(rows + 1);
    unsorted_.subids_.resize(unsorted_.offsets_.back());
    unsorted_.rows_.resize(rows);
}

RowIndex RowIndexBuilder::finish() {
    RowIndex rows = std::exchange(unsorted_, RowIndex{});
    const auto before = [&rows](std::size_t a, std::size_t b) {
        const auto x = rows.suffix(a);
        const auto y = rows.suffix(b);
        return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end());
    };
    std::size_t ascending = std::min<std::size_t>(rows.size(), 1);
    while (ascending < rows.size() && before(ascending - 1, ascending)) {
        ++ascending;
    }
    if (ascending == rows.size()) {
        return rows;
    }
    std::vector<std::uint32_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), before);
    RowIndex sorted;
    sorted.subids_.reserve(rows.subids_.size());
    sorted.offsets_.reserve(rows.offsets_.size());
    sorted.rows_.reserve(rows.rows_.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i > 0 && !before(order[i - 1], order[i])) {
            continue;
        }
        const auto suffix = rows.suffix(order[i]);
        sorted.subids_.insert(sorted.subids_.end(), suffix.begin(), suffix.end());
        sorted.offsets_.push_back(static_cast<std::uint32_t>(sorted.subids_.size()));
        sorted.rows_.push_back(rows.data(order[i]));
    }
    return sorted;
}

bool CycleGuard::repeats(std::span<const std::uint32_t> suffix) {
    if (any_ && std::equal(suffix.begin(), suffix.end(), remembered_.begin(), remembered_.end())) {
        return true;
    }
    if (++steps_ == limit_) {
        remembered_.assign(suffix.begin(), suffix.end());
        any_ = true;
        steps_ = 0;
        limit_ *= 2;
    }
    return false;
}

}  // namespace tarn::host
