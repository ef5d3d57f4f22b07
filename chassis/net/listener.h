// Accepts connections on one socket.
#ifndef TARN_CHASSIS_NET_LISTENER_H
#define TARN_CHASSIS_NET_LISTENER_H

#include <asio.hpp>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "chassis/net/socket_file.h"
#include "chassis/requests/log.h"

namespace tarn::chassis {

using Socket = asio::generic::stream_protocol::socket;

template <class Protocol>
class Listener {
  public:
    // Throws std::system_error when it can't listen.
    Listener(asio::io_context &context, const typename Protocol::endpoint &endpoint, Log &log,
             std::function<void(Socket)> accepted)
        : acceptor_(context, endpoint), pause_(context), log_(log), accepted_(std::move(accepted)) {
        accept();
    }

    typename Protocol::endpoint endpoint() const { return acceptor_.local_endpoint(); }

  private:
    void accept() {
        acceptor_.async_accept([this](const asio::error_code &error, typename Protocol::socket socket) {
            if (error == asio::error::operation_aborted) {
                return;
            }
            if (error) {
                // For example no descriptors left: tried again once some may be free.
                log_.line("accept: " + error.message());
                pause_.expires_after(std::chrono::milliseconds(200));
                pause_.async_wait([this](const asio::error_code &stopped) {
                    if (!stopped) {
                        accept();
                    }
                });
                return;
            }
            accepted_(Socket(std::move(socket)));
            accept();
        });
    }

    typename Protocol::acceptor acceptor_;
    asio::steady_timer pause_;
    Log &log_;
    std::function<void(Socket)> accepted_;
};

// The same on a Unix socket, whose file goes with it.
class FileListener {
  public:
    // Throws std::runtime_error when it can't listen.
    FileListener(asio::io_context &context, const std::string &path, Log &log,
                 std::function<void(Socket)> accepted);

  private:
    std::optional<SocketFile> file_;
    std::optional<Listener<asio::local::stream_protocol>> listener_;
};

}  // namespace tarn::chassis

#endif
