// The records of the whole OLT.
#ifndef TARN_WIRE_RECORDS_OLT_H
#define TARN_WIRE_RECORDS_OLT_H

#include "wire/record.h"

namespace tarn {

// State of the whole OLT: sixteen words.
namespace olt_state {
inline constexpr std::size_t size = 32;
inline constexpr RecordKind layout{size};
constexpr Field word(int n) {
    return layout.s16(static_cast<std::uint16_t>(2 * n));
}
}  // namespace olt_state

namespace olt_config {
inline constexpr std::size_t size = 9510;  // opaque
// After the record; not 0: an edit is pending, do not refresh.
inline constexpr Field hold = u16_at(9510);
}  // namespace olt_config

}  // namespace tarn

#endif
