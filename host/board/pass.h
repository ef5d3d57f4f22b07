// Serving a manager's read request without waiting for cards. The module asks for what it needs and takes the
// answer from the same call; when the answer is not there within a few milliseconds the call fails, what this
// pass over the request gives is thrown away, and the request is served again when the answers have come.
// Each pass is given all answers that earlier ones asked for.
#ifndef TARN_HOST_BOARD_PASS_H
#define TARN_HOST_BOARD_PASS_H

#include <bitset>
#include <chrono>
#include <cstdint>
#include <map>
#include <span>
#include <vector>

#include "host/board/ipc_client.h"

namespace tarn::host {

using BoardBytes = std::vector<std::uint8_t>;
using BoardSlots = std::bitset<IpcClient::slots>;

// The board requests on their way for managers, so that two who want the same share one.
class SharedRequests {
  public:
    explicit SharedRequests(IpcClient &client) : client_(client) {}
    ExchangePtr start(const BoardBytes &request, int timeout_ms);
    // What is on its way to these slots may be out of date when it comes: it is not shared any more.
    void forget(const BoardSlots &slots);
    [[nodiscard]] IpcClient &client() const { return client_; }

  private:
    IpcClient &client_;
    std::map<BoardBytes, std::weak_ptr<Exchange>> under_way_;
};

// What one manager's request has asked cards for.
class AnswerMemory {
  public:
    [[nodiscard]] ExchangePtr find(const BoardBytes &request) const;
    void add(const BoardBytes &request, ExchangePtr exchange);
    // Whether all that was asked for is there.
    [[nodiscard]] bool complete();
    void forget(const BoardSlots &slots);

  private:
    std::map<BoardBytes, ExchangePtr> exchanges_;
    std::vector<ExchangePtr> pending_;
};

class Pass {
  public:
    // The time for which a pass waits for cards in all, so that quick ones need no second pass. A card whose
    // last answer did not come at once is not waited for at all.
    static constexpr std::chrono::milliseconds budget{4};

    // What a SET is at work on while it waits for a card: slots, and a table whose rows are half enumerated.
    struct Barred {
        BoardSlots slots{};
        const void *table = nullptr;
    };

    // From now to its end the pass is current. In the last pass what is not there is taken for not answered.
    Pass(SharedRequests &requests, AnswerMemory &memory, const Barred &barred, bool last = false);
    ~Pass();
    Pass(const Pass &) = delete;
    Pass &operator=(const Pass &) = delete;

    // The pass that is going on; null outside of one.
    static Pass *current();

    // What ipcSendRequest does in a pass: 0 and a balloc'ed answer, or an ipc_result.
    int request(std::span<const std::uint8_t> request, std::uint8_t **answer, int timeout_ms);
    // Whether what the module holds of a slot may be looked at. The pass is incomplete when it may not.
    bool may_touch(int slot);
    bool may_enumerate(const void *table, int slot);

    // Ends the pass for now, since what it does takes longer than others should wait; it goes on in the
    // agent's next turn. The last pass does not ask.
    void pause();
    [[nodiscard]] bool is_last() const { return last_; }

    // How often something had to be left out; not 0: what the pass gives must be thrown away.
    [[nodiscard]] int omissions() const { return omissions_; }
    // Whether it had to wait for a SET.
    [[nodiscard]] bool met_bar() const { return met_bar_; }

  private:
    int omit();
    bool meet_bar();

    SharedRequests &requests_;
    AnswerMemory &memory_;
    Barred barred_;
    bool last_;
    bool met_bar_ = false;
    bool met_failure_ = false;
    bool distrusts_ = false;
    int omissions_ = 0;
    std::int64_t last_answer_at_;
    std::int64_t distrust_from_ = 0;
    std::chrono::steady_clock::duration left_ = budget;
};

// How often a request of the agent's thread was not answered by its card, since the agent's start. Of no use
// but to see whether it changed.
std::uint64_t failed_requests();
void note_failed_request();

}  // namespace tarn::host

#endif
