#include "host/board/ipc_client.h"

#include <algorithm>
#include <cstring>

#include "host/board/ipc_result.h"
#include "host/services/logger.h"

namespace tarn::host {
namespace {

constexpr int silent_requests_before_hold = 2;
constexpr int suspect_timeout_ms = 1000;
constexpr int doublings = 3;

// The size of an answer's block: at least what the largest answer of its command takes.
std::size_t block_size(std::uint16_t command, std::size_t length) {
    constexpr std::size_t configuration_image = 1'100'000;
    constexpr std::size_t other = std::size_t{70} * 1024;
    return std::max(length, command == command::get_all_config ? configuration_image : other);
}

Deadline deadline_in(int milliseconds) {
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(std::max(milliseconds, 0));
}

std::uint16_t command_of(const std::uint8_t *message) {
    return static_cast<std::uint16_t>(load_integer(message, board_header::command));
}

std::size_t length_of(const std::uint8_t *message) {
    return static_cast<std::size_t>(load_integer(message, board_header::length));
}

IpcClient *the_client = nullptr;

}  // namespace

int patience_ms(int silent_requests, int timeout_ms) {
    if (silent_requests == 0) {
        return timeout_ms;
    }
    return std::min(timeout_ms, suspect_timeout_ms << std::min(silent_requests - 1, doublings));
}

void set_ipc_client(IpcClient *client) {
    the_client = client;
}

bool IpcClient::on_hold(const Slot &slot) {
    return slot.silent_requests >= silent_requests_before_hold &&
           std::chrono::steady_clock::now() < slot.hold_until;
}

void IpcClient::count_silence(Slot &slot) const {
    ++slot.silent_requests;
    const int holds = std::clamp(slot.silent_requests - silent_requests_before_hold, 0, doublings);
    slot.hold_until = std::chrono::steady_clock::now() + hold_ * (1 << holds);
}

int IpcClient::fail(Slot &slot, SocketResult result) {
    slot.socket.close();
    return result == SocketResult::timed_out ? ipc_result::timed_out : ipc_result::connection_lost;
}

int IpcClient::connect(Slot &slot, int number, Deadline deadline) {
    slot.link = false;
    const SocketResult connected = slot.socket.connect(address_, deadline);
    if (connected != SocketResult::done) {
        return connected == SocketResult::timed_out ? ipc_result::timed_out : ipc_result::no_connection;
    }
    std::array<std::uint8_t, board_header::size> frame{};
    store_integer(frame.data(), board_header::command, command::link);
    store_integer(frame.data(), board_header::kind, 1);
    store_integer(frame.data(), board_header::slot, number);
    store_integer(frame.data(), board_header::length, board_header::size);
    SocketResult result = slot.socket.write(frame, deadline);
    if (result == SocketResult::done) {
        result = slot.socket.read(frame, deadline);
    }
    if (result != SocketResult::done) {
        return fail(slot, result);
    }
    if (command_of(frame.data()) != command::link ||
        load_integer(frame.data(), board_header::slot) != number ||
        length_of(frame.data()) != board_header::size) {
        slot.socket.close();
        return ipc_result::protocol_error;
    }
    if (load_integer(frame.data(), board_header::status) != board_status::success) {
        slot.socket.close();
        return ipc_result::no_card;
    }
    slot.link = true;
    return 0;
}

int IpcClient::exchange(Slot &slot, std::span<const std::uint8_t> request, std::uint8_t **answer,
                        Deadline deadline) {
    std::array<std::uint8_t, board_header::size> header{};
    SocketResult result = slot.socket.write(request, deadline);
    if (result == SocketResult::done) {
        result = slot.socket.read(header, deadline);
    }
    if (result != SocketResult::done) {
        return fail(slot, result);
    }
    const std::uint16_t command = command_of(header.data());
    const std::size_t length = length_of(header.data());
    if (command != command_of(request.data()) ||
        load_integer(header.data(), board_header::slot) != load_integer(request.data(), board_header::slot) ||
        length < board_header::size || length > max_message_size) {
        slot.socket.close();
        return ipc_result::protocol_error;
    }
    const std::size_t size = block_size(command, length);
    auto *block = static_cast<std::uint8_t *>(balloc(__FILE__, __LINE__, size));
    if (block == nullptr) {
        slot.socket.close();
        return ipc_result::no_memory;
    }
    std::copy(header.begin(), header.end(), block);
    result = slot.socket.read({block + header.size(), length - header.size()}, deadline);
    if (result != SocketResult::done) {
        bfree(__FILE__, __LINE__, block);
        return fail(slot, result);
    }
    std::memset(block + length, 0, size - length);
    *answer = block;
    return 0;
}

int IpcClient::send_request(const std::uint8_t *request, std::uint8_t **answer, int timeout_ms) {
    const auto number = static_cast<int>(load_integer(request, board_header::slot));
    const std::size_t length = length_of(request);
    if (number >= slots || length < board_header::size || length > max_message_size) {
        return ipc_result::bad_request;
    }
    Slot &slot = slots_[static_cast<std::size_t>(number)];
    const std::lock_guard lock(slot.mutex);
    if (on_hold(slot)) {
        return ipc_result::on_hold;
    }
    const Deadline deadline = deadline_in(patience_ms(slot.silent_requests, timeout_ms));
    if (slot.socket.is_open() && slot.socket.has_unexpected_input()) {
        slot.socket.close();
    }
    int result = slot.socket.is_open() ? 0 : connect(slot, number, deadline);
    if (result == 0) {
        result = exchange(slot, {request, length}, answer, deadline);
    }
    if (result == 0) {
        slot.silent_requests = 0;
    } else if (result == ipc_result::timed_out) {
        count_silence(slot);
    }
    return result;
}

bool IpcClient::link(int slot) {
    if (slot < 0 || slot >= slots) {
        return false;
    }
    Slot &state = slots_[static_cast<std::size_t>(slot)];
    const std::lock_guard lock(state.mutex);
    return state.link;
}

bool IpcClient::check_link(int slot, int timeout_ms) {
    Slot &state = slots_[static_cast<std::size_t>(slot)];
    const std::lock_guard lock(state.mutex);
    if (state.socket.is_open()) {
        if (!state.socket.has_unexpected_input()) {
            return state.link;
        }
        state.socket.close();
    }
    if (on_hold(state)) {
        return state.link;
    }
    const int result = connect(state, slot, deadline_in(timeout_ms));
    if (result == ipc_result::timed_out) {
        count_silence(state);
    }
    return result == 0;
}

}  // namespace tarn::host

int ipcSendRequest(void *request, void **answer, int timeout_ms) {
    using namespace tarn::host;
    if (the_client == nullptr) {
        return ipc_result::no_connection;
    }
    std::uint8_t *block = nullptr;
    const int result = the_client->send_request(static_cast<std::uint8_t *>(request), &block, timeout_ms);
    if (result >= 0) {
        *answer = block;
    }
    return result;
}

int check_slot_link(int slot) {
    using namespace tarn::host;
    return the_client != nullptr && the_client->link(slot) ? 1 : 0;
}
