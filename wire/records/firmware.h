// The schedule of firmware updates. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_FIRMWARE_H
#define TARN_WIRE_RECORDS_FIRMWARE_H

#include "wire/record.h"
#include "wire/records/ont.h"

namespace tarn {

// A scheduled update of an ONT's firmware.
namespace update_task {
inline constexpr std::size_t size = 159;
inline constexpr Field id = u32_at(2);
inline constexpr Field use_serial = u16_at(6);  // non-zero: the ONT is named by its serial
inline constexpr Field serial = octets_at(8, serial_size);
inline constexpr Field channel = u8_at(16);
inline constexpr Field ont_id = u32_at(17);
inline constexpr Field status = u16_at(23);
inline constexpr Field file_name = text_at(25, 128);
inline constexpr Field counter = u16_at(157);
static_assert(counter.offset + counter.size == size);
}  // namespace update_task

}  // namespace tarn

#endif
