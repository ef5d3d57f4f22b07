#include "ctl/client.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace tarn::ctl {
namespace {

constexpr std::size_t longest_answer = std::size_t{16} * 1024 * 1024;

class Connection {
  public:
    explicit Connection(const std::string &path) : path_(path), socket_(socket(AF_UNIX, SOCK_STREAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (path.size() >= sizeof address.sun_path) {
            throw std::runtime_error(path + ": too long for a socket");
        }
        std::memcpy(address.sun_path, path.data(), path.size());
        const auto *general = static_cast<const sockaddr *>(static_cast<const void *>(&address));
        if (connect(socket_, general, sizeof address) != 0) {
            fail();
        }
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;
    ~Connection() { (void)close(socket_); }

    void write(std::string_view text) const {
        while (!text.empty()) {
            const ssize_t count = send(socket_, text.data(), text.size(), MSG_NOSIGNAL);
            if (count < 0) {
                fail();
            }
            text.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    [[nodiscard]] std::string read_line() const {
        std::string line;
        std::array<char, 65536> buffer{};
        while (line.empty() || line.back() != '\n') {
            const ssize_t count = recv(socket_, buffer.data(), buffer.size(), 0);
            if (count < 0) {
                fail();
            }
            if (count == 0 || line.size() > longest_answer) {
                throw std::runtime_error(path_ + ": no answer");
            }
            line.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return line;
    }

    // What has come; empty at the end.
    [[nodiscard]] std::string read_some() const {
        std::array<char, 65536> buffer{};
        const ssize_t count = recv(socket_, buffer.data(), buffer.size(), 0);
        if (count < 0) {
            fail();
        }
        return {buffer.data(), static_cast<std::size_t>(count)};
    }

  private:
    [[noreturn]] void fail() const { throw std::runtime_error(path_ + ": " + std::strerror(errno)); }

    const std::string &path_;
    int socket_;
};

}  // namespace

Json ask(const std::string &socket_path, const Json &request) {
    const Connection connection(socket_path);
    connection.write(request.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
    Json answer = Json::parse(connection.read_line(), nullptr, false);
    if (!answer.is_object()) {
        throw std::runtime_error(socket_path + ": the answer is not JSON");
    }
    return answer;
}

void follow(const std::string &socket_path, const Json &request,
            const std::function<bool(const Json &line)> &take) {
    const Connection connection(socket_path);
    connection.write(request.dump() + '\n');
    std::string pending;
    for (std::string part = connection.read_some(); !part.empty(); part = connection.read_some()) {
        pending += part;
        for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
            const Json line = Json::parse(pending.substr(0, end), nullptr, false);
            pending.erase(0, end + 1);
            if (!line.is_object()) {
                throw std::runtime_error(socket_path + ": the answer is not JSON");
            }
            if (!take(line)) {
                return;
            }
        }
    }
}

}  // namespace tarn::ctl
