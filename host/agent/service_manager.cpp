#include "host/agent/service_manager.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "tarn/module_api.h"

namespace tarn::host {
namespace {

std::string_view variable(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

void feed_watchdog(unsigned /*alarm*/, void * /*unused*/) {
    notify_service_manager("WATCHDOG=1");
}

}  // namespace

void notify_service_manager(std::string_view state) {
    const std::string_view path = variable("NOTIFY_SOCKET");
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof address.sun_path) {
        return;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.data(), path.size());
    if (path.front() == '@') {
        address.sun_path[0] = '\0';  // a name in the abstract namespace
    }
    const int connection = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (connection < 0) {
        return;
    }
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    (void)sendto(connection, state.data(), state.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                 reinterpret_cast<const sockaddr *>(&address), length);
    (void)close(connection);
}

void keep_watchdog_fed() {
    const std::string_view text = variable("WATCHDOG_USEC");
    unsigned long microseconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), microseconds);
    if (error != std::errc() || microseconds == 0) {
        return;
    }
    const auto period = static_cast<unsigned>(std::clamp(microseconds / 2'000'000, 1UL, 3600UL));
    (void)snmp_alarm_register(period, SA_REPEAT, feed_watchdog, nullptr);
}

}  // namespace tarn::host
