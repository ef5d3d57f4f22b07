#include "host/board/ipc_client.h"

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

#include "host/board/ipc_result.h"
#include "host/services/logger.h"

namespace tarn::host {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr int silent_requests_before_hold = 2;
constexpr int lost_requests_before_hold = 3;
constexpr int suspect_timeout_ms = 1000;
constexpr int doublings = 3;
constexpr auto link_timeout = 3s;
constexpr int probe_timeout_ms = 3000;

// The size of an answer's block: at least what the largest answer of its command takes.
std::size_t block_size(std::uint16_t command, std::size_t length) {
    constexpr std::size_t configuration_image = 1'100'000;
    constexpr std::size_t other = std::size_t{70} * 1024;
    return std::max(length, command == command::get_all_config ? configuration_image : other);
}

std::uint16_t command_of(const std::vector<std::uint8_t> &message) {
    return static_cast<std::uint16_t>(load_integer(message.data(), board_header::command));
}

// A question that any card can answer and that changes nothing.
std::vector<std::uint8_t> probe_request(int slot) {
    struct Question {
        std::uint16_t command;
        std::uint8_t destination;
    };
    constexpr Question of_line_card{command::get_olt_state, destination::services};
    constexpr std::array<Question, 3> of_chassis = {
        Question{command::get_alloc_profiles, destination::configuration},
        Question{command::get_olt_vlan_profiles, destination::configuration},
        Question{command::get_alarms_config, destination::configuration}};
    const Question question = slot < chassis_slot::line_cards
                                  ? of_line_card
                                  : of_chassis[static_cast<std::size_t>(slot - chassis_slot::line_cards)];
    std::vector<std::uint8_t> request(board_header::size);
    store_integer(request.data(), board_header::command, question.command);
    store_integer(request.data(), board_header::kind, 1);
    store_integer(request.data(), board_header::destination, question.destination);
    store_integer(request.data(), board_header::slot, slot);
    store_integer(request.data(), board_header::version_1, release_numbers[0]);
    store_integer(request.data(), board_header::version_2, release_numbers[1]);
    store_integer(request.data(), board_header::version_3, release_numbers[2]);
    store_integer(request.data(), board_header::version_4, release_numbers[3]);
    store_integer(request.data(), board_header::version_5, release_numbers[4]);
    store_integer(request.data(), board_header::length, board_header::size);
    return request;
}

int milliseconds_until(Deadline deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000));
}

bool is_late(const std::unique_ptr<BoardConnection> &connection) {
    return connection->phase() == BoardConnection::Phase::late;
}

// Whether no request can go out or is on its way.
bool all_late(const std::vector<std::unique_ptr<BoardConnection>> &connections) {
    return std::ranges::all_of(connections, is_late);
}

std::size_t in_use(const std::vector<std::unique_ptr<BoardConnection>> &connections) {
    return connections.size() - static_cast<std::size_t>(std::ranges::count_if(connections, is_late));
}

void count(CommandFigures &figures, const Exchange &exchange, int result, std::chrono::microseconds taken) {
    if (result == ipc_result::timed_out) {
        ++figures.timed_out;
    } else if (result == ipc_result::connection_lost || result == ipc_result::protocol_error) {
        ++figures.lost;
    } else if (result != 0) {
        ++figures.other;
    } else {
        ++(load_integer(exchange.answer.data(), board_header::status) == board_status::success
               ? figures.answered
               : figures.refused);
        const auto &limits = CommandFigures::limits_ms;
        const auto place =
            std::lower_bound(limits.begin(), limits.end(),
                             std::chrono::duration_cast<std::chrono::milliseconds>(taken).count());
        ++figures.times[static_cast<std::size_t>(place - limits.begin())];
    }
}

}  // namespace

int patience_ms(int silent_requests, int timeout_ms) {
    if (silent_requests == 0) {
        return timeout_ms;
    }
    return std::min(timeout_ms, suspect_timeout_ms << std::min(silent_requests - 1, doublings));
}

const char *name_of(CardState state) {
    constexpr std::array names = {"ok", "slow", "silent", "closing", "absent"};
    return names[static_cast<std::size_t>(state)];
}

IpcClient::IpcClient(const ChassisAddress &address, std::chrono::milliseconds hold)
    : address_(address),
      hold_(hold),
      events_(epoll_create1(EPOLL_CLOEXEC)),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = nullptr;  // the timer
    if (events_ < 0 || timer_ < 0 || epoll_ctl(events_, EPOLL_CTL_ADD, timer_, &event) != 0) {
        throw std::system_error(errno, std::generic_category(), "board connections");
    }
}

