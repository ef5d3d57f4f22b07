// The board side: connections of the agent, one a slot.
#ifndef TARN_CHASSIS_NET_SERVER_H
#define TARN_CHASSIS_NET_SERVER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chassis/net/listener.h"
#include "chassis/requests/chassis.h"

namespace tarn::chassis {

class Session;

class Server {
  public:
    Server(asio::io_context &context, Chassis &chassis) : context_(context), chassis_(chassis) {}

    // Both throw std::runtime_error when they can't listen.
    void listen_unix(const std::string &path);
    // "HOST:PORT", a loopback address; port 0 takes any. Returns the port.
    std::uint16_t listen_tcp(const std::string &host_and_port);

    // Closes every connection of the slot.
    void close_slot(int slot);

  private:
    void accepted(Socket socket);

    asio::io_context &context_;
    Chassis &chassis_;
    std::optional<FileListener> unix_listener_;
    std::optional<Listener<asio::ip::tcp>> tcp_listener_;
    std::vector<std::weak_ptr<Session>> sessions_;
};

}  // namespace tarn::chassis

#endif
