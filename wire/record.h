// A field of a byte-packed board record: where it lies and how its bytes are read.
//
// Records are described once, as named fields, in records/; the module, the chassis and the tests read and
// write them through the functions here. Integers are little-endian at any alignment. A text is
// NUL-terminated unless it fills its field.
#ifndef TARN_WIRE_RECORD_H
#define TARN_WIRE_RECORD_H

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "wire/bytes.h"

namespace tarn {

enum class Encoding : std::uint8_t { u8, u16, s16, u32, s32, u64, f64, text, octets };

struct RecordKind;

struct Field {
    std::uint16_t offset;
    Encoding encoding;
    std::uint16_t size;                  // bytes
    const RecordKind *record = nullptr;  // whose it is; null: of several kinds

    // The same field of entry `index` of an array whose entries lie `stride` bytes apart.
    [[nodiscard]] constexpr Field at(int index, int stride) const {
        return {static_cast<std::uint16_t>(offset + index * stride), encoding, size, record};
    }
};

constexpr Field u8_at(std::uint16_t offset) {
    return {offset, Encoding::u8, 1};
}
constexpr Field u16_at(std::uint16_t offset) {
    return {offset, Encoding::u16, 2};
}
constexpr Field s16_at(std::uint16_t offset) {
    return {offset, Encoding::s16, 2};
}
constexpr Field u32_at(std::uint16_t offset) {
    return {offset, Encoding::u32, 4};
}
constexpr Field s32_at(std::uint16_t offset) {
    return {offset, Encoding::s32, 4};
}
constexpr Field u64_at(std::uint16_t offset) {
    return {offset, Encoding::u64, 8};
}
constexpr Field f64_at(std::uint16_t offset) {
    return {offset, Encoding::f64, 8};
}
constexpr Field text_at(std::uint16_t offset, std::uint16_t size) {
    return {offset, Encoding::text, size};
}
constexpr Field octets_at(std::uint16_t offset, std::uint16_t size) {
    return {offset, Encoding::octets, size};
}

[[noreturn]] inline void field_ends_beyond_its_record() {
    std::abort();
}

// A kind of record. Its fields know whose they are, and one that does not end within it does not compile.
struct RecordKind {
    std::size_t size;  // bytes

    [[nodiscard]] constexpr Field u8(std::uint16_t offset) const { return own(u8_at(offset)); }
    [[nodiscard]] constexpr Field u16(std::uint16_t offset) const { return own(u16_at(offset)); }
    [[nodiscard]] constexpr Field s16(std::uint16_t offset) const { return own(s16_at(offset)); }
    [[nodiscard]] constexpr Field u32(std::uint16_t offset) const { return own(u32_at(offset)); }
    [[nodiscard]] constexpr Field s32(std::uint16_t offset) const { return own(s32_at(offset)); }
    [[nodiscard]] constexpr Field u64(std::uint16_t offset) const { return own(u64_at(offset)); }
    [[nodiscard]] constexpr Field f64(std::uint16_t offset) const { return own(f64_at(offset)); }
    [[nodiscard]] constexpr Field text(std::uint16_t offset, std::uint16_t length) const {
        return own(text_at(offset, length));
    }
    [[nodiscard]] constexpr Field octets(std::uint16_t offset, std::uint16_t length) const {
        return own(octets_at(offset, length));
    }

  private:
    [[nodiscard]] constexpr Field own(Field field) const {
        if (std::size_t{field.offset} + field.size > size) {
            field_ends_beyond_its_record();
        }
        field.record = this;
        return field;
    }
};

// The value of an integer field, sign-extended where the field is signed.
constexpr std::int64_t load_integer(const std::uint8_t *record, Field field) {
    const std::uint8_t *from = record + field.offset;
    switch (field.encoding) {
        case Encoding::u8:
            return from[0];
        case Encoding::u16:
            return load_le16(from);
        case Encoding::s16:
            return load_le<std::int16_t>(from);
        case Encoding::u32:
            return load_le32(from);
        case Encoding::s32:
            return load_le<std::int32_t>(from);
        case Encoding::u64:
            return static_cast<std::int64_t>(load_le64(from));
        case Encoding::f64:
        case Encoding::text:
        case Encoding::octets:
            break;
    }
    return 0;
}

// Stores the low bytes of `value` in an integer field.
constexpr void store_integer(std::uint8_t *record, Field field, std::int64_t value) {
    for (std::size_t i = 0; i < field.size && i < 8; ++i) {
        record[field.offset + i] = static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i));
    }
}

inline double load_double(const std::uint8_t *record, Field field) {
    const std::uint64_t bits = load_le64(record + field.offset);
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

inline void store_double(std::uint8_t *record, Field field, double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    store_le64(record + field.offset, bits);
}

// The text up to its NUL, or the whole field where it holds none.
inline std::string_view load_text(const std::uint8_t *record, Field field) {
    const auto *text = reinterpret_cast<const char *>(record + field.offset);
    return {text, strnlen(text, field.size)};
}

// Clears the whole field, then copies the text, cut to the field's size. Whoever needs a NUL after a full
// field passes at most size - 1 bytes.
inline void store_text(std::uint8_t *record, Field field, std::string_view text) {
    std::memset(record + field.offset, 0, field.size);
    std::memcpy(record + field.offset, text.data(), std::min<std::size_t>(text.size(), field.size));
}

}  // namespace tarn

#endif
