// A chassis that does on each connection, in a thread, what a test's script says.
#ifndef TARN_TEST_BOARD_SERVER_H
#define TARN_TEST_BOARD_SERVER_H

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "host/board/chassis_address.h"
#include "wire/protocol.h"

namespace tarn::host::test {

using Bytes = std::vector<std::uint8_t>;

// A message whose header says `length` bytes in all: the header, then `fill` in every byte of the payload.
inline Bytes message(std::uint16_t command, int slot, std::size_t length, std::uint8_t status = 0,
                     std::uint8_t fill = 0) {
    Bytes bytes(std::max<std::size_t>(length, 32), fill);
    std::fill_n(bytes.begin(), 32, std::uint8_t{0});
    bytes[0] = static_cast<std::uint8_t>(command);
    bytes[1] = static_cast<std::uint8_t>(command >> 8);
    bytes[2] = 1;
    bytes[7] = static_cast<std::uint8_t>(slot);
    bytes[14] = status;
    for (int i = 0; i < 4; ++i) {
        bytes[20 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(length >> (8 * i));
    }
    return bytes;
}

class Connection {
  public:
    explicit Connection(int descriptor) : descriptor_(descriptor) {}
    ~Connection() { (void)close(descriptor_); }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // The next frame; empty when the agent closed the connection.
    Bytes receive() {
        Bytes frame(32);
        if (!read_all(frame.data(), 32)) {
            return {};
        }
        frame.resize(frame[20] + 256U * frame[21] + 65536U * frame[22]);
        return read_all(frame.data() + 32, frame.size() - 32) ? frame : Bytes{};
    }
    void send(const Bytes &bytes) { (void)::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL); }
    // Answers the link frame of a slot.
    void accept_link(std::uint8_t status = 0) {
        const Bytes frame = receive();
        if (!frame.empty()) {
            send(message(0, frame[7], 32, status));
        }
    }

  private:
    bool read_all(std::uint8_t *to, std::size_t size) {
        while (size > 0) {
            const ssize_t got = read(descriptor_, to, size);
            if (got <= 0) {
                return false;
            }
            to += got;
            size -= static_cast<std::size_t>(got);
        }
        return true;
    }
    int descriptor_;
};

class BoardServer {
  public:
    // Each connection has its script, in the order in which they come.
    explicit BoardServer(std::vector<std::function<void(Connection &)>> scripts) {
        std::string directory = (std::filesystem::temp_directory_path() / "tarn-test-XXXXXX").string();
        directory_ = mkdtemp(directory.data());
        const std::string path = directory_ + "/socket";
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size());
        listener_ = socket(AF_UNIX, SOCK_STREAM, 0);
        (void)bind(listener_, reinterpret_cast<const sockaddr *>(&address), sizeof address);
        (void)listen(listener_, 128);
        thread_ = std::thread([this, scripts = std::move(scripts)] {
            for (const auto &script : scripts) {
                const int descriptor = accept(listener_, nullptr, nullptr);
                if (descriptor < 0) {
                    return;
                }
                connections_.emplace_back([descriptor, script] {
                    Connection connection(descriptor);
                    script(connection);
                });
            }
        });
    }
    ~BoardServer() {
        (void)shutdown(listener_, SHUT_RDWR);
        thread_.join();
        for (std::thread &connection : connections_) {
            connection.join();
        }
        (void)close(listener_);
        std::filesystem::remove_all(directory_);
    }
    BoardServer(const BoardServer &) = delete;
    BoardServer &operator=(const BoardServer &) = delete;

    [[nodiscard]] ChassisAddress address() const { return *parse_chassis_address(directory_ + "/socket"); }

  private:
    std::string directory_;
    int listener_;
    std::vector<std::thread> connections_;  // the thread's, until it has ended
    std::thread thread_;
};

}  // namespace tarn::host::test

#endif
