#include "host/board/chassis_address.h"

#include <netdb.h>
#include <sys/un.h>

#include <cstring>
#include <string>

namespace tarn::host {
namespace {

std::optional<ChassisAddress> unix_address(std::string_view path) {
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        return std::nullopt;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    ChassisAddress result;
    std::memcpy(&result.socket_address, &address, sizeof address);
    result.length = sizeof address;
    return result;
}

std::optional<ChassisAddress> tcp_address(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    std::string host(text.substr(0, colon));
    const std::string port(text.substr(colon + 1));
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
    addrinfo *found = nullptr;
    if (host.empty() || port.empty() || getaddrinfo(host.c_str(), port.c_str(), &hints, &found) != 0) {
        return std::nullopt;
    }
    ChassisAddress result;
    std::memcpy(&result.socket_address, found->ai_addr, found->ai_addrlen);
    result.length = found->ai_addrlen;
    freeaddrinfo(found);
    return result;
}

}  // namespace

std::optional<ChassisAddress> parse_chassis_address(std::string_view text) {
    constexpr std::string_view unix_prefix = "unix:";
    constexpr std::string_view tcp_prefix = "tcp:";
    if (text.starts_with(unix_prefix)) {
        return unix_address(text.substr(unix_prefix.size()));
    }
    if (text.starts_with(tcp_prefix)) {
        return tcp_address(text.substr(tcp_prefix.size()));
    }
    return text.find('/') != std::string_view::npos ? unix_address(text) : tcp_address(text);
}

}  // namespace tarn::host
