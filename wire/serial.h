// The size of an ONT's serial.
#ifndef TARN_WIRE_SERIAL_H
#define TARN_WIRE_SERIAL_H

#include <cstddef>

namespace tarn {

inline constexpr std::size_t serial_size = 8;

}  // namespace tarn

#endif
