#include "host/board/pass.h"

#include <algorithm>
#include <utility>

#include "host/board/ipc_result.h"
#include "host/services/cache_clock.h"

namespace tarn::host {
namespace {

using Clock = std::chrono::steady_clock;

Pass *current_pass = nullptr;
std::uint64_t failures = 0;

}  // namespace

ExchangePtr SharedRequests::start(const BoardBytes &request, int timeout_ms) {
    std::erase_if(under_way_, [](const auto &entry) {
        const ExchangePtr exchange = entry.second.lock();
        return exchange == nullptr || exchange->finished;
    });
    if (const auto found = under_way_.find(request); found != under_way_.end()) {
        return found->second.lock();
    }
    ExchangePtr exchange = client_.start(request, timeout_ms);
    if (!exchange->finished) {
        under_way_[request] = exchange;
    }
    return exchange;
}

void SharedRequests::forget(const BoardSlots &slots) {
    std::erase_if(under_way_, [&](const auto &entry) {
        const ExchangePtr exchange = entry.second.lock();
        return exchange == nullptr || slots[static_cast<std::size_t>(exchange->slot)];
    });
}

ExchangePtr AnswerMemory::find(const BoardBytes &request) const {
    const auto found = exchanges_.find(request);
    return found == exchanges_.end() ? nullptr : found->second;
}

void AnswerMemory::add(const BoardBytes &request, ExchangePtr exchange) {
    pending_.push_back(exchange);
    exchanges_[request] = std::move(exchange);
}

bool AnswerMemory::complete() {
    while (!pending_.empty() && pending_.back()->finished) {
        pending_.pop_back();
    }
    return pending_.empty();
}

void AnswerMemory::forget(const BoardSlots &slots) {
    const auto is_of_slots = [&](const Exchange &exchange) {
        return slots[static_cast<std::size_t>(exchange.slot)];
    };
    std::erase_if(exchanges_, [&](const auto &entry) { return is_of_slots(*entry.second); });
    std::erase_if(pending_, [&](const ExchangePtr &exchange) { return is_of_slots(*exchange); });
}

Pass::Pass(SharedRequests &requests, AnswerMemory &memory, const Barred &barred, bool last)
    : requests_(requests), memory_(memory), barred_(barred), last_(last), last_answer_at_(monotonic_time()) {
    current_pass = this;
}

Pass::~Pass() {
    current_pass = nullptr;
    if (distrusts_) {
        distrust_stamps(distrust_from_, monotonic_time());
    }
}

Pass *Pass::current() {
    return current_pass;
}

// From here on the module stamps sections that it could not fill; some it stamps before it asks. Sections
// that failed before are read again, too: what the module logs of them would be lost with the pass.
int Pass::omit() {
    ++omissions_;
    if (!std::exchange(distrusts_, true)) {
        distrust_from_ = last_answer_at_;
    }
    return ipc_result::not_yet;
}

void Pass::pause() {
    ++omissions_;
    requests_.client().wake();
}

bool Pass::meet_bar() {
    met_bar_ = true;
    (void)omit();
    return false;
}

bool Pass::may_touch(int slot) {
    const bool barred = slot >= 0 && slot < IpcClient::slots && barred_.slots[static_cast<std::size_t>(slot)];
    return barred ? meet_bar() : true;
}

bool Pass::may_enumerate(const void *table, int slot) {
    return barred_.table == table ? meet_bar() : may_touch(slot);
}

int Pass::request(std::span<const std::uint8_t> bytes, std::uint8_t **answer, int timeout_ms) {
    const auto slot = static_cast<int>(load_integer(bytes.data(), board_header::slot));
    if (!may_touch(slot)) {
        return ipc_result::not_yet;
    }
    const BoardBytes request(bytes.begin(), bytes.end());
    ExchangePtr exchange = memory_.find(request);
    if (exchange == nullptr) {
        exchange = requests_.start(request, timeout_ms);
        memory_.add(request, exchange);
    }
    IpcClient &client = requests_.client();
    if (!exchange->finished && left_ > Clock::duration::zero() && client.answers_at_once(slot)) {
        const auto begin = Clock::now();
        client.wait(*exchange, begin + left_);
        left_ -= Clock::now() - begin;
    }
    if (!exchange->finished) {
        return last_ ? ipc_result::timed_out : omit();
    }
    const int result = take_answer(*exchange, answer);
    const auto failed = [answer] {
        return load_integer(*answer, board_header::status) != board_status::success;
    };
    met_failure_ = met_failure_ || result < 0 || failed();
    if (!met_failure_) {
        last_answer_at_ = monotonic_time();
    }
    return result;
}

std::uint64_t failed_requests() {
    return failures;
}

void note_failed_request() {
    ++failures;
}

}  // namespace tarn::host
