// A Unix socket beside SNMP on which only the user that runs the agent may give commands: lines in, lines
// out. It is served from net-snmp's event loop, so that commands run between SNMP requests.
#ifndef TARN_HOST_CONTROL_CONTROL_SOCKET_H
#define TARN_HOST_CONTROL_CONTROL_SOCKET_H

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace tarn::host {

class ControlSocket {
  public:
    static constexpr std::size_t longest_line = std::size_t{64} * 1024;
    static constexpr std::size_t most_connections = 16;

    // Answers each line with what `answer` makes of it; both lines have their newlines. A socket file that
    // nobody listens on any more is replaced. Null, and the reason in `error`, when it cannot listen. `run`
    // runs what answers these lines, at once or later.
    static std::unique_ptr<ControlSocket> open(
        const std::string &path, std::function<std::string(const std::string &)> answer, std::string &error,
        std::function<void(const std::string &lines, std::function<void()> work)> run =
            [](const std::string & /*lines*/, const std::function<void()> &work) { work(); });
    ~ControlSocket();

    // Is asked about each line that comes alone; when it says true the connection is its own from then on.
    std::function<bool(const std::string &line, int connection)> take_over;
    ControlSocket(const ControlSocket &) = delete;
    ControlSocket &operator=(const ControlSocket &) = delete;

  private:
    ControlSocket(int listener, std::string path, std::function<std::string(const std::string &)> answer);
    static void accept_ready(int listener, void *socket);
    static void read_ready(int connection, void *socket);
    void take(int connection);
    void answer(int connection);
    bool answer_lines(int connection, std::string &pending);
    void close_connection(int connection);

    int listener_;
    std::string path_;
    std::function<std::string(const std::string &)> answer_;
    std::function<void(const std::string &, std::function<void()>)> run_;
    std::map<int, std::string> pending_;  // what came of a line so far, by connection
    std::set<int> refused_;               // connections that are only waited for to end
};

}  // namespace tarn::host

#endif
