// The file that a listening Unix socket leaves in the file system.
#ifndef TARN_CHASSIS_NET_SOCKET_FILE_H
#define TARN_CHASSIS_NET_SOCKET_FILE_H

#include <string>

namespace tarn::chassis {

// Makes way for a socket to listen on at `path`: a socket file that nobody listens on any more is removed.
// Throws std::runtime_error when somebody does listen, when the path is something other than a socket, or is
// too long.
void make_way(const std::string &path);

// Removes the file at the end of its life.
class SocketFile {
  public:
    explicit SocketFile(std::string path) : path_(std::move(path)) {}
    SocketFile(const SocketFile &) = delete;
    SocketFile &operator=(const SocketFile &) = delete;
    ~SocketFile();

  private:
    std::string path_;
};

}  // namespace tarn::chassis

#endif
