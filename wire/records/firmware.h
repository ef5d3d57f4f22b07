// The schedule of firmware updates. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_FIRMWARE_H
#define TARN_WIRE_RECORDS_FIRMWARE_H

#include "wire/record.h"
#include "wire/serial.h"

namespace tarn {

// A scheduled update of an ONT's firmware.
namespace update_task {
inline constexpr std::size_t size = 159;
inline constexpr RecordKind layout{size};
inline constexpr Field id = layout.u32(2);
inline constexpr Field use_serial = layout.u16(6);  // non-zero: the ONT is named by its serial
inline constexpr Field serial = layout.octets(8, serial_size);
inline constexpr Field channel = layout.u8(16);
inline constexpr Field ont_id = layout.u32(17);
inline constexpr Field status = layout.u16(23);
inline constexpr Field file_name = layout.text(25, 128);
inline constexpr Field counter = layout.u16(157);
static_assert(counter.offset + counter.size == size);
}  // namespace update_task

}  // namespace tarn

#endif
