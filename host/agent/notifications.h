// The notifications of TARN-AGENT-MIB, sent to those whom net-snmp's directives name. A burst is cut: so many
// a minute are sent, the others are counted.
#ifndef TARN_HOST_AGENT_NOTIFICATIONS_H
#define TARN_HOST_AGENT_NOTIFICATIONS_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

#include "host/board/ipc_client.h"
#include "host/board/ont_watch.h"
// net-snmp's.
struct variable_list;

namespace tarn::host {

// Their numbers in the MIB.
enum class Notification : unsigned {
    card_up = 1,
    card_down,
    card_silent,
    card_answering,
    commit_expiring,
    ont_lost,
    ont_back,
    shutdown
};

// What one names, in the MIB's order; slot and channel from 0.
struct Notice {
    Notification what;
    std::optional<int> slot{};
    std::optional<CardReason> reason{};
    std::optional<std::chrono::seconds> left{};
    std::optional<OntChange> ont{};
};

class Notifications {
  public:
    using Clock = std::chrono::steady_clock;
    using Send = std::function<void(variable_list *variables)>;

    // `send` does not keep the variables.
    Notifications(int most_a_minute, Send send) : most_(most_a_minute), send_(std::move(send)) {}

    void notify(const Notice &notice, Clock::time_point now = Clock::now());
    // Says what was held back when its minute is over; to be called once a second.
    void tell_held_back(Clock::time_point now = Clock::now());

    [[nodiscard]] std::uint64_t sent() const { return sent_; }
    [[nodiscard]] std::uint64_t held_back() const { return held_back_; }

  private:
    [[nodiscard]] bool has_room(const Notice &notice) const;

    int most_;
    Send send_;
    Clock::time_point minute_begin_{};
    int sent_in_minute_ = 0;
    int onts_in_minute_ = 0;
    std::uint64_t held_in_minute_ = 0;
    std::uint64_t sent_ = 0;
    std::uint64_t held_back_ = 0;
};

// Without a limit, and without a Host.
void announce_shutdown();

}  // namespace tarn::host

#endif
