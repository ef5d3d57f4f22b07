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
inline constexpr RecordKind layout{size};
inline constexpr int count = 532;            // records of a slot, in store order
inline constexpr int onts_per_channel = 64;  // store index = channel * 64 + ONT id
static_assert(config_image::ont_records + count * size <= config_image::size);

inline constexpr Field board_word = layout.u32(0);  // the card's; a write sends back what the card sent
inline constexpr Field in_use = layout.u16(4);      // 0: free or deleted
inline constexpr Field description = layout.text(6, 256);
inline constexpr Field flag_262 = layout.u16(262);
inline constexpr Field serial = layout.octets(264, 8);
inline constexpr Field password = layout.text(272, 11);
inline constexpr Field flag_284 = layout.u16(284);
inline constexpr Field flag_286 = layout.u16(286);
inline constexpr Field value_288 = layout.u32(288);
inline constexpr Field value_292 = layout.u32(292);

// Custom cross-connects; the fields of entry 0.
inline constexpr int crossconnects = 16;
inline constexpr int crossconnect_size = 7;
inline constexpr Field crossconnect_enabled = layout.u16(298);
inline constexpr Field crossconnect_value_2 = layout.s16(300);
inline constexpr Field crossconnect_value_4 = layout.u8(302);
inline constexpr Field crossconnect_value_5 = layout.s16(303);

// Selective tunnels: a list of VLAN identifiers a service; place 0 of service 0. -1: an empty place.
inline constexpr int services = 16;
inline constexpr int tunnel_places = 42;
inline constexpr int tunnel_vid_size = 2;
inline constexpr Field tunnel_vid = layout.s16(410);

// Profiles are 16-bit indices, 0xFFFF none; two a service, those of service 0 here.
inline constexpr Field profile_1754 = layout.u16(1754);
inline constexpr int service_profile_size = 2;
inline constexpr Field service_profile_1756 = layout.u16(1756);
inline constexpr Field service_profile_1788 = layout.u16(1788);
inline constexpr Field value_1820 = layout.u16(1820);
inline constexpr Field profile_1824 = layout.u16(1824);
inline constexpr Field profile_1826 = layout.u16(1826);
inline constexpr Field value_1828 = layout.u16(1828);
inline constexpr Field flag_1830 = layout.u16(1830);
inline constexpr Field value_1832 = layout.u16(1832);
inline constexpr Field profile_1834 = layout.u16(1834);

// Two opaque entries, of which only defaults are known.
inline constexpr int opaque_entries = 2;
inline constexpr int opaque_entry_size = 105;
inline constexpr Field opaque_value_0 = layout.u8(1861);
inline constexpr Field opaque_value_76 = layout.u16(1861 + 76);
inline constexpr Field value_2065 = layout.u8(2065);

// UNI ports; the fields of port 0.
inline constexpr int uni_ports = 4;
inline constexpr int uni_port_size = 12;
inline constexpr Field uni_enabled = layout.u16(2072 + 4);
inline constexpr Field uni_value_8 = layout.u8(2072 + 8);
inline constexpr Field uni_value_9 = layout.u8(2072 + 9);

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
