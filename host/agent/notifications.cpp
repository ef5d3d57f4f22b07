#include "host/agent/notifications.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <array>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

using namespace std::chrono_literals;
constexpr auto minute = 60s;

// As in TARN-AGENT-MIB: tarnAgentNotifications and tarnAgentNotified.
constexpr std::array<oid, 11> trap_name = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
constexpr std::array<oid, 11> notifications = {1, 3, 6, 1, 4, 1, 32473, 1, 23, 0, 0};
constexpr std::array<oid, 13> notified = {1, 3, 6, 1, 4, 1, 32473, 1, 23, 1, 3, 0, 0};

class Variables {
  public:
    explicit Variables(Notification what) {
        std::array name = notifications;
        name.back() = static_cast<oid>(what);
        (void)snmp_varlist_add_variable(&first_, trap_name.data(), trap_name.size(), ASN_OBJECT_ID,
                                        name.data(), sizeof name);
    }
    ~Variables() { snmp_free_varbind(first_); }
    Variables(const Variables &) = delete;
    Variables &operator=(const Variables &) = delete;

    void add(oid object, unsigned char type, const void *value, std::size_t size) {
        std::array name = notified;
        name[name.size() - 2] = object;
        (void)snmp_varlist_add_variable(&first_, name.data(), name.size(), type, value, size);
    }
    void add(oid object, unsigned char type, long value) { add(object, type, &value, sizeof value); }
    [[nodiscard]] netsnmp_variable_list *get() const { return first_; }

  private:
    netsnmp_variable_list *first_ = nullptr;
};

}  // namespace

void Notifications::notify(const Notice &notice, Clock::time_point now) {
    tell_held_back(now);
    if (now - minute_begin_ >= minute) {
        minute_begin_ = now;
        sent_in_minute_ = onts_in_minute_ = 0;
    }
    if (!has_room(notice)) {
        ++held_back_;
        ++held_in_minute_;
        return;
    }
    ++sent_in_minute_;
    onts_in_minute_ += notice.ont ? 1 : 0;
    ++sent_;
    Variables variables(notice.what);
    if (notice.slot) {
        variables.add(1, ASN_UNSIGNED, *notice.slot + 1L);
    }
    if (notice.reason) {
        variables.add(2, ASN_INTEGER, static_cast<long>(*notice.reason));
    }
    if (notice.left) {
        variables.add(3, ASN_GAUGE, static_cast<long>(notice.left->count()));
    }
    if (notice.ont) {
        variables.add(5, ASN_UNSIGNED, notice.ont->channel + 1L);
        variables.add(4, ASN_OCTET_STR, notice.ont->serial.data(), notice.ont->serial.size());
    }
    send_(variables.get());
}

// A card with many ONTs must not hide what other cards do; of a commit nobody warns twice.
bool Notifications::has_room(const Notice &notice) const {
    if (notice.what == Notification::commit_expiring) {
        return most_ > 0;
    }
    return sent_in_minute_ < most_ && (!notice.ont || onts_in_minute_ < (most_ + 1) / 2);
}

void Notifications::tell_held_back(Clock::time_point now) {
    if (most_ > 0 && held_in_minute_ > 0 && now - minute_begin_ >= minute) {
        log_add(log_level::warning, "%llu notifications of a minute were held back\n",
                static_cast<unsigned long long>(held_in_minute_));
        held_in_minute_ = 0;
    }
}

void announce_shutdown() {
    send_v2trap(Variables(Notification::shutdown).get());
}

}  // namespace tarn::host
