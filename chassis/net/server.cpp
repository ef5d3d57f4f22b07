#include "chassis/net/server.h"

#include <charconv>
#include <stdexcept>

namespace tarn::chassis {

// One connection: frames in, answers out, one at a time and in order.
class Session : public std::enable_shared_from_this<Session> {
  public:
    Session(Socket socket, Chassis &chassis)
        : socket_(std::move(socket)), timer_(socket_.get_executor()), chassis_(chassis) {}

    void read_frame() {
        frame_.resize(board_header::size);
        asio::async_read(socket_, asio::buffer(frame_),
                         [self = shared_from_this()](const asio::error_code &error, std::size_t) {
                             if (!error) {
                                 self->read_payload();
                             }
                         });
    }

    // The slot that the connection belongs to; -1 before its link frame.
    [[nodiscard]] int slot() const { return slot_; }

    void close() {
        asio::error_code ignored;
        timer_.cancel();
        socket_.close(ignored);
    }

  private:
    void read_payload() {
        const auto length = static_cast<std::size_t>(load_integer(frame_.data(), board_header::length));
        if (length < board_header::size || length > max_message_size) {
            chassis_.log().line("connection closed: frame of " + std::to_string(length) + " bytes");
            close();
            return;
        }
        frame_.resize(length);
        asio::async_read(socket_,
                         asio::buffer(frame_.data() + board_header::size, length - board_header::size),
                         [self = shared_from_this()](const asio::error_code &error, std::size_t) {
                             if (!error) {
                                 self->take_frame();
                             }
                         });
    }

    void take_frame() {
        if (slot_ < 0 && !link()) {
            return;
        }
        Reply reply = chassis_.request(slot_, frame_);
        if (reply.outcome == Outcome::dropped) {
            close();
            return;
        }
        if (reply.outcome == Outcome::silent) {
            read_frame();
            return;
        }
        answer_ = std::move(reply.bytes);
        if (reply.delay_ms == 0) {
            write_answer(false);
            return;
        }
        timer_.expires_after(std::chrono::milliseconds(reply.delay_ms));
        timer_.async_wait([self = shared_from_this()](const asio::error_code &error) {
            if (!error) {
                self->write_answer(false);
            }
        });
    }

    // Whether the connection's first frame is a link frame to a slot that is up. Refused otherwise.
    bool link() {
        const std::uint8_t *header = frame_.data();
        const int slot = static_cast<int>(load_integer(header, board_header::slot));
        std::uint8_t status = board_status::success;
        if (load_integer(header, board_header::command) != command::link ||
            load_integer(header, board_header::kind) != 1 || frame_.size() != board_header::size) {
            status = board_status::malformed;
            chassis_.log().line("connection refused: its first frame is no link frame");
        } else if (!chassis_.is_up(slot)) {
            status = board_status::wrong_slot;
            chassis_.log().line("slot " + std::to_string(slot) + ": link refused, no card");
        } else {
            slot_ = slot;
            return true;
        }
        answer_ = answer_header(frame_, status);
        write_answer(true);
        return false;
    }

    void write_answer(bool then_close) {
        asio::async_write(
            socket_, asio::buffer(answer_),
            [self = shared_from_this(), then_close](const asio::error_code &error, std::size_t) {
                if (then_close) {
                    self->close();
                } else if (!error) {
                    self->read_frame();
                }
            });
    }

    Socket socket_;
    asio::steady_timer timer_;
    Chassis &chassis_;
    int slot_ = -1;
    Bytes frame_;
    Bytes answer_;
};

void Server::accepted(Socket socket) {
    std::erase_if(sessions_, [](const std::weak_ptr<Session> &session) { return session.expired(); });
    const auto session = std::make_shared<Session>(std::move(socket), chassis_);
    sessions_.push_back(session);
    session->read_frame();
}

void Server::listen_unix(const std::string &path) {
    unix_listener_.emplace(context_, path, chassis_.log(),
                           [this](Socket socket) { accepted(std::move(socket)); });
}

std::uint16_t Server::listen_tcp(const std::string &host_and_port) {
    const std::size_t colon = host_and_port.rfind(':');
    std::uint16_t port = 0;
    const char *end = host_and_port.data() + host_and_port.size();
    if (colon == std::string::npos) {
        throw std::runtime_error(host_and_port + ": expected HOST:PORT");
    }
    const auto [stop, problem] = std::from_chars(host_and_port.data() + colon + 1, end, port);
    if (problem != std::errc() || stop != end) {
        throw std::runtime_error(host_and_port + ": no valid port");
    }
    std::string host = host_and_port.substr(0, colon);
    if (host == "localhost") {
        host = "127.0.0.1";
    }
    if (host.size() > 1 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    asio::error_code error;
    const asio::ip::address address = asio::ip::make_address(host, error);
    if (error || !address.is_loopback()) {
        throw std::runtime_error(host_and_port + ": not a loopback address");
    }
    tcp_listener_.emplace(context_, asio::ip::tcp::endpoint(address, port), chassis_.log(),
                          [this](Socket socket) { accepted(std::move(socket)); });
    return tcp_listener_->endpoint().port();
}

void Server::close_slot(int slot) {
    for (const std::weak_ptr<Session> &weak : sessions_) {
        if (const auto session = weak.lock(); session && session->slot() == slot) {
            session->close();
        }
    }
}

}  // namespace tarn::chassis
