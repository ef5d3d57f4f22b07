// Little-endian integers at any alignment, assembled byte by byte.
#ifndef TARN_WIRE_BYTES_H
#define TARN_WIRE_BYTES_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace tarn {

template <class T>
constexpr T load_le(const std::uint8_t *from) {
    using Unsigned = std::make_unsigned_t<T>;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        value |= static_cast<std::uint64_t>(from[i]) << (8 * i);
    }
    return static_cast<T>(static_cast<Unsigned>(value));
}

template <class T>
constexpr void store_le(std::uint8_t *to, T value) {
    const auto bits = static_cast<std::uint64_t>(static_cast<std::make_unsigned_t<T>>(value));
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        to[i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
}

constexpr std::uint16_t load_le16(const std::uint8_t *from) {
    return load_le<std::uint16_t>(from);
}
constexpr std::uint32_t load_le32(const std::uint8_t *from) {
    return load_le<std::uint32_t>(from);
}
constexpr std::uint64_t load_le64(const std::uint8_t *from) {
    return load_le<std::uint64_t>(from);
}
constexpr void store_le16(std::uint8_t *to, std::uint16_t value) {
    store_le(to, value);
}
constexpr void store_le32(std::uint8_t *to, std::uint32_t value) {
    store_le(to, value);
}
constexpr void store_le64(std::uint8_t *to, std::uint64_t value) {
    store_le(to, value);
}

}  // namespace tarn

#endif