IpcClient::~IpcClient() {
    (void)::close(timer_);
    (void)::close(events_);
}

bool IpcClient::link(int slot) const {
    return slot >= 0 && slot < slots && slot_at(slot).link;
}

const CardFigures &IpcClient::figures(int slot) const {
    return slot_at(slot).figures;
}

CardState IpcClient::state(int number) const {
    const Slot &slot = slot_at(number);
    if (!slot.link) {
        return CardState::absent;
    }
    if (slot.held) {
        return slot.silent_requests >= silent_requests_before_hold ? CardState::silent : CardState::closing;
    }
    const Deadline long_ago = Clock::now() - quick;
    const bool waits = std::ranges::any_of(slot.connections, [&](const auto &connection) {
        return connection->exchange() != nullptr && connection->exchange()->sent < long_ago;
    });
    return slot.figures.last_answer_time > quick || waits ? CardState::slow : CardState::ok;
}

bool IpcClient::answers_at_once(int number) const {
    return slot_at(number).figures.last_answer_time <= at_once && state(number) == CardState::ok;
}

CardReason IpcClient::reason(int number) const {
    const Slot &slot = slot_at(number);
    if (!slot.link) {
        return slot.absence;
    }
    switch (state(number)) {
        case CardState::silent:
            return CardReason::timed_out;
        case CardState::closing:
            return CardReason::connections_lost;
        default:
            return CardReason::none;
    }
}

void IpcClient::lose_link(Slot &slot, CardReason reason) {
    slot.link = false;
    slot.absence = reason;
}

ExchangePtr IpcClient::start(std::span<const std::uint8_t> request, int timeout_ms) {
    auto exchange = std::make_shared<Exchange>();
    const auto number = request.size() < board_header::size
                            ? slots
                            : static_cast<int>(load_integer(request.data(), board_header::slot));
    exchange->started = Clock::now();
    if (number >= slots || request.size() > max_message_size) {
        exchange->finished = true;
        exchange->result = ipc_result::bad_request;
        return exchange;
    }
    Slot &slot = slot_at(number);
    exchange->slot = number;
    exchange->request.assign(request.begin(), request.end());
    if (slot.held) {
        finish(exchange, ipc_result::on_hold);
        return exchange;
    }
    const int patience = std::max(patience_ms(slot.silent_requests, timeout_ms), 0);
    exchange->deadline = exchange->started + std::chrono::milliseconds(patience);
    slot.queue.push_back(exchange);
    watch_deadline(exchange->deadline);
    dispatch(number);
    return exchange;
}

// Gives what is queued to idle connections, and opens more of them as far as they are wanted.
void IpcClient::dispatch(int number) {
    Slot &slot = slot_at(number);
    while (!slot.queue.empty()) {
        const auto idle = std::ranges::find_if(slot.connections, [](const auto &connection) {
            return connection->phase() == BoardConnection::Phase::idle;
        });
        if (idle != slot.connections.end() && !(*idle)->is_usable()) {
            ++slot.endings;
            close(**idle);
            continue;
        }
        if (idle != slot.connections.end()) {
            const ExchangePtr exchange = slot.queue.front();
            slot.queue.pop_front();
            exchange->sent = Clock::now();
            (*idle)->send(exchange);
            if (sent_listener_) {
                sent_listener_(*exchange);
            }
            serve(**idle);
            continue;
        }
        const auto opening =
            static_cast<std::size_t>(std::ranges::count_if(slot.connections, [](const auto &connection) {
                return connection->phase() == BoardConnection::Phase::opening;
            }));
        const std::size_t own = most_connections + (slot.queue.front()->probe ? 4 : 0);
        // The first connection finds out whether there is a card at all.
        if (opening >= (slot.link ? slot.queue.size() : 1) ||
            (in_use(slot.connections) >= own && !share_connection()) || open(number) == nullptr) {
            return;
        }
    }
}

// Whether one of the shared connections is free, or idle and can be taken from its slot.
bool IpcClient::share_connection() {
    std::size_t taken = 0;
    BoardConnection *spare = nullptr;
    for (const Slot &slot : slots_) {
        const std::size_t used = in_use(slot.connections);
        if (used <= most_connections) {
            continue;
        }
        taken += used - most_connections;
        for (const auto &connection : slot.connections) {
            if (connection->phase() == BoardConnection::Phase::idle) {
                spare = connection.get();
            }
        }
    }
    if (taken >= shared_connections && spare != nullptr) {
        close(*spare);
        return true;
    }
    return taken < shared_connections;
}

