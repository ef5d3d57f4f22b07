#include "host/control/control_socket.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/library/fd_event_manager.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

constexpr int waiting_connections = 8;

int local_socket() {
    return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

const sockaddr *as_sockaddr(const sockaddr_un &address) {
    return static_cast<const sockaddr *>(static_cast<const void *>(&address));
}

// Removes a socket file that nobody listens on any more; 0, or the reason why the path is not free.
int make_way(const sockaddr_un &address) {
    struct stat status {};
    if (lstat(address.sun_path, &status) != 0) {
        return errno == ENOENT ? 0 : errno;
    }
    if (!S_ISSOCK(status.st_mode)) {
        return EEXIST;
    }
    const int probe = local_socket();
    const bool refused = connect(probe, as_sockaddr(address), sizeof address) != 0 && errno == ECONNREFUSED;
    (void)close(probe);
    if (!refused) {
        return EADDRINUSE;
    }
    return unlink(address.sun_path) == 0 ? 0 : errno;
}

// Listens at the address with a file that its owner alone may open; 0 or an errno.
int listen_privately(int listener, const sockaddr_un &address) {
    const mode_t previous = umask(S_IRWXG | S_IRWXO | S_IXUSR);
    const int bound = bind(listener, as_sockaddr(address), sizeof address) == 0 ? 0 : errno;
    umask(previous);
    if (bound != 0) {
        return bound;
    }
    return listen(listener, waiting_connections) == 0 ? 0 : errno;
}

// False when the other end does not take all of it at once.
bool send_all(int connection, const std::string &line) {
    return send(connection, line.data(), line.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(line.size());
}

}  // namespace

std::unique_ptr<ControlSocket> ControlSocket::open(
    const std::string &path, std::function<std::string(const std::string &)> answer, std::string &error,
    std::function<void(const std::string &, std::function<void()>)> run) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        error = path + ": too long for a socket";
        return nullptr;
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    const int listener = local_socket();
    int reason = listener < 0 ? errno : make_way(address);
    if (reason == 0) {
        reason = listen_privately(listener, address);
    }
    if (reason != 0) {
        error = path + ": " + std::strerror(reason);
        (void)close(listener);
        return nullptr;
    }
    std::unique_ptr<ControlSocket> control(new ControlSocket(listener, path, std::move(answer)));
    control->run_ = std::move(run);
    return control;
}

ControlSocket::ControlSocket(int listener, std::string path,
                             std::function<std::string(const std::string &)> answer)
    : listener_(listener), path_(std::move(path)), answer_(std::move(answer)) {
    (void)register_readfd(listener_, accept_ready, this);
}

ControlSocket::~ControlSocket() {
    while (!pending_.empty()) {
        close_connection(pending_.begin()->first);
    }
    (void)unregister_readfd(listener_);
    (void)close(listener_);
    (void)unlink(path_.c_str());
}

void ControlSocket::accept_ready(int listener, void *socket) {
    auto *control = static_cast<ControlSocket *>(socket);
    const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection < 0) {
        return;
    }
    if (control->pending_.size() >= most_connections ||
        register_readfd(connection, read_ready, control) != FD_REGISTERED_OK) {
        log_add(log_level::warning, "control: too many connections\n");
        (void)close(connection);
        return;
    }
    control->pending_[connection];
}

void ControlSocket::read_ready(int connection, void *socket) {
    static_cast<ControlSocket *>(socket)->take(connection);
}

void ControlSocket::take(int connection) {
    std::string &pending = pending_[connection];
    std::array<char, 4096> buffer{};
    const ssize_t count = recv(connection, buffer.data(), buffer.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (count <= 0) {
        close_connection(connection);
        return;
    }
    if (refused_.contains(connection)) {
        return;
    }
    pending.append(buffer.data(), static_cast<std::size_t>(count));
    // The next lines are read when these are answered.
    (void)unregister_readfd(connection);
    if (take_over && pending.find('\n') == pending.size() - 1 && take_over(pending, connection)) {
        pending_.erase(connection);
        return;
    }
    run_(pending, [this, connection] { answer(connection); });
}

void ControlSocket::answer(int connection) {
    if (!answer_lines(connection, pending_[connection]) ||
        register_readfd(connection, read_ready, this) != FD_REGISTERED_OK) {
        close_connection(connection);
    }
}

// Answers every whole line; false when the connection is to be closed.
bool ControlSocket::answer_lines(int connection, std::string &pending) {
    for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
        const std::string line = pending.substr(0, end);
        pending.erase(0, end + 1);
        if (!send_all(connection, answer_(line))) {
            return false;
        }
    }
    if (pending.size() > longest_line) {
        log_add(log_level::warning, "control: a line is too long\n");
        // The client may still be writing: closing now would break its connection before it reads this.
        refused_.insert(connection);
        pending.clear();
        return send_all(connection, "{\"error\":\"the line is too long\"}\n") &&
               shutdown(connection, SHUT_WR) == 0;
    }
    return true;
}

void ControlSocket::close_connection(int connection) {
    (void)unregister_readfd(connection);
    (void)close(connection);
    pending_.erase(connection);
    refused_.erase(connection);
}

}  // namespace tarn::host
