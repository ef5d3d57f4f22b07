// The templates of ONT configurations. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_TEMPLATE_H
#define TARN_WIRE_RECORDS_TEMPLATE_H

#include "wire/record.h"
#include "wire/records/config_image.h"

namespace tarn {

// A template: values for an ONT, each with a flag that says whether it overrides the ONT's own.
namespace ont_template {
inline constexpr std::size_t size = 473;
inline constexpr int count = 32;
static_assert(config_image::templates + count * size <= config_image::size);

inline constexpr Field in_use = u16_at(4);
inline constexpr Field name = text_at(6, 16);
inline constexpr Field description = text_at(22, 256);
inline constexpr Field octets_278 = octets_at(278, 8);
inline constexpr Field octets_278_override = u16_at(286);
inline constexpr Field password = text_at(288, 11);
inline constexpr Field password_override = u16_at(299);
inline constexpr Field flag_301 = u16_at(301);
inline constexpr Field flag_301_override = u16_at(303);
inline constexpr Field flag_305 = u16_at(305);
inline constexpr Field flag_305_override = u16_at(307);
inline constexpr Field value_309 = u32_at(309);
inline constexpr Field value_309_override = u16_at(313);
inline constexpr Field value_315 = u32_at(315);
inline constexpr Field value_315_override = u16_at(319);
inline constexpr Field profile_321 = u16_at(321);
inline constexpr Field profile_321_override = u16_at(323);
// Two profiles a service and their overrides; those of service 0.
inline constexpr int services = 16;
inline constexpr int service_profile_size = 2;
inline constexpr Field service_profile_325 = u16_at(325);
inline constexpr Field service_profile_325_override = u16_at(357);
inline constexpr Field service_profile_389 = u16_at(389);
inline constexpr Field service_profile_389_override = u16_at(421);
inline constexpr Field profile_453 = u16_at(453);
inline constexpr Field profile_453_override = u16_at(455);
inline constexpr Field profile_461 = u16_at(461);
inline constexpr Field profile_461_override = u16_at(463);
inline constexpr Field value_465 = u16_at(465);
inline constexpr Field value_465_override = u16_at(467);
inline constexpr Field flag_469 = u16_at(469);
inline constexpr Field flag_469_override = u16_at(471);
static_assert(flag_469_override.offset + flag_469_override.size == size);
}  // namespace ont_template

}  // namespace tarn

#endif