BoardConnection *IpcClient::open(int number) {
    Slot &slot = slot_at(number);
    auto connection = std::make_unique<BoardConnection>(address_, number, Clock::now() + link_timeout);
    epoll_event event{};
    event.events = EPOLLIN | EPOLLOUT | EPOLLET;
    event.data.ptr = connection.get();
    if (!connection->is_open() || epoll_ctl(events_, EPOLL_CTL_ADD, connection->descriptor(), &event) != 0) {
        // What is queued can wait for another connection where there is one.
        if (all_late(slot.connections)) {
            lose_link(slot, CardReason::no_chassis);
            fail_queue(number, ipc_result::no_connection);
        }
        return nullptr;
    }
    watch_deadline(connection->deadline());
    slot.connections.push_back(std::move(connection));
    return slot.connections.back().get();
}

void IpcClient::close(BoardConnection &connection) {
    auto &connections = slot_at(connection.slot()).connections;
    const auto place =
        std::ranges::find_if(connections, [&](const auto &other) { return other.get() == &connection; });
    connection.close();
    closed_.push_back(std::move(*place));
    connections.erase(place);
}

void IpcClient::serve(BoardConnection &connection) {
    const int number = connection.slot();
    switch (connection.serve()) {
        case BoardConnection::Event::none:
            return;
        case BoardConnection::Event::opened:
            slot_at(number).link = true;
            break;
        case BoardConnection::Event::answered:
            finish(connection.release(), 0);
            // What came with the answer raises no event of its own.
            if (connection.is_open() && connection.phase() == BoardConnection::Phase::idle &&
                !connection.is_usable()) {
                close(connection);
            }
            break;
        case BoardConnection::Event::answered_late:
            ++slot_at(number).figures.late;
            close(connection);
            return;
        case BoardConnection::Event::no_card:
            lose_link(slot_at(number), CardReason::no_card);
            close(connection);
            fail_queue(number, ipc_result::no_card);
            return;
        case BoardConnection::Event::failed:
            connection_failed(connection, connection.failure());
            return;
    }
    dispatch(number);
}

void IpcClient::connection_failed(BoardConnection &connection, int result) {
    const int number = connection.slot();
    const bool opening = connection.phase() == BoardConnection::Phase::opening;
    const bool idle = connection.phase() == BoardConnection::Phase::idle;
    const ExchangePtr exchange = connection.release();
    close(connection);
    if (exchange != nullptr) {
        finish(exchange, result);
    } else if (opening && all_late(slot_at(number).connections)) {
        lose_link(slot_at(number), result == ipc_result::no_connection ? CardReason::no_chassis
                                                                       : CardReason::connections_lost);
        fail_queue(number, result);
    } else if (idle) {
        ++slot_at(number).endings;
    }
    dispatch(number);
}

void IpcClient::fail_queue(int number, int result) {
    std::deque<ExchangePtr> queue;
    queue.swap(slot_at(number).queue);
    for (const ExchangePtr &exchange : queue) {
        finish(exchange, result);
    }
}

void IpcClient::finish(const ExchangePtr &exchange, int result) {
    Slot &slot = slot_at(exchange->slot);
    exchange->finished = true;
    exchange->result = result;
    unserved_ = true;
    const Deadline now = Clock::now();
    // What a request waited for a connection is not its card's.
    const Deadline begin = exchange->sent == Deadline{} ? exchange->started : exchange->sent;
    const auto taken = std::chrono::duration_cast<std::chrono::microseconds>(now - begin);
    if (!exchange->probe) {
        count(slot.figures.commands[command_of(exchange->request)], *exchange, result, taken);
    }
    if (result == 0) {
        CardFigures &figures = slot.figures;
        figures.last_answer_at = now;
        figures.last_answer_time = taken;
        figures.longest_answer_time = std::max(figures.longest_answer_time, taken);
        figures.total_answer_time += taken;
    }
    note_outcome(slot, *exchange, result);
    if (listener_) {
        listener_(*exchange);
    }
}

