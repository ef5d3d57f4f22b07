// A board record held as it goes on the wire.
#ifndef TARN_CHASSIS_STATE_RECORD_BYTES_H
#define TARN_CHASSIS_STATE_RECORD_BYTES_H

#include <array>
#include <cstdint>

#include "wire/record.h"

namespace tarn::chassis {

template <std::size_t size>
using RecordBytes = std::array<std::uint8_t, size>;

template <std::size_t size>
void put(RecordBytes<size> &record, Field field, std::int64_t value) {
    store_integer(record.data(), field, value);
}

// A text always leaves room for its NUL.
template <std::size_t size>
void put(RecordBytes<size> &record, Field field, std::string_view text) {
    store_text(record.data(), field, text.substr(0, field.size - std::size_t{1}));
}

}  // namespace tarn::chassis

#endif
