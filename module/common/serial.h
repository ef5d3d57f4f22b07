// ONT serials: 8 bytes, compared as unsigned bytes; all zero means no ONT.
#ifndef TARN_MODULE_COMMON_SERIAL_H
#define TARN_MODULE_COMMON_SERIAL_H

#include <array>
#include <cstdint>
#include <cstring>

#include "wire/serial.h"

namespace tarn {

using Serial = std::array<std::uint8_t, serial_size>;

inline Serial serial_at(const std::uint8_t *bytes) {
    Serial serial;
    std::memcpy(serial.data(), bytes, serial.size());
    return serial;
}

inline int compare_serials(const std::uint8_t *a, const std::uint8_t *b) {
    return std::memcmp(a, b, serial_size);
}

inline bool is_zero_serial(const std::uint8_t *serial) {
    constexpr Serial zero{};
    return compare_serials(serial, zero.data()) == 0;
}

}  // namespace tarn

#endif