void IpcClient::note_outcome(Slot &slot, const Exchange &exchange, int result) {
    if (result == 0) {
        if (slot.held) {
            log_add(log_level::information, "slot %d: the card answers again\n", exchange.slot + 1);
        }
        slot.silent_requests = 0;
        slot.lost_requests = 0;
        if (std::exchange(slot.held, false) && hold_listener_) {
            hold_listener_(exchange.slot, false);
        }
        return;
    }
    // Requests that failed together, or that were sent before the card was found out, count once.
    if (exchange.started < slot.last_failure || slot.held) {
        return;
    }
    if (result == ipc_result::timed_out) {
        ++slot.silent_requests;
    } else if (result == ipc_result::connection_lost) {
        ++slot.lost_requests;
    } else {
        return;
    }
    slot.last_failure = Clock::now();
    if (slot.silent_requests >= silent_requests_before_hold ||
        slot.lost_requests >= lost_requests_before_hold) {
        if (hold_ > 0s) {
            log_add(log_level::warning, "slot %d: the card %s; its requests fail at once until it answers\n",
                    exchange.slot + 1,
                    slot.silent_requests >= silent_requests_before_hold ? "does not answer"
                                                                        : "keeps closing its connections");
            hold(exchange.slot);
            fail_queue(exchange.slot, ipc_result::on_hold);
        }
    }
}

void IpcClient::hold(int number) {
    Slot &slot = slot_at(number);
    slot.held = true;
    slot.next_probe = Clock::now() + hold_;
    ++slot.figures.holds;
    watch_deadline(slot.next_probe);
    if (hold_listener_) {
        hold_listener_(number, true);
    }
}

void IpcClient::probe(int number, Deadline now) {
    Slot &slot = slot_at(number);
    slot.next_probe = now + hold_;
    watch_deadline(slot.next_probe);
    const auto is_probe = [](const auto &connection) {
        return connection->exchange() != nullptr && connection->exchange()->probe;
    };
    // A card that is slow by more than the hold still gets to answer one of a few.
    constexpr std::ptrdiff_t most_probes = 4;
    if (!slot.queue.empty() || std::ranges::count_if(slot.connections, is_probe) >= most_probes) {
        return;
    }
    auto exchange = std::make_shared<Exchange>();
    exchange->slot = number;
    exchange->probe = true;
    exchange->request = probe_request(number);
    exchange->started = now;
    exchange->deadline = now + std::chrono::milliseconds(probe_timeout_ms);
    ++slot.figures.probes;
    slot.queue.push_front(exchange);
    watch_deadline(exchange->deadline);
    dispatch(number);
}

// Takes the exchange of a connection whose time is over. A card that is asked by its probes alone is not
// waited for any longer.
void IpcClient::give_up(BoardConnection &connection, std::vector<ExchangePtr> &overdue) {
    Slot &slot = slot_at(connection.slot());
    // What is only half sent must not reach the card after its manager was told that it failed.
    const bool waits_on =
        connection.exchange() != nullptr && !connection.exchange()->probe && !connection.wants_to_write() &&
        std::ranges::count_if(slot.connections, is_late) < static_cast<std::ptrdiff_t>(most_connections);
    const ExchangePtr exchange =
        waits_on ? connection.give_up(Clock::now() + late_patience) : connection.release();
    if (exchange != nullptr) {
        overdue.push_back(exchange);
    }
    if (!waits_on) {
        close(connection);
    }
}

// Ends what is overdue and sends the probes that are due.
void IpcClient::expire(Deadline now) {
    if (now < next_deadline_) {
        return;
    }
    next_deadline_ = Deadline::max();
    for (int number = 0; number < slots; ++number) {
        Slot &slot = slot_at(number);
        std::vector<ExchangePtr> overdue;
        std::erase_if(slot.queue, [&](const ExchangePtr &exchange) {
            if (exchange->deadline <= now) {
                overdue.push_back(exchange);
                return true;
            }
            return false;
        });
        for (std::size_t i = slot.connections.size(); i-- > 0;) {
            BoardConnection &connection = *slot.connections[i];
            if (connection.phase() != BoardConnection::Phase::idle && connection.deadline() <= now) {
                give_up(connection, overdue);
            }
        }
        const bool nothing_open = all_late(slot.connections);
        for (const ExchangePtr &exchange : overdue) {
            finish(exchange, ipc_result::timed_out);
        }
        if (nothing_open && overdue.empty() && !slot.queue.empty()) {
            lose_link(slot, CardReason::timed_out);
        }
        if (slot.held && slot.next_probe <= now) {
            probe(number, now);
        }
        dispatch(number);
    }
    for (const Slot &slot : slots_) {
        for (const ExchangePtr &exchange : slot.queue) {
            next_deadline_ = std::min(next_deadline_, exchange->deadline);
        }
        for (const auto &connection : slot.connections) {
            if (connection->phase() != BoardConnection::Phase::idle) {
                next_deadline_ = std::min(next_deadline_, connection->deadline());
            }
        }
        if (slot.held) {
            next_deadline_ = std::min(next_deadline_, slot.next_probe);
        }
    }
    if (next_deadline_ != Deadline::max()) {
        const Deadline deadline = std::exchange(next_deadline_, Deadline::max());
        watch_deadline(deadline);
    }
}

