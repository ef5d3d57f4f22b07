#include "host/control/unconfirmed_commits.h"

#include "host/services/cache_clock.h"

namespace tarn::host {

void UnconfirmedCommits::begin(int slot) {
    if (confirm_time_.count() > 0) {
        deadlines_[slot] = agent_time() + std::chrono::nanoseconds(confirm_time_).count();
    }
}

std::vector<int> UnconfirmedCommits::take_overdue() {
    std::vector<int> overdue;
    for (auto entry = deadlines_.begin(); entry != deadlines_.end();) {
        if (agent_time() >= entry->second) {
            overdue.push_back(entry->first);
            entry = deadlines_.erase(entry);
        } else {
            ++entry;
        }
    }
    return overdue;
}

}  // namespace tarn::host
