#include "host/board/board_connection.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "host/board/ipc_result.h"
#include "wire/protocol.h"

namespace tarn::host {
namespace {

bool would_block() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

std::vector<std::uint8_t> link_frame(int slot) {
    std::vector<std::uint8_t> frame(board_header::size);
    store_integer(frame.data(), board_header::command, command::link);
    store_integer(frame.data(), board_header::kind, 1);
    store_integer(frame.data(), board_header::slot, slot);
    store_integer(frame.data(), board_header::length, board_header::size);
    return frame;
}

}  // namespace

BoardConnection::BoardConnection(const ChassisAddress &address, int slot, Deadline deadline)
    : slot_(slot), deadline_(deadline), out_(link_frame(slot)), in_(board_header::size) {
    const int family = address.socket_address.ss_family;
    descriptor_ = socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor_ < 0) {
        return;
    }
    if (family != AF_UNIX) {
        const int on = 1;
        (void)setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    if (connect(descriptor_, reinterpret_cast<const sockaddr *>(&address.socket_address), address.length) ==
        0) {
        return;
    }
    // A Unix socket whose backlog is full answers EAGAIN and cannot be waited for.
    connecting_ = errno == EINPROGRESS;
    if (!connecting_) {
        close();
    }
}

void BoardConnection::close() {
    if (descriptor_ >= 0) {
        (void)::close(descriptor_);
        descriptor_ = -1;
    }
}

ExchangePtr BoardConnection::release() {
    return std::exchange(exchange_, nullptr);
}

ExchangePtr BoardConnection::give_up(Deadline until) {
    phase_ = Phase::late;
    deadline_ = until;
    return release();
}

bool BoardConnection::is_usable() const {
    std::uint8_t byte = 0;
    return recv(descriptor_, &byte, sizeof byte, MSG_PEEK) < 0 && would_block();
}

void BoardConnection::send(ExchangePtr exchange) {
    exchange_ = std::move(exchange);
    phase_ = Phase::busy;
    out_ = exchange_->request;
    sent_ = 0;
    (void)write_out();  // a failure is found again when the socket is served
}

BoardConnection::Event BoardConnection::fail(int result) {
    failure_ = result;
    return Event::failed;
}

bool BoardConnection::finish_connecting() {
    int error = 0;
    socklen_t size = sizeof error;
    if (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
        return false;
    }
    connecting_ = false;
    return true;
}

// False when the connection is lost.
bool BoardConnection::write_out() {
    while (sent_ < out_.size()) {
        const ssize_t sent = ::send(descriptor_, out_.data() + sent_, out_.size() - sent_, MSG_NOSIGNAL);
        if (sent < 0) {
            return would_block();
        }
        sent_ += static_cast<std::size_t>(sent);
    }
    return true;
}

BoardConnection::Event BoardConnection::serve() {
    if (connecting_) {
        sockaddr_storage peer{};
        socklen_t size = sizeof peer;
        if (!finish_connecting()) {
            return fail(ipc_result::no_connection);
        }
        if (getpeername(descriptor_, reinterpret_cast<sockaddr *>(&peer), &size) != 0) {
            connecting_ = true;
            return Event::none;
        }
    }
    if (!write_out()) {
        return fail(ipc_result::connection_lost);
    }
    return read_in();
}

BoardConnection::Event BoardConnection::read_in() {
    for (;;) {
        const ssize_t got = recv(descriptor_, in_.data() + received_, in_.size() - received_, 0);
        if (got < 0 && would_block()) {
            return Event::none;
        }
        if (got <= 0) {
            return fail(ipc_result::connection_lost);
        }
        if (phase_ == Phase::idle) {
            return fail(ipc_result::protocol_error);  // nobody asked for this
        }
        received_ += static_cast<std::size_t>(got);
        if (received_ < in_.size()) {
            continue;
        }
        if (received_ == board_header::size) {
            const auto length = static_cast<std::size_t>(load_integer(in_.data(), board_header::length));
            if (!is_answer()) {
                return fail(ipc_result::protocol_error);
            }
            in_.resize(length);
        }
        if (received_ == in_.size()) {
            return take_frame();
        }
    }
}

// Whether the header that came is one of an answer to what was sent.
bool BoardConnection::is_answer() const {
    const std::uint8_t *sent = out_.data();
    const std::uint8_t *came = in_.data();
    const auto length = static_cast<std::size_t>(load_integer(came, board_header::length));
    return load_integer(came, board_header::command) == load_integer(sent, board_header::command) &&
           load_integer(came, board_header::slot) == load_integer(sent, board_header::slot) &&
           length >= board_header::size &&
           length <= (phase_ == Phase::opening ? board_header::size : max_message_size);
}

BoardConnection::Event BoardConnection::take_frame() {
    std::vector<std::uint8_t> frame(board_header::size);
    frame.swap(in_);
    received_ = 0;
    if (phase_ == Phase::busy) {
        exchange_->answer = std::move(frame);
        phase_ = Phase::idle;
        return Event::answered;
    }
    if (phase_ == Phase::late) {
        return Event::answered_late;
    }
    if (load_integer(frame.data(), board_header::status) != board_status::success) {
        return Event::no_card;
    }
    phase_ = Phase::idle;
    return Event::opened;
}

}  // namespace tarn::host
