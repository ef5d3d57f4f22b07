#include "chassis/net/control_server.h"

#include <sys/stat.h>

namespace tarn::chassis {
namespace {

class ControlSession : public std::enable_shared_from_this<ControlSession> {
  public:
    ControlSession(Socket socket, Control &control, const std::function<void()> &stop)
        : socket_(std::move(socket)), input_(ControlServer::max_line), control_(control), stop_(stop) {}

    void read_line() {
        asio::async_read_until(
            socket_, input_, '\n',
            [self = shared_from_this()](const asio::error_code &error, std::size_t length) {
                self->take_line(error, length);
            });
    }

  private:
    void take_line(const asio::error_code &error, std::size_t length) {
        if (error == asio::error::not_found) {
            write(error_line("the line is too long"), true);
            return;
        }
        if (error) {
            return;
        }
        std::string line(asio::buffers_begin(input_.data()),
                         asio::buffers_begin(input_.data()) + static_cast<std::ptrdiff_t>(length));
        input_.consume(length);
        write(control_.answer(line), false);
    }

    void write(std::string line, bool then_close) {
        output_ = std::move(line);
        asio::async_write(
            socket_, asio::buffer(output_),
            [self = shared_from_this(), then_close](const asio::error_code &error, std::size_t) {
                if (self->control_.shutdown_requested()) {
                    self->stop_();
                } else if (!error && then_close) {
                    self->discard_rest();
                } else if (!error) {
                    self->read_line();
                }
            });
    }

    // The client may still be writing: closing now would break its connection before it reads the answer.
    void discard_rest() {
        asio::error_code ignored;
        socket_.shutdown(Socket::shutdown_send, ignored);
        input_.consume(input_.size());
        socket_.async_read_some(input_.prepare(discarded_at_once),
                                [self = shared_from_this()](const asio::error_code &error, std::size_t) {
                                    if (!error) {
                                        self->discard_rest();
                                    }
                                });
    }

    static constexpr std::size_t discarded_at_once = 4096;

    Socket socket_;
    asio::streambuf input_;
    std::string output_;
    Control &control_;
    const std::function<void()> &stop_;
};

// New files are for their owner alone for as long as it lives.
class PrivateFiles {
  public:
    PrivateFiles() : previous_(umask(S_IRWXG | S_IRWXO | S_IXUSR)) {}
    PrivateFiles(const PrivateFiles &) = delete;
    PrivateFiles &operator=(const PrivateFiles &) = delete;
    ~PrivateFiles() { umask(previous_); }

  private:
    mode_t previous_;
};

}  // namespace

ControlServer::ControlServer(asio::io_context &context, Chassis &chassis, const std::string &path,
                             std::function<void()> stop)
    : control_(chassis), stop_(std::move(stop)) {
    const PrivateFiles only_ours;
    listener_.emplace(context, path, chassis.log(), [this](Socket socket) {
        std::make_shared<ControlSession>(std::move(socket), control_, stop_)->read_line();
    });
}

}  // namespace tarn::chassis
