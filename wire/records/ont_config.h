// An ONT's configuration. Fields whose meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_ONT_CONFIG_H
#define TARN_WIRE_RECORDS_ONT_CONFIG_H

#include "wire/defaults.h"
#include "wire/record.h"
#include "wire/records/config_image.h"

namespace tarn {

// One ONT. Columns are those of the ONT configuration table; fields that no column names are the card's own.
namespace ont_config {
inline constexpr std::size_t size = 2122;
inline constexpr int count = 532;            // records of a slot, in store order
inline constexpr int onts_per_channel = 64;  // store index = channel * 64 + ONT id
static_assert(config_image::ont_records + count * size <= config_image::size);

inline constexpr Field board_word = u32_at(0);  // the card's; a write sends back what the card sent
inline constexpr Field in_use = u16_at(4);      // 0: free or deleted
inline constexpr Field description = text_at(6, 256);
inline constexpr Field flag_262 = u16_at(262);
inline constexpr Field serial = octets_at(264, 8);
inline constexpr Field password = text_at(272, 11);
inline constexpr Field flag_284 = u16_at(284);
inline constexpr Field flag_286 = u16_at(286);
inline constexpr Field value_288 = u32_at(288);
inline constexpr Field value_292 = u32_at(292);

// Custom cross-connects; the fields of entry 0.
inline constexpr int crossconnects = 16;
inline constexpr int crossconnect_size = 7;
inline constexpr Field crossconnect_enabled = u16_at(298);
inline constexpr Field crossconnect_value_2 = s16_at(300);
inline constexpr Field crossconnect_value_4 = u8_at(302);
inline constexpr Field crossconnect_value_5 = s16_at(303);

// Selective tunnels: a list of VLAN identifiers a service; place 0 of service 0. -1: an empty place.
inline constexpr int services = 16;
inline constexpr int tunnel_places = 42;
inline constexpr int tunnel_vid_size = 2;
inline constexpr Field tunnel_vid = s16_at(410);

// Profiles are 16-bit indices, 0xFFFF none; two a service, those of service 0 here.
inline constexpr Field profile_1754 = u16_at(1754);
inline constexpr int service_profile_size = 2;
inline constexpr Field service_profile_1756 = u16_at(1756);
inline constexpr Field service_profile_1788 = u16_at(1788);
inline constexpr Field value_1820 = u16_at(1820);
inline constexpr Field profile_1824 = u16_at(1824);
inline constexpr Field profile_1826 = u16_at(1826);
inline constexpr Field value_1828 = u16_at(1828);
inline constexpr Field flag_1830 = u16_at(1830);
inline constexpr Field value_1832 = u16_at(1832);
inline constexpr Field profile_1834 = u16_at(1834);

// Two opaque entries, of which only defaults are known.
inline constexpr int opaque_entries = 2;
inline constexpr int opaque_entry_size = 105;
inline constexpr Field opaque_value_0 = u8_at(1861);
inline constexpr Field opaque_value_76 = u16_at(1861 + 76);
inline constexpr Field value_2065 = u8_at(2065);

// UNI ports; the fields of port 0.
inline constexpr int uni_ports = 4;
inline constexpr int uni_port_size = 12;
inline constexpr Field uni_enabled = u16_at(2072 + 4);
inline constexpr Field uni_value_8 = u8_at(2072 + 8);
inline constexpr Field uni_value_9 = u8_at(2072 + 9);

static_assert(crossconnect_enabled.offset + crossconnects * crossconnect_size == tunnel_vid.offset);
static_assert(tunnel_vid.offset + services * tunnel_places * tunnel_vid_size == profile_1754.offset);
static_assert(2072 + uni_ports * uni_port_size <= size);

// What a new one holds; every other byte is 0.
inline constexpr std::string_view default_password = "1111111111";
inline constexpr Default defaults[] = {
    {in_use, 1},
    {flag_262, 1},
    {flag_286, 1},
    {value_288, 0xFFFFFFFF},
    {value_292, 60},
    {crossconnect_value_2, -1, crossconnects, crossconnect_size},
    {crossconnect_value_4, 255, crossconnects, crossconnect_size},
    {crossconnect_value_5, -1, crossconnects, crossconnect_size},
    {tunnel_vid, -1, services *tunnel_places, tunnel_vid_size},
    {service_profile_1756, 0xFFFF, services, service_profile_size},
    {service_profile_1788, 0xFFFF, services, service_profile_size},
    {profile_1824, 0xFFFF},
    {profile_1826, 0xFFFF},
    {value_1832, 4},
    {profile_1834, 0xFFFF},
    {opaque_value_0, 1, opaque_entries, opaque_entry_size},
    {opaque_value_76, 600, opaque_entries, opaque_entry_size},
    {value_2065, 1},
    {uni_value_9, 2, uni_ports, uni_port_size},
};
}  // namespace ont_config

}  // namespace tarn

#endif
