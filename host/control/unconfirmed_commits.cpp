#include "host/control/unconfirmed_commits.h"

#include <algorithm>

#include "host/services/cache_clock.h"

namespace tarn::host {

void UnconfirmedCommits::begin(int slot) {
    if (confirm_time_.count() > 0) {
        waiting_[slot] = {agent_time() + std::chrono::nanoseconds(confirm_time_).count()};
    }
}

std::vector<std::pair<int, std::chrono::seconds>> UnconfirmedCommits::take_expiring() {
    using namespace std::chrono_literals;
    const std::chrono::nanoseconds notice =
        std::min<std::chrono::nanoseconds>(60s, std::chrono::nanoseconds(confirm_time_) / 2);
    std::vector<std::pair<int, std::chrono::seconds>> expiring;
    for (auto &[slot, commit] : waiting_) {
        const std::chrono::nanoseconds left(commit.deadline - agent_time());
        if (left <= notice && !std::exchange(commit.told, true)) {
            expiring.emplace_back(slot, std::max(0s, std::chrono::ceil<std::chrono::seconds>(left)));
        }
    }
    return expiring;
}

std::vector<int> UnconfirmedCommits::take_overdue() {
    std::vector<int> overdue;
    for (auto entry = waiting_.begin(); entry != waiting_.end();) {
        if (agent_time() >= entry->second.deadline) {
            overdue.push_back(entry->first);
            entry = waiting_.erase(entry);
        } else {
            ++entry;
        }
    }
    return overdue;
}

}  // namespace tarn::host
