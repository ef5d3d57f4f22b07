// The agent's side of the board protocol (docs/protocol.md). Nothing here waits unless it says so: requests
// are started, and whoever runs the event loop calls process() when descriptor() is readable.
#ifndef TARN_HOST_BOARD_IPC_CLIENT_H
#define TARN_HOST_BOARD_IPC_CLIENT_H

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "host/board/board_connection.h"
#include "host/board/card_figures.h"
#include "host/board/chassis_address.h"
#include "wire/protocol.h"

namespace tarn::host {

// How long a request may wait for a card that let that many requests in a row time out: at first its own
// time-out, then no more than 1, 2, 4, 8 s, or a request would wait for a dead card for half a minute while a
// slow one would never be heard again.
int patience_ms(int silent_requests, int timeout_ms);

enum class CardState {
    ok,
    slow,     // its last answer took long, or a request has been waiting for long
    silent,   // it let requests time out: requests fail at once until it answers
    closing,  // the same for one that keeps closing its connections
    absent,   // no card in the slot, or no chassis
};
const char *name_of(CardState state);

// Why a card is left alone or is not there.
enum class CardReason { none = 1, timed_out, connections_lost, no_card, no_chassis };

class IpcClient {
  public:
    // Slots 0-15 are line cards, 16-18 the chassis' own services.
    static constexpr int slots = 19;
    // Each request has a connection to itself, so that a late answer dies with its connection.
    static constexpr std::size_t most_connections = 16;  // that every slot can count on
    // More of them for slots that want them, in all: descriptors are scarce, and cards are seldom busy at
    // once.
    static constexpr std::size_t shared_connections = 48;
    // For how long a request's connection is kept after its time-out, to see whether an answer comes late.
    static constexpr std::chrono::seconds late_patience{30};
    // What a card may take for an answer without being slow.
    static constexpr std::chrono::milliseconds quick{20};
    // Several answers that take longer than this are had sooner by asking for all of them at once.
    static constexpr std::chrono::milliseconds at_once{1};

    // A card that does not answer is asked in the background every `hold`, which is also how long it is left
    // alone; zero: it is never left alone.
    IpcClient(const ChassisAddress &address, std::chrono::milliseconds hold);
    ~IpcClient();
    IpcClient(const IpcClient &) = delete;
    IpcClient &operator=(const IpcClient &) = delete;

    // Sends the request when its slot has a connection free. The result may be finished already.
    ExchangePtr start(std::span<const std::uint8_t> request, int timeout_ms);
    // Serves all connections until the exchange is finished or the deadline is over.
    void wait(const Exchange &exchange, Deadline until);
    // Ends all that is on its way with `result`.
    void abandon(int result);

    // Starts the request and waits for its answer, at most timeout_ms in all. Returns as take_answer does.
    int send_request(const std::uint8_t *request, std::uint8_t **answer, int timeout_ms);

    // Whether the slot had a card at the last contact.
    [[nodiscard]] bool link(int slot) const;
    [[nodiscard]] CardState state(int slot) const;
    [[nodiscard]] CardReason reason(int slot) const;
    // Whether it is likely that the card answers while its caller does nothing else.
    [[nodiscard]] bool answers_at_once(int slot) const;
    // How many of the slot's connections the other end closed while nothing was asked.
    [[nodiscard]] std::uint64_t endings(int slot) const { return slot_at(slot).endings; }
    // Connects where there is no connection, waiting at most timeout_ms. Returns the link.
    bool check_link(int slot, int timeout_ms);
    // Starts to connect every slot that has no connection. The links follow when the chassis has answered.
    void refresh_links();
    // Waits until all slots' connections are open or refused, or the deadline is over.
    void wait_for_links(Deadline until);

    // Readable when process() has something to do; timers included.
    [[nodiscard]] int descriptor() const { return events_; }
    // Never blocks. When exchanges were finished, here or while another one was waited for, the descriptor
    // stays readable: whoever called, the event loop has yet to serve those who wait for them.
    void process();
    // The same for the event loop, which serves them right afterwards.
    void process_for_all();
    // Makes the descriptor readable until process_for_all() is called, whatever is taken in before.
    void wake() {
        unserved_ = true;
        watch_deadline(std::chrono::steady_clock::now());
    }
    // Called inside process() when an exchange is finished.
    void on_finished(std::function<void(const Exchange &)> listener) { listener_ = std::move(listener); }
    // The same when a request goes out to its card, and when a card is left alone or no more.
    void on_sent(std::function<void(const Exchange &)> listener) { sent_listener_ = std::move(listener); }
    void on_hold(std::function<void(int slot, bool held)> listener) { hold_listener_ = std::move(listener); }

    [[nodiscard]] const CardFigures &figures(int slot) const;
    [[nodiscard]] const ChassisAddress &address() const { return address_; }

  private:
    struct Slot {
        std::deque<ExchangePtr> queue;  // not sent yet
        std::vector<std::unique_ptr<BoardConnection>> connections;
        bool link = false;
        CardReason absence = CardReason::no_chassis;  // why there is no link
        int silent_requests = 0;
        int lost_requests = 0;
        std::uint64_t endings = 0;
        bool held = false;
        Deadline last_failure{};
        Deadline next_probe{};
        CardFigures figures;
    };

    Slot &slot_at(int number) { return slots_[static_cast<std::size_t>(number)]; }
    [[nodiscard]] const Slot &slot_at(int number) const { return slots_[static_cast<std::size_t>(number)]; }
    void dispatch(int number);
    BoardConnection *open(int number);
    bool share_connection();
    void give_up(BoardConnection &connection, std::vector<ExchangePtr> &overdue);
    void close(BoardConnection &connection);
    void serve(BoardConnection &connection);
    void connection_failed(BoardConnection &connection, int result);
    void finish(const ExchangePtr &exchange, int result);
    void note_outcome(Slot &slot, const Exchange &exchange, int result);
    void hold(int number);
    static void lose_link(Slot &slot, CardReason reason);
    void fail_queue(int number, int result);
    void expire(Deadline now);
    void probe(int number, Deadline now);
    void watch_deadline(Deadline deadline);
    void poll(int timeout_ms);
    void tell_unserved();

    ChassisAddress address_;
    std::chrono::milliseconds hold_;
    int events_ = -1;
    int timer_ = -1;
    Deadline next_deadline_ = Deadline::max();
    bool unserved_ = false;  // there is something to serve since process_for_all
    std::array<Slot, slots> slots_;
    std::vector<std::unique_ptr<BoardConnection>> closed_;  // until no event can name them
    std::function<void(const Exchange &)> listener_;
    std::function<void(const Exchange &)> sent_listener_;
    std::function<void(int, bool)> hold_listener_;
};

// The answer as the module gets it: 0 and a balloc'ed block, or the exchange's negative result. The block is
// longer than the answer and zero after it, so that a count or length inside the answer cannot lead past it.
int take_answer(const Exchange &exchange, std::uint8_t **answer);

// The client that ipcSendRequest and check_slot_link use; null: none.
void set_ipc_client(IpcClient *client);

}  // namespace tarn::host

#endif
