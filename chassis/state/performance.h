// The performance counters of an ONT.
//
// Most count in intervals of 15 minutes of chassis time and show the interval that finished last: the first
// value is its number modulo 256, the others what was counted in it. Those of a cross-connect count on from
// the last reset.
#ifndef TARN_CHASSIS_STATE_PERFORMANCE_H
#define TARN_CHASSIS_STATE_PERFORMANCE_H

#include <optional>

#include "chassis/state/card.h"

namespace tarn::chassis {

inline constexpr Moment interval_ms = Moment{15} * 60 * 1000;

namespace counter_direction {
inline constexpr int up = 0;
inline constexpr int down = 1;
inline constexpr int none = 3;
}  // namespace counter_direction

// Which counters of an ONT: those of a counter module and a direction, for a key (a port or cross-connect).
struct CounterSelection {
    int module;
    int direction;
    std::uint32_t key;
};

// Whether ONTs have these counters, and the key is one of theirs.
bool has_counters(const CounterSelection &selection);
// Their values in the order of the counter catalogue.
std::vector<std::uint32_t> counter_values(Card &card, const Ont &ont, const CounterSelection &selection,
                                          Moment now);

}  // namespace tarn::chassis

#endif
