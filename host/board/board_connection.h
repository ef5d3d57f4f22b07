// One connection to a slot of the chassis, which carries one request at a time and never blocks.
#ifndef TARN_HOST_BOARD_BOARD_CONNECTION_H
#define TARN_HOST_BOARD_BOARD_CONNECTION_H

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/board/chassis_address.h"

namespace tarn::host {

using Deadline = std::chrono::steady_clock::time_point;

// A request on its way to a card, or what became of it.
struct Exchange {
    int slot = 0;
    std::vector<std::uint8_t> request;  // header and payload
    Deadline started{};
    Deadline sent{};  // when it went out to its card; none: it still waits for a connection
    Deadline deadline{};
    bool probe = false;  // sent by the agent itself, to find out whether a card answers again
    bool finished = false;
    int result = 0;                    // 0 or an ipc_result, when finished
    std::vector<std::uint8_t> answer;  // header and payload
};
using ExchangePtr = std::shared_ptr<Exchange>;

class BoardConnection {
  public:
    // late: whoever sent the request waits no more, and the connection ends with its answer.
    enum class Phase { opening, idle, busy, late };
    // What serve() came to: nothing yet, the link frame was accepted, the request was answered, in time or
    // too late; or the end.
    enum class Event { none, opened, answered, answered_late, no_card, failed };

    // Starts to connect and to send the slot's link frame. Look at is_open() afterwards.
    BoardConnection(const ChassisAddress &address, int slot, Deadline deadline);
    ~BoardConnection() { close(); }
    BoardConnection(const BoardConnection &) = delete;
    BoardConnection &operator=(const BoardConnection &) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    [[nodiscard]] int descriptor() const { return descriptor_; }
    [[nodiscard]] int slot() const { return slot_; }
    [[nodiscard]] Phase phase() const { return phase_; }
    [[nodiscard]] Deadline deadline() const {
        return phase_ == Phase::busy ? exchange_->deadline : deadline_;
    }
    [[nodiscard]] const ExchangePtr &exchange() const { return exchange_; }
    [[nodiscard]] bool wants_to_write() const { return connecting_ || sent_ < out_.size(); }
    // Why it failed: an ipc_result.
    [[nodiscard]] int failure() const { return failure_; }

    // Whether an idle connection can take a request: the chassis neither ended it nor sent what nobody asked
    // for.
    [[nodiscard]] bool is_usable() const;
    void send(ExchangePtr exchange);
    // Goes on with what the socket is ready for. After `answered` the exchange has its answer and the
    // connection is idle.
    Event serve();
    // The exchange that was on its way; the connection has none any more.
    ExchangePtr release();
    // The same; the answer is counted when it comes until then.
    ExchangePtr give_up(Deadline until);
    void close();

  private:
    Event fail(int result);
    bool finish_connecting();
    bool write_out();
    Event read_in();
    Event take_frame();
    [[nodiscard]] bool is_answer() const;

    int descriptor_ = -1;
    int slot_;
    Deadline deadline_;
    Phase phase_ = Phase::opening;
    bool connecting_ = false;
    int failure_ = 0;
    std::vector<std::uint8_t> out_;
    std::size_t sent_ = 0;
    std::vector<std::uint8_t> in_;
    std::size_t received_ = 0;
    ExchangePtr exchange_;
};

}  // namespace tarn::host

#endif
