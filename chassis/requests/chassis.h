// The chassis: its cards, and what it answers to a request.
#ifndef TARN_CHASSIS_REQUESTS_CHASSIS_H
#define TARN_CHASSIS_REQUESTS_CHASSIS_H

#include <functional>
#include <memory>

#include "chassis/requests/dispatcher.h"
#include "chassis/requests/log.h"
#include "chassis/requests/request_log.h"
#include "chassis/state/card.h"
#include "chassis/state/faults.h"
#include "chassis/state/scenario.h"

namespace tarn::chassis {

// What happens on a connection after a request.
struct Reply {
    Outcome outcome = Outcome::answered;
    Bytes bytes;                 // of an answer
    std::uint32_t delay_ms = 0;  // before it goes out
};

class Chassis {
  public:
    // `elapsed_ms` gives the real milliseconds since the chassis started.
    Chassis(Scenario scenario, Log &log, std::function<std::uint64_t()> elapsed_ms);

    [[nodiscard]] Moment now() const;
    [[nodiscard]] const Scenario &scenario() const { return scenario_; }
    // Chassis time goes on from what it is, so many times as fast as real time; 0 stops it.
    void set_time_factor(double factor);

    // Whether requests to the slot have somebody to answer them: a card, or one of the chassis' own services.
    [[nodiscard]] bool is_up(int slot) const;
    // What answers for the slot; null when nothing does.
    Card *card(int slot);
    // Takes the card out, and puts it back as it was; a slot that never held a card gets a new one.
    // False when there is nothing to take out, or the slot is taken.
    bool pull(int slot);
    bool insert(int slot);

    // A request on a connection that belongs to the slot. The answer to a link frame is the same as to any
    // other frame: success when it names the connection's slot.
    Reply request(int slot, std::span<const std::uint8_t> request);

    Faults &faults() { return faults_; }
    RequestLog &requests() { return requests_; }
    Log &log() { return log_; }

    // Called with the slot whenever a card has been taken out.
    std::function<void(int)> on_pull;
    bool log_requests = false;

  private:
    Refusal answer(int slot, std::span<const std::uint8_t> request, Bytes &to);

    Scenario scenario_;
    Log &log_;
    std::function<std::uint64_t()> elapsed_ms_;
    // Chassis time, and real time, when the time factor was set last.
    Moment clock_start_ = 0;
    std::uint64_t real_start_ = 0;
    struct Place {
        std::unique_ptr<Card> card;
        bool present = false;
    };
    std::array<Place, chassis_slot::chassis_network + 1> places_;
    Faults faults_;
    RequestLog requests_;
};

}  // namespace tarn::chassis

#endif
