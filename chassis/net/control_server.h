// The control socket: one JSON object a line in, one JSON object a line out.
#ifndef TARN_CHASSIS_NET_CONTROL_SERVER_H
#define TARN_CHASSIS_NET_CONTROL_SERVER_H

#include "chassis/control/control.h"
#include "chassis/net/listener.h"

namespace tarn::chassis {

class ControlServer {
  public:
    static constexpr std::size_t max_line = std::size_t{1024} * 1024;

    // `stop` is called once the answer to a shutdown is out. Throws std::runtime_error when it can't listen.
    // Only the user who runs the chassis may connect.
    ControlServer(asio::io_context &context, Chassis &chassis, const std::string &path,
                  std::function<void()> stop);

  private:
    Control control_;
    std::function<void()> stop_;
    std::optional<FileListener> listener_;
};

}  // namespace tarn::chassis

#endif
