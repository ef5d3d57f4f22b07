#include "chassis/net/listener.h"

#include <stdexcept>

namespace tarn::chassis {

FileListener::FileListener(asio::io_context &context, const std::string &path, Log &log,
                           std::function<void(Socket)> accepted) {
    make_way(path);
    try {
        listener_.emplace(context, asio::local::stream_protocol::endpoint(path), log, std::move(accepted));
    } catch (const std::system_error &error) {
        throw std::runtime_error(path + ": " + error.code().message());
    }
    file_.emplace(path);
}

}  // namespace tarn::chassis
