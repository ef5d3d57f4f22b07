// What a line card says about itself, as texts.
#ifndef TARN_WIRE_RECORDS_IDENTITY_H
#define TARN_WIRE_RECORDS_IDENTITY_H

#include "wire/record.h"

namespace tarn {

namespace board_hardware {
inline constexpr std::size_t size = 128;
inline constexpr RecordKind layout{size};
inline constexpr Field type = layout.text(0, 32);
inline constexpr Field serial_number = layout.text(32, 32);
inline constexpr Field revision = layout.text(64, 32);
inline constexpr Field place = layout.text(96, 32);
}  // namespace board_hardware

namespace board_versions {
inline constexpr std::size_t size = 64;
inline constexpr RecordKind layout{size};
inline constexpr Field software = layout.text(0, 16);
inline constexpr Field boot_loader = layout.text(16, 16);
inline constexpr Field kernel = layout.text(32, 16);
inline constexpr Field logic = layout.text(48, 16);  // the programmable logic
}  // namespace board_versions

}  // namespace tarn

#endif
