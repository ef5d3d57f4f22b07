// A stream socket whose every operation ends at a deadline.
#ifndef TARN_HOST_BOARD_DEADLINE_SOCKET_H
#define TARN_HOST_BOARD_DEADLINE_SOCKET_H

#include <chrono>
#include <cstdint>
#include <span>

#include "host/board/chassis_address.h"

namespace tarn::host {

using Deadline = std::chrono::steady_clock::time_point;

enum class SocketResult { done, timed_out, lost };

class DeadlineSocket {
  public:
    DeadlineSocket() = default;
    ~DeadlineSocket() { close(); }
    DeadlineSocket(const DeadlineSocket &) = delete;
    DeadlineSocket &operator=(const DeadlineSocket &) = delete;

    [[nodiscard]] bool is_open() const { return descriptor_ >= 0; }
    void close();
    // `lost`: nobody listens there.
    SocketResult connect(const ChassisAddress &address, Deadline deadline);
    // All of the bytes, or a failure.
    SocketResult write(std::span<const std::uint8_t> bytes, Deadline deadline);
    SocketResult read(std::span<std::uint8_t> bytes, Deadline deadline);
    // Whether the peer ended the connection, or sent something that nobody asked for.
    [[nodiscard]] bool has_unexpected_input() const;

  private:
    SocketResult wait(short events, Deadline deadline) const;

    int descriptor_ = -1;
};

}  // namespace tarn::host

#endif
