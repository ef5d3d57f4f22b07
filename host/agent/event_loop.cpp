#include "host/agent/event_loop.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <net-snmp/library/fd_event_manager.h>
#include <net-snmp/library/large_fd_set.h>

#include <algorithm>
#include <chrono>

namespace tarn::host {
namespace {

using Clock = std::chrono::steady_clock;

std::chrono::microseconds longest{0};

class Descriptors {
  public:
    Descriptors() { netsnmp_large_fd_set_init(&set_, FD_SETSIZE); }
    ~Descriptors() { netsnmp_large_fd_set_cleanup(&set_); }
    Descriptors(const Descriptors &) = delete;
    Descriptors &operator=(const Descriptors &) = delete;
    netsnmp_large_fd_set *get() { return &set_; }
    void clear() { NETSNMP_LARGE_FD_ZERO(&set_); }

  private:
    netsnmp_large_fd_set set_{};
};

}  // namespace

void take_turn() {
    static Descriptors readable;
    static Descriptors writable;
    static Descriptors exceptional;
    readable.clear();
    writable.clear();
    exceptional.clear();
    int descriptors = 0;
    int block = 0;  // not longer than the time-out
    timeval timeout{1, 0};
    (void)snmp_select_info2(&descriptors, readable.get(), &timeout, &block);
    netsnmp_external_event_info2(&descriptors, readable.get(), writable.get(), exceptional.get());
    int ready =
        netsnmp_large_fd_set_select(descriptors, readable.get(), writable.get(), exceptional.get(), &timeout);
    const auto begin = Clock::now();
    if (ready > 0) {
        netsnmp_dispatch_external_events2(&ready, readable.get(), writable.get(), exceptional.get());
    }
    if (ready > 0) {
        snmp_read2(readable.get());
    } else if (ready == 0) {
        snmp_timeout();
    }
    snmp_store_if_needed();
    run_alarms();
    netsnmp_check_outstanding_agent_requests();
    longest = std::max(longest, std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin));
}

std::uint64_t longest_turn_us() {
    return static_cast<std::uint64_t>(longest.count());
}

}  // namespace tarn::host
