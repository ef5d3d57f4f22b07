// Where the chassis listens.
#ifndef TARN_HOST_BOARD_CHASSIS_ADDRESS_H
#define TARN_HOST_BOARD_CHASSIS_ADDRESS_H

#include <sys/socket.h>

#include <optional>
#include <string_view>

namespace tarn::host {

struct ChassisAddress {
    sockaddr_storage socket_address{};
    socklen_t length = 0;
};

// Parses "unix:PATH", a path with a slash in it, "tcp:HOST:PORT" or "HOST:PORT" (HOST numeric, an IPv6 one
// in brackets). Nothing for any other text.
std::optional<ChassisAddress> parse_chassis_address(std::string_view text);

}  // namespace tarn::host

#endif
