// The configuration records: the image of a card and its sections, ONT records, templates, profiles.
#ifndef TARN_MODULE_CONFIG_CONFIG_RECORDS_H
#define TARN_MODULE_CONFIG_CONFIG_RECORDS_H

#include "tarn/record.h"

namespace tarn {

// The inflated image of a card's whole configuration; only these regions are read.
namespace config_image {
inline constexpr std::size_t size = 1821429;
inline constexpr std::size_t ont_records = 53054;
inline constexpr std::size_t network = 1181958;
inline constexpr std::size_t templates = 1790165;
// In the answer that carries it: the compressed image from byte 32, its length in a 32-bit word here.
inline constexpr std::size_t compressed_length = 1024032;
}  // namespace config_image

namespace ont_config {
inline constexpr std::size_t size = 2122;
inline constexpr int count = 532;            // records of a slot, in store order
inline constexpr int onts_per_channel = 64;  // store index = channel * 64 + ONT id
static_assert(config_image::ont_records + count * size <= config_image::size);
}  // namespace ont_config

namespace network_config {
inline constexpr std::size_t size = 847;
}

namespace ont_template {
inline constexpr std::size_t size = 473;
inline constexpr int count = 32;
static_assert(config_image::templates + count * size <= config_image::size);
}  // namespace ont_template

// Profile kinds: record size and number of profiles.
namespace management_profile {
inline constexpr std::size_t size = 604;
inline constexpr int count = 32;
}  // namespace management_profile
namespace crossconnect_profile {
inline constexpr std::size_t size = 298;
inline constexpr int count = 128;
}  // namespace crossconnect_profile
namespace shaping_profile {
inline constexpr std::size_t size = 1032;
inline constexpr int count = 128;
}  // namespace shaping_profile
namespace alloc_profile {
inline constexpr std::size_t size = 301;
inline constexpr int count = 128;
}  // namespace alloc_profile
namespace ports_profile {
inline constexpr std::size_t size = 1622;
inline constexpr int count = 32;
}  // namespace ports_profile

namespace olt_config {
inline constexpr std::size_t size = 9510;
}
namespace olt_address_table_profile {
inline constexpr std::size_t size = 7454;
inline constexpr int count = 32;
}  // namespace olt_address_table_profile
namespace olt_vlan_profile {
inline constexpr std::size_t size = 294;
inline constexpr int count = 32;
}  // namespace olt_vlan_profile
namespace alarms_config {
inline constexpr std::size_t size = 801;
}

}  // namespace tarn

#endif
