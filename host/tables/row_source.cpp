#include "host/tables/row_source.h"

#include <algorithm>

#include "host/services/logger.h"
#include "host/tables/index_codec.h"

namespace tarn::host {

bool RowSource::enumerate(int slot, Enumeration &enumeration, std::size_t steps) {
    if (!callbacks_.is_iterator()) {
        return enumerate_nextgen(slot, enumeration, steps);
    }
    enumerate_iterator(slot, enumeration.rows);
    return true;
}

// A table that misbehaves does so on every walk: say it once.
void RowSource::complain(int slot, const char *what) {
    if (!complained_) {
        complained_ = true;
        log_add(log_level::error, "%s: slot %d: %s\n", schema_.name.c_str(), slot + 1, what);
    }
}

bool RowSource::acceptable(std::span<const std::uint32_t> suffix, int slot) const {
    return !suffix.empty() && schema_.prefix_length() + suffix.size() <= MAX_OID_LEN &&
           (!schema_.per_slot() || suffix.front() == static_cast<std::uint32_t>(slot) + 1);
}

void RowSource::enumerate_iterator(int slot, RowIndexBuilder &builder) {
    const IndexValues values(schema_.index);
    void *loop_context = nullptr;
    void *row = nullptr;
    std::vector<std::uint32_t> suffix;
    for (std::size_t rows = 0; rows < most_rows_of_a_slot; ++rows) {
        const netsnmp_variable_list *index = callbacks_.next_index(&loop_context, &row, values.list(), slot);
        if (index == nullptr) {
            return;
        }
        suffix.clear();
        if (encode_index(schema_.index, index, suffix) && acceptable(suffix, slot)) {
            builder.add(suffix, row);
        }
    }
    complain(slot, "the rows have no end; the rest is left out");
}

bool RowSource::enumerate_nextgen(int slot, Enumeration &enumeration, std::size_t steps) {
    const auto column = static_cast<int>(schema_.columns.front().number);
    const std::size_t root_length = schema_.root.size();
    std::vector<oid> &name = enumeration.name;
    if (enumeration.steps == 0) {
        name = schema_.root;
    }
    std::vector<std::uint32_t> suffix;
    for (; enumeration.steps < most_rows_of_a_slot; ++enumeration.steps) {
        if (steps-- == 0) {
            return false;
        }
        table_entry entry{};
        callbacks_.get_next_entry(&entry, slot, name.data(), name.size(), column);
        if (entry.name == nullptr || entry.length == 0) {
            return true;
        }
        name.assign(entry.name, entry.name + entry.length);
        bfree(__FILE__, __LINE__, entry.name);
        if (name.size() <= schema_.prefix_length() ||
            !std::equal(schema_.root.begin(), schema_.root.end(), name.begin()) || name[root_length] != 1) {
            complain(slot, "a row's name is not one of this table; the rest is left out");
            return true;
        }
        suffix.assign(name.begin() + static_cast<std::ptrdiff_t>(schema_.prefix_length()), name.end());
        if (enumeration.guard.repeats(suffix)) {
            complain(slot, "the rows go round in circles; the rest is left out");
            return true;
        }
        if (acceptable(suffix, slot)) {
            enumeration.rows.add(suffix, entry.row);
        }
    }
    complain(slot, "the rows have no end; the rest is left out");
    return true;
}

}  // namespace tarn::host
