#include <array>
#include <utility>

#include "module/switch/switch_mac_table.h"

namespace tarn {

namespace {

struct Range {
    std::ptrdiff_t low;
    std::ptrdiff_t high;  // one after the last
    [[nodiscard]] std::ptrdiff_t size() const { return high - low; }
};

// Splits a range of three or more around its first entry; returns where that entry ends up. The way of the
// two scans decides the order of equal entries and must stay as it is.
std::ptrdiff_t partition(switch_mac_list_t *entries, Range range) {
    const std::uint64_t pivot = mac_key(entries[range.low]);
    std::ptrdiff_t i = range.low + 1;
    std::ptrdiff_t j = range.high - 1;
    while (i < j) {
        while (i <= j && mac_key(entries[i]) <= pivot) {
            ++i;
        }
        while (i <= j && mac_key(entries[j]) >= pivot) {
            --j;
        }
        if (i > j) {
            std::swap(entries[j], entries[range.low]);
            i = j;
            break;
        }
        std::swap(entries[i], entries[j]);
        if (i + 2 < j) {
            ++i;
            --j;
        } else if (i + 1 < j) {
            ++i;
        }
    }
    return i;
}

bool strictly_ascending(MacEntries entries) {
    for (std::size_t i = 1; i < entries.size(); ++i) {
        if (mac_key(entries[i - 1]) >= mac_key(entries[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

void sort_mac_entries(MacEntries entries) {
    // The pivot is the first entry: a card that keeps its table sorted would cost quadratic time.
    if (strictly_ascending(entries)) {
        return;
    }
    // The larger part waits while the smaller one is sorted, so that the ranges halve.
    std::array<Range, 64> waiting;
    std::size_t count = 0;
    waiting[count++] = {0, static_cast<std::ptrdiff_t>(entries.size())};
    while (count > 0) {
        Range range = waiting[--count];
        while (range.size() > 2) {
            const std::ptrdiff_t split = partition(entries.data(), range);
            Range smaller{range.low, split};
            Range larger{split + 1, range.high};
            if (smaller.size() > larger.size()) {
                std::swap(smaller, larger);
            }
            if (smaller.size() >= 2) {
                waiting[count++] = larger;
                range = smaller;
            } else {
                range = larger;
            }
        }
        if (range.size() == 2) {
            const auto first = static_cast<std::size_t>(range.low);
            if (mac_key(entries[first]) > mac_key(entries[first + 1])) {
                std::swap(entries[first], entries[first + 1]);
            }
        }
    }
}

}  // namespace tarn
