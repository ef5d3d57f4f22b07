// A manager in a process of its own that walks subtrees with GETBULK when it is told to.
#ifndef TARN_BENCH_WALK_CLIENT_H
#define TARN_BENCH_WALK_CLIENT_H

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "tarn/module_api.h"

namespace tarn::bench {

struct Varbind {
    std::vector<oid> name;
    unsigned char type = 0;
    std::string value;  // as net-snmp holds it
};

class WalkClient {
  public:
    // Forks the manager; before net-snmp is initialised in this process. `peer` is the agent's address.
    WalkClient(const std::string &peer, int repetitions);
    ~WalkClient();
    WalkClient(const WalkClient &) = delete;
    WalkClient &operator=(const WalkClient &) = delete;

    // Has the manager walk the subtree and calls `serve` until it is done. Returns the number of varbinds,
    // and the varbinds themselves where `captured` is given. Throws when the manager got no answer.
    std::size_t walk(std::span<const oid> root, const std::function<void()> &serve,
                     std::vector<Varbind> *captured = nullptr);

    // Readable when the manager has something to say: whoever serves must then return.
    [[nodiscard]] int descriptor() const { return socket_; }

  private:
    pid_t process_;
    int socket_;
};

}  // namespace tarn::bench

#endif
