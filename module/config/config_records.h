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
}  // namespace ont_config

// Network settings of a slot or of the chassis: a 15-byte head, then the terminal VLANs.
namespace network_config {
inline constexpr std::size_t size = 847;
inline constexpr int terminal_vlans = 32;
inline constexpr int terminal_vlan_size = 26;
// The fields of entry 0.
inline constexpr Field vlan_in_use = u8_at(15 + 4);
inline constexpr Field vlan_name = text_at(15 + 5, 18);
inline constexpr Field vlan_value_23 = u16_at(15 + 23);
inline constexpr Field vlan_value_25 = u8_at(15 + 25);
static_assert(15 + terminal_vlans * terminal_vlan_size == size);
}  // namespace network_config

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

// How every profile begins, whatever its kind.
namespace profile_head {
inline constexpr Field in_use = u16_at(4);  // 0: no such profile
inline constexpr Field name = text_at(6, 16);
inline constexpr Field description = text_at(22, 256);
}  // namespace profile_head

// Profile kinds: record size, number of profiles, and the fields behind the head.
namespace management_profile {
inline constexpr std::size_t size = 604;
inline constexpr int count = 32;
inline constexpr Field flag_278 = u16_at(278);
inline constexpr Field text_280 = text_at(280, 128);
inline constexpr Field text_408 = text_at(408, 26);
inline constexpr Field text_434 = text_at(434, 26);
}  // namespace management_profile

namespace crossconnect_profile {
inline constexpr std::size_t size = 298;
inline constexpr int count = 128;
inline constexpr Field value_278 = u16_at(278);
inline constexpr Field value_280 = u8_at(280);
inline constexpr Field value_281 = u16_at(281);
inline constexpr Field value_283 = s16_at(283);
inline constexpr Field value_285 = u8_at(285);
inline constexpr Field value_286 = u16_at(286);
inline constexpr Field value_288 = u16_at(288);
inline constexpr Field value_290 = u8_at(290);
inline constexpr Field value_291 = u16_at(291);
inline constexpr Field value_293 = u16_at(293);
inline constexpr Field value_295 = u16_at(295);
inline constexpr Field value_297 = u8_at(297);
static_assert(value_297.offset + value_297.size == size);
}  // namespace crossconnect_profile

namespace shaping_profile {
inline constexpr std::size_t size = 1032;
inline constexpr int count = 128;
inline constexpr Field flag_278 = u16_at(278);
// Two entries a cross-connect; those of cross-connect 0.
inline constexpr int crossconnects = 16;
inline constexpr int short_entry_size = 6;
inline constexpr Field short_flag = u16_at(280);
inline constexpr Field short_value = u32_at(282);
inline constexpr int long_entry_size = 10;
inline constexpr Field long_flag = u16_at(376);
inline constexpr Field long_value_2 = u32_at(378);
inline constexpr Field long_value_6 = u32_at(382);
static_assert(short_flag.offset + crossconnects * short_entry_size == long_flag.offset);
static_assert(long_flag.offset + crossconnects * long_entry_size <= size);
}  // namespace shaping_profile

namespace alloc_profile {
inline constexpr std::size_t size = 301;
inline constexpr int count = 128;
inline constexpr Field value_278 = u16_at(278);
inline constexpr Field value_280 = u16_at(280);
inline constexpr Field value_282 = u32_at(282);
inline constexpr Field value_286 = u8_at(286);
inline constexpr Field value_287 = u32_at(287);
inline constexpr Field value_291 = u32_at(291);
inline constexpr Field value_295 = u32_at(295);
}  // namespace alloc_profile

