// Performance counters of an ONT, as the statistics tables ask for them.
#ifndef TARN_MODULE_OPERATIONS_COUNTERS_H
#define TARN_MODULE_OPERATIONS_COUNTERS_H

#include <cstddef>
#include <cstdint>

#include "module/common/exports.h"

// One request for the counters of a counter module, with a key (port, cross-connect or the like) of an ONT on
// a channel. `result` takes 7697 bytes: the number of values, then the values as 32-bit numbers,
// little-endian, the rest zero. 0 when the card answered, -1 otherwise; a card that has nothing to report is
// not logged.
TARN_EXPORT int abstract_counters_request(std::uint8_t *result, int slot, int module, int channel, int key,
                                          int ont_id);
// The same for one direction: 0 upstream, 1 downstream.
TARN_EXPORT int abstract_counters_request_w_direction(std::uint8_t *result, int slot, int module,
                                                      int direction, int channel, int key, int ont_id);

namespace tarn {

inline constexpr std::size_t counters_result_size = 7697;
inline constexpr std::size_t max_counter_values = (counters_result_size - 1) / 4;

}  // namespace tarn

#endif
