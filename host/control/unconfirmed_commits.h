// The commits that a card takes back unless they are confirmed in time.
#ifndef TARN_HOST_UNCONFIRMED_COMMITS_H
#define TARN_HOST_UNCONFIRMED_COMMITS_H

#include <chrono>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace tarn::host {

class UnconfirmedCommits {
  public:
    // `confirm_time`: how long the cards wait for the confirmation; 0: they take nothing back.
    explicit UnconfirmedCommits(std::chrono::seconds confirm_time) : confirm_time_(confirm_time) {}

    // Slots are 0-15, and 16 for the chassis-wide profiles. A new commit is waited for anew.
    void begin(int slot);
    void end(int slot) { waiting_.erase(slot); }

    // The slots whose time is over in a minute or less, or in half of it when it is shorter; each commit
    // once.
    std::vector<std::pair<int, std::chrono::seconds>> take_expiring();
    // The slots whose time is over, ascending, each once.
    std::vector<int> take_overdue();

  private:
    std::chrono::seconds confirm_time_;
    struct Commit {
        std::int64_t deadline;  // on agent_time's clock
        bool told = false;
    };
    std::map<int, Commit> waiting_;  // by slot
};

}  // namespace tarn::host

#endif
