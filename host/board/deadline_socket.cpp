#include "host/board/deadline_socket.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace tarn::host {
namespace {

int milliseconds_until(Deadline deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000));
}

bool would_block() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

}  // namespace

void DeadlineSocket::close() {
    if (descriptor_ >= 0) {
        (void)::close(descriptor_);
        descriptor_ = -1;
    }
}

SocketResult DeadlineSocket::wait(short events, Deadline deadline) const {
    for (;;) {
        const int timeout = milliseconds_until(deadline);
        pollfd watched{descriptor_, events, 0};
        const int ready = poll(&watched, 1, timeout);
        if (ready > 0) {
            return SocketResult::done;
        }
        if (ready < 0 && errno != EINTR) {
            return SocketResult::lost;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            return SocketResult::timed_out;
        }
    }
}

SocketResult DeadlineSocket::connect(const ChassisAddress &address, Deadline deadline) {
    close();
    descriptor_ = socket(address.socket_address.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor_ < 0) {
        return SocketResult::lost;
    }
    SocketResult result = SocketResult::done;
    if (::connect(descriptor_, reinterpret_cast<const sockaddr *>(&address.socket_address), address.length) !=
        0) {
        // A Unix socket whose backlog is full answers EAGAIN and cannot be waited for.
        result = errno == EINPROGRESS ? wait(POLLOUT, deadline) : SocketResult::lost;
        int error = 0;
        socklen_t size = sizeof error;
        if (result == SocketResult::done &&
            (getsockopt(descriptor_, SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0)) {
            result = SocketResult::lost;
        }
    }
    if (result != SocketResult::done) {
        close();
        return result;
    }
    if (address.socket_address.ss_family != AF_UNIX) {
        const int on = 1;
        (void)setsockopt(descriptor_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    return SocketResult::done;
}

SocketResult DeadlineSocket::write(std::span<const std::uint8_t> bytes, Deadline deadline) {
    while (!bytes.empty()) {
        const ssize_t sent = send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(sent));
        } else if (would_block()) {
            const SocketResult result = wait(POLLOUT, deadline);
            if (result != SocketResult::done) {
                return result;
            }
        } else if (errno != EINTR) {
            return SocketResult::lost;
        }
    }
    return SocketResult::done;
}

SocketResult DeadlineSocket::read(std::span<std::uint8_t> bytes, Deadline deadline) {
    while (!bytes.empty()) {
        // A peer that sends a byte now and then must not stretch the deadline.
        const SocketResult result = wait(POLLIN, deadline);
        if (result != SocketResult::done) {
            return result;
        }
        const ssize_t received = recv(descriptor_, bytes.data(), bytes.size(), 0);
        if (received > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(received));
        } else if (received == 0 || (!would_block() && errno != EINTR)) {
            return SocketResult::lost;
        }
        if (!bytes.empty() && std::chrono::steady_clock::now() >= deadline) {
            return SocketResult::timed_out;
        }
    }
    return SocketResult::done;
}

bool DeadlineSocket::has_unexpected_input() const {
    pollfd watched{descriptor_, POLLIN, 0};
    return poll(&watched, 1, 0) != 0;
}

}  // namespace tarn::host