namespace ports_profile {
inline constexpr std::size_t size = 1622;
inline constexpr int count = 32;
inline constexpr Field value_278 = u16_at(278);
inline constexpr Field value_280 = u8_at(280);
inline constexpr Field value_281 = u16_at(281);
inline constexpr Field flag_283 = u16_at(283);
inline constexpr Field value_285 = u8_at(285);
inline constexpr Field address_286 = octets_at(286, 4);
inline constexpr Field value_290 = u32_at(290);
inline constexpr Field value_294 = u32_at(294);
inline constexpr Field value_298 = u32_at(298);
// Multicast entries; entry 0.
inline constexpr int multicast_entries = 20;
inline constexpr int multicast_entry_size = 10;
inline constexpr Field multicast_value = u16_at(302);  // 0xFFFF: none
inline constexpr Field multicast_address_2 = octets_at(304, 4);
inline constexpr Field multicast_address_6 = octets_at(308, 4);
inline constexpr Field value_502 = u8_at(502);
inline constexpr Field value_503 = u16_at(503);
inline constexpr Field flag_505 = u16_at(505);
inline constexpr Field value_507 = u8_at(507);
inline constexpr Field octets_508 = octets_at(508, 16);
inline constexpr Field value_524 = u32_at(524);
inline constexpr Field value_528 = u32_at(528);
inline constexpr Field value_532 = u32_at(532);
// MLD entries; entry 0.
inline constexpr int mld_entries = 20;
inline constexpr int mld_entry_size = 42;
inline constexpr Field mld_value = u16_at(536);  // 0xFFFF: none
inline constexpr Field mld_address_2 = octets_at(538, 16);
inline constexpr Field mld_address_18 = octets_at(554, 16);
inline constexpr Field mld_value_34 = u16_at(570);
inline constexpr Field mld_value_36 = u16_at(572);
inline constexpr Field mld_value_38 = u16_at(574);
inline constexpr Field mld_value_40 = u16_at(576);
inline constexpr Field flag_1376 = u16_at(1376);
inline constexpr Field value_1378 = u16_at(1378);
inline constexpr Field value_1380 = u8_at(1380);
inline constexpr Field value_1381 = u16_at(1381);
inline constexpr Field value_1383 = u16_at(1383);
inline constexpr Field value_1385 = u8_at(1385);
inline constexpr Field value_1386 = u16_at(1386);
inline constexpr Field value_1388 = u16_at(1388);
inline constexpr Field value_1390 = u32_at(1390);
// UNI ports; port 0.
inline constexpr int uni_ports = 4;
inline constexpr int uni_port_size = 57;
inline constexpr Field uni_value_1398 = u8_at(1398);
inline constexpr Field uni_flag_1403 = u16_at(1403);
inline constexpr Field uni_value_1405 = u16_at(1405);
inline constexpr Field uni_value_1407 = u8_at(1407);
inline constexpr Field uni_value_1408 = u16_at(1408);
inline constexpr Field uni_value_1410 = u16_at(1410);
inline constexpr Field uni_value_1412 = u8_at(1412);
inline constexpr Field uni_value_1413 = u16_at(1413);
inline constexpr Field uni_value_1415 = u16_at(1415);
inline constexpr Field uni_value_1417 = u32_at(1417);
inline constexpr Field uni_flag_1421 = u16_at(1421);
inline constexpr Field uni_value_1423 = u32_at(1423);
inline constexpr Field uni_value_1427 = u32_at(1427);
inline constexpr Field uni_flag_1431 = u16_at(1431);
inline constexpr Field uni_value_1433 = u32_at(1433);
inline constexpr Field uni_value_1437 = u32_at(1437);
static_assert(multicast_value.offset + multicast_entries * multicast_entry_size == value_502.offset);
static_assert(mld_value.offset + mld_entries * mld_entry_size == flag_1376.offset);
static_assert(uni_value_1437.offset + 4 + (uni_ports - 1) * uni_port_size <= size);
}  // namespace ports_profile

namespace olt_config {
inline constexpr std::size_t size = 9510;    // opaque
inline constexpr Field hold = u16_at(9510);  // behind the record; not 0: an edit is pending, do not refresh
}  // namespace olt_config

// Lists of OLT profiles, which are only read.
namespace olt_profile {
inline constexpr Field in_use = u16_at(4);
inline constexpr Field name = text_at(22, 256);
}  // namespace olt_profile
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
inline constexpr int entries = 46;
inline constexpr int entry_size = 17;
// The fields of entry 0.
inline constexpr Field type = u32_at(4);
inline constexpr Field value_9 = u16_at(9);
inline constexpr Field value_11 = u16_at(11);
}  // namespace alarms_config

}  // namespace tarn

#endif
