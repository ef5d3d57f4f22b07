#include "chassis/net/socket_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <asio.hpp>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace tarn::chassis {

void make_way(const std::string &path) {
    using Local = asio::local::stream_protocol;
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) {
        return;
    }
    if (!S_ISSOCK(status.st_mode)) {
        throw std::runtime_error(path + ": exists and is not a socket");
    }
    asio::io_context context;
    Local::socket probe(context);
    asio::error_code error;
    probe.connect(Local::endpoint(path), error);
    if (!error) {
        throw std::runtime_error(path + ": another process listens there");
    }
    if (error != asio::error::connection_refused) {
        throw std::runtime_error(path + ": " + error.message());
    }
    if (unlink(path.c_str()) != 0) {
        throw std::runtime_error(path + ": " + std::strerror(errno));
    }
}

SocketFile::~SocketFile() {
    unlink(path_.c_str());
}

}  // namespace tarn::chassis
