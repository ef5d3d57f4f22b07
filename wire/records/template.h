// The templates of ONT configurations. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_TEMPLATE_H
#define TARN_WIRE_RECORDS_TEMPLATE_H

#include "wire/record.h"
#include "wire/records/config_image.h"

namespace tarn {

// A template: values for an ONT, each with a flag that says whether it overrides the ONT's own.
namespace ont_template {
inline constexpr std::size_t size = 473;
inline constexpr RecordKind layout{size};
inline constexpr int count = 32;
static_assert(config_image::templates + count * size <= config_image::size);

inline constexpr Field in_use = layout.u16(4);
inline constexpr Field name = layout.text(6, 16);
inline constexpr Field description = layout.text(22, 256);
inline constexpr Field octets_278 = layout.octets(278, 8);
inline constexpr Field octets_278_override = layout.u16(286);
inline constexpr Field password = layout.text(288, 11);
inline constexpr Field password_override = layout.u16(299);
inline constexpr Field flag_301 = layout.u16(301);
inline constexpr Field flag_301_override = layout.u16(303);
inline constexpr Field flag_305 = layout.u16(305);
inline constexpr Field flag_305_override = layout.u16(307);
inline constexpr Field value_309 = layout.u32(309);
inline constexpr Field value_309_override = layout.u16(313);
inline constexpr Field value_315 = layout.u32(315);
inline constexpr Field value_315_override = layout.u16(319);
inline constexpr Field profile_321 = layout.u16(321);
inline constexpr Field profile_321_override = layout.u16(323);
// Two profiles a service and their overrides; those of service 0.
inline constexpr int services = 16;
inline constexpr int service_profile_size = 2;
inline constexpr Field service_profile_325 = layout.u16(325);
inline constexpr Field service_profile_325_override = layout.u16(357);
inline constexpr Field service_profile_389 = layout.u16(389);
inline constexpr Field service_profile_389_override = layout.u16(421);
inline constexpr Field profile_453 = layout.u16(453);
inline constexpr Field profile_453_override = layout.u16(455);
inline constexpr Field profile_461 = layout.u16(461);
inline constexpr Field profile_461_override = layout.u16(463);
inline constexpr Field value_465 = layout.u16(465);
inline constexpr Field value_465_override = layout.u16(467);
inline constexpr Field flag_469 = layout.u16(469);
inline constexpr Field flag_469_override = layout.u16(471);
static_assert(flag_469_override.offset + flag_469_override.size == size);
}  // namespace ont_template

}  // namespace tarn

#endif
