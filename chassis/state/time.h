// Chassis time, and counters that grow with it.
#ifndef TARN_CHASSIS_STATE_TIME_H
#define TARN_CHASSIS_STATE_TIME_H

#include <cstdint>

namespace tarn::chassis {

// Milliseconds of chassis time since the chassis started: real time multiplied by the scenario's factor.
using Moment = std::uint64_t;

struct Counter {
    std::uint64_t per_second = 0;
    std::uint64_t base = 0;  // the value at `since`
    Moment since = 0;

    [[nodiscard]] std::uint64_t value(Moment now) const { return base + (now - since) * per_second / 1000; }
    void reset(Moment now) {
        base = 0;
        since = now;
    }
};

}  // namespace tarn::chassis

#endif
