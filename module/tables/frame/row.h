// A row as the frame hands it to a table's functions, and the description of a table's index.
#ifndef TARN_MODULE_TABLES_FRAME_ROW_H
#define TARN_MODULE_TABLES_FRAME_ROW_H

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "module/common/serial.h"
#include "tarn/host_services.h"

namespace tarn {

// The parts of an index, in order. A number has `limit` values: 0 to limit - 1 inside the module.
struct IndexPart {
    enum class Kind : std::uint8_t {
        slot,     // one sub-identifier, slot + 1
        serial,   // the length 8, then one sub-identifier a byte
        ordinal,  // one sub-identifier, number + 1
        number,   // one sub-identifier, the number itself
        text,     // a length, then one sub-identifier a byte (iterator tables only)
    };
    Kind kind;
    std::int64_t limit = 0;
    std::uint8_t type = ASN_UNSIGNED;  // of a number in an iterator table's index list
    bool checked = true;               // false: whatever a request says is accepted
};

inline constexpr IndexPart slot_part{IndexPart::Kind::slot, 16};
inline constexpr IndexPart serial_part{IndexPart::Kind::serial};
inline constexpr IndexPart text_part{IndexPart::Kind::text};
constexpr IndexPart ordinal_part(std::int64_t limit, std::uint8_t type = ASN_UNSIGNED) {
    return {IndexPart::Kind::ordinal, limit, type};
}
constexpr IndexPart unchecked_ordinal_part(std::int64_t limit) {
    return {.kind = IndexPart::Kind::ordinal, .limit = limit, .checked = false};
}
constexpr IndexPart number_part(std::int64_t limit) {
    return {IndexPart::Kind::number, limit};
}

inline constexpr std::int64_t any_unsigned = std::int64_t{1} << 32;

// Common indices.
inline constexpr IndexPart slot_index[] = {slot_part};
inline constexpr IndexPart ont_index[] = {slot_part, serial_part};

// The parts between slot and end, apart from a serial, are numbers counted from 0.
struct Row {
    static constexpr int max_numbers = 7;

    int slot = 0;  // 0-15, or 16 for what exists once in the chassis
    Serial serial{};
    std::array<std::int64_t, max_numbers> number{};
    std::string_view text;           // of a text index; the request's own bytes
    std::uint8_t *record = nullptr;  // the table's record of this row
};

}  // namespace tarn

#endif
