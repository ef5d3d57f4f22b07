// The records of a PON channel. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_CHANNEL_H
#define TARN_WIRE_RECORDS_CHANNEL_H

#include "wire/record.h"

namespace tarn {

inline constexpr int channels_per_slot = 8;

// State of one PON channel.
namespace channel_state {
inline constexpr std::size_t size = 69;
inline constexpr RecordKind layout{size};
inline constexpr Field value_3 = layout.u16(3);
inline constexpr Field value_7 = layout.u32(7);
inline constexpr Field text_12 = layout.text(12, 17);
inline constexpr Field text_29 = layout.text(29, 17);
inline constexpr Field text_46 = layout.text(46, 5);
inline constexpr Field value_51 = layout.s32(51);
inline constexpr Field value_55 = layout.s32(55);
inline constexpr Field value_59 = layout.s32(59);
inline constexpr Field value_63 = layout.s32(63);
static_assert(value_63.offset + value_63.size <= size);
}  // namespace channel_state

// Configuration of one PON channel; of its fields only the flag is known here.
namespace olt_channel_config {
inline constexpr std::size_t size = 97;
inline constexpr RecordKind layout{size};
inline constexpr Field enabled = layout.u16(0);
}  // namespace olt_channel_config

}  // namespace tarn

#endif