void IpcClient::watch_deadline(Deadline deadline) {
    if (deadline >= next_deadline_) {
        return;
    }
    next_deadline_ = deadline;
    const auto since_start = std::max<std::chrono::nanoseconds>(deadline.time_since_epoch(), 1ns);
    itimerspec when{};
    when.it_value.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(since_start).count();
    when.it_value.tv_nsec = (since_start % 1s).count();
    (void)timerfd_settime(timer_, TFD_TIMER_ABSTIME, &when, nullptr);
}

void IpcClient::poll(int timeout_ms) {
    std::array<epoll_event, 64> ready{};
    const int count = epoll_wait(events_, ready.data(), static_cast<int>(ready.size()), timeout_ms);
    for (int i = 0; i < count; ++i) {
        auto *connection = static_cast<BoardConnection *>(ready[static_cast<std::size_t>(i)].data.ptr);
        if (connection == nullptr) {
            std::uint64_t times = 0;
            (void)!read(timer_, &times, sizeof times);
        } else if (connection->is_open()) {
            serve(*connection);
        }
    }
    expire(Clock::now());
    closed_.clear();
}

void IpcClient::tell_unserved() {
    if (unserved_) {
        wake();
    }
}

void IpcClient::process() {
    poll(0);
    tell_unserved();
}

void IpcClient::process_for_all() {
    poll(0);
    unserved_ = false;
}

void IpcClient::wait(const Exchange &exchange, Deadline until) {
    do {
        if (exchange.finished) {
            break;
        }
        poll(milliseconds_until(std::min(until, next_deadline_)));
    } while (Clock::now() < until);
    tell_unserved();
}

void IpcClient::abandon(int result) {
    for (int number = 0; number < slots; ++number) {
        fail_queue(number, result);
        std::vector<std::unique_ptr<BoardConnection>> connections;
        connections.swap(slot_at(number).connections);
        for (const auto &connection : connections) {
            if (const ExchangePtr exchange = connection->release()) {
                finish(exchange, result);
            }
        }
    }
}

int IpcClient::send_request(const std::uint8_t *request, std::uint8_t **answer, int timeout_ms) {
    const auto length = static_cast<std::size_t>(load_integer(request, board_header::length));
    if (length < board_header::size || length > max_message_size) {
        return ipc_result::bad_request;
    }
    process();  // a connection that the chassis ended in the meantime must not be used
    const ExchangePtr exchange = start({request, length}, timeout_ms);
    wait(*exchange, Deadline::max());
    return take_answer(*exchange, answer);
}

int take_answer(const Exchange &exchange, std::uint8_t **answer) {
    if (exchange.result != 0) {
        return exchange.result;
    }
    const std::size_t length = exchange.answer.size();
    const std::size_t size = block_size(command_of(exchange.answer), length);
    auto *block = static_cast<std::uint8_t *>(balloc(__FILE__, __LINE__, size));
    if (block == nullptr) {
        return ipc_result::no_memory;
    }
    std::copy(exchange.answer.begin(), exchange.answer.end(), block);
    std::memset(block + length, 0, size - length);
    *answer = block;
    return 0;
}

void IpcClient::refresh_links() {
    process();
    for (int number = 0; number < slots; ++number) {
        // A card that is left alone is asked by its probes.
        if (all_late(slot_at(number).connections) && !slot_at(number).held) {
            (void)open(number);
        }
    }
}

void IpcClient::wait_for_links(Deadline until) {
    const auto decided = [this] {
        return std::ranges::none_of(slots_, [](const Slot &slot) {
            return std::ranges::any_of(slot.connections, [](const auto &connection) {
                return connection->phase() == BoardConnection::Phase::opening;
            });
        });
    };
    while (!decided() && Clock::now() < until) {
        poll(milliseconds_until(std::min(until, next_deadline_)));
    }
}

bool IpcClient::check_link(int number, int timeout_ms) {
    process();
    Slot &slot = slot_at(number);
    if (all_late(slot.connections) && open(number) == nullptr) {
        return false;
    }
    const Deadline until = Clock::now() + std::chrono::milliseconds(timeout_ms);
    const auto opening = [&] {
        return !slot.connections.empty() && std::ranges::all_of(slot.connections, [](const auto &connection) {
            return connection->phase() == BoardConnection::Phase::opening;
        });
    };
    while (opening() && Clock::now() < until) {
        poll(milliseconds_until(std::min(until, next_deadline_)));
    }
    return slot.link && !opening();
}

}  // namespace tarn::host
