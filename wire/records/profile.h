// The profiles: five kinds for ONTs, and the lists of OLT profiles. Fields whose meaning only the card knows
// are named after their offset.
#ifndef TARN_WIRE_RECORDS_PROFILE_H
#define TARN_WIRE_RECORDS_PROFILE_H

#include <string_view>

#include "wire/defaults.h"
#include "wire/protocol.h"
#include "wire/record.h"

namespace tarn {

// How every profile begins, whatever its kind.
namespace profile_head {
inline constexpr Field in_use = u16_at(4);  // 0: no such profile
inline constexpr Field name = text_at(6, 16);
inline constexpr Field description = text_at(22, 256);
}  // namespace profile_head

// A kind of ONT profile: `count` records, which are read all at once, and added, set and removed one by one.
struct ProfileDescription {
    std::string_view name;
    std::size_t size;  // bytes of a record
    int count;
    std::uint16_t list, add, set, remove;  // the commands, to the configuration service
    std::span<const Default> defaults;     // of a new one
};

// The kinds, with the fields after the head.
namespace management_profile {
inline constexpr std::size_t size = 604;
inline constexpr RecordKind layout{size};
inline constexpr int count = 32;
inline constexpr Field flag_278 = layout.u16(278);
inline constexpr Field text_280 = layout.text(280, 128);
inline constexpr Field text_408 = layout.text(408, 26);
inline constexpr Field text_434 = layout.text(434, 26);

// Those of a new one; every other byte is 0.
inline constexpr Default defaults[] = {{flag_278, 1}};

inline constexpr ProfileDescription kind{
    "management",
    size,
    count,
    command::get_management_profiles,
    command::add_management_profile,
    command::set_management_profile,
    command::delete_management_profile,
    defaults,
};
}  // namespace management_profile

namespace crossconnect_profile {
inline constexpr std::size_t size = 298;
inline constexpr RecordKind layout{size};
inline constexpr int count = 128;
inline constexpr Field value_278 = layout.u16(278);
inline constexpr Field value_280 = layout.u8(280);
inline constexpr Field value_281 = layout.u16(281);
inline constexpr Field value_283 = layout.s16(283);
inline constexpr Field value_285 = layout.u8(285);
inline constexpr Field value_286 = layout.u16(286);
inline constexpr Field value_288 = layout.u16(288);
inline constexpr Field value_290 = layout.u8(290);
inline constexpr Field value_291 = layout.u16(291);
inline constexpr Field value_293 = layout.u16(293);
inline constexpr Field value_295 = layout.u16(295);
inline constexpr Field value_297 = layout.u8(297);
static_assert(value_297.offset + value_297.size == size);

// Those of a new one; every other byte is 0.
inline constexpr Default defaults[] = {
    {value_278, 0}, {value_280, 1}, {value_281, 0},   {value_283, 1},   {value_285, 255},
    {value_286, 1}, {value_288, 0}, {value_290, 255}, {value_291, 127},
};

inline constexpr ProfileDescription kind{
    "crossconnect",
    size,
    count,
    command::get_crossconnect_profiles,
    command::add_crossconnect_profile,
    command::set_crossconnect_profile,
    command::delete_crossconnect_profile,
    defaults,
};
}  // namespace crossconnect_profile

namespace shaping_profile {
inline constexpr std::size_t size = 1032;
inline constexpr RecordKind layout{size};
inline constexpr int count = 128;
inline constexpr Field flag_278 = layout.u16(278);
// Two entries a cross-connect; those of cross-connect 0.
inline constexpr int crossconnects = 16;
inline constexpr int short_entry_size = 6;
inline constexpr Field short_flag = layout.u16(280);
inline constexpr Field short_value = layout.u32(282);
inline constexpr int long_entry_size = 10;
inline constexpr Field long_flag = layout.u16(376);
inline constexpr Field long_value_2 = layout.u32(378);
inline constexpr Field long_value_6 = layout.u32(382);
static_assert(short_flag.offset + crossconnects * short_entry_size == long_flag.offset);
static_assert(long_flag.offset + crossconnects * long_entry_size <= size);

// Those of a new one; every other byte is 0.
inline constexpr Default defaults[] = {
    {short_value, 2488320, crossconnects, short_entry_size},
    {long_value_2, 1244160, crossconnects, long_entry_size},
    {long_value_6, 1244160, crossconnects, long_entry_size},
};

inline constexpr ProfileDescription kind{
    "shaping",
    size,
    count,
    command::get_shaping_profiles,
    command::add_shaping_profile,
    command::set_shaping_profile,
    command::delete_shaping_profile,
    defaults,
};
}  // namespace shaping_profile

namespace alloc_profile {
inline constexpr std::size_t size = 301;
inline constexpr RecordKind layout{size};
inline constexpr int count = 128;
inline constexpr Field value_278 = layout.u16(278);
inline constexpr Field value_280 = layout.u16(280);
inline constexpr Field value_282 = layout.u32(282);
inline constexpr Field value_286 = layout.u8(286);
inline constexpr Field value_287 = layout.u32(287);
inline constexpr Field value_291 = layout.u32(291);
inline constexpr Field value_295 = layout.u32(295);

// Those of a new one; every other byte is 0.
inline constexpr Default defaults[] = {
    {value_282, 48600}, {value_286, 8}, {value_291, 64}, {value_295, 1273856}};

inline constexpr ProfileDescription kind{
    "alloc",
    size,
    count,
    command::get_alloc_profiles,
    command::add_alloc_profile,
    command::set_alloc_profile,
    command::delete_alloc_profile,
    defaults,
};
}  // namespace alloc_profile

namespace ports_profile {
inline constexpr std::size_t size = 1622;
inline constexpr RecordKind layout{size};
inline constexpr int count = 32;
inline constexpr Field value_278 = layout.u16(278);
inline constexpr Field value_280 = layout.u8(280);
inline constexpr Field value_281 = layout.u16(281);
inline constexpr Field flag_283 = layout.u16(283);
inline constexpr Field value_285 = layout.u8(285);
inline constexpr Field address_286 = layout.octets(286, 4);
inline constexpr Field value_290 = layout.u32(290);
inline constexpr Field value_294 = layout.u32(294);
inline constexpr Field value_298 = layout.u32(298);
// Multicast entries; entry 0.
inline constexpr int multicast_entries = 20;
inline constexpr int multicast_entry_size = 10;
inline constexpr Field multicast_value = layout.u16(302);  // 0xFFFF: none
inline constexpr Field multicast_address_2 = layout.octets(304, 4);
inline constexpr Field multicast_address_6 = layout.octets(308, 4);
inline constexpr Field value_502 = layout.u8(502);
inline constexpr Field value_503 = layout.u16(503);
inline constexpr Field flag_505 = layout.u16(505);
inline constexpr Field value_507 = layout.u8(507);
inline constexpr Field octets_508 = layout.octets(508, 16);
inline constexpr Field value_524 = layout.u32(524);
inline constexpr Field value_528 = layout.u32(528);
inline constexpr Field value_532 = layout.u32(532);
// MLD entries; entry 0.
inline constexpr int mld_entries = 20;
inline constexpr int mld_entry_size = 42;
inline constexpr Field mld_value = layout.u16(536);  // 0xFFFF: none
inline constexpr Field mld_address_2 = layout.octets(538, 16);
inline constexpr Field mld_address_18 = layout.octets(554, 16);
inline constexpr Field mld_value_34 = layout.u16(570);
inline constexpr Field mld_value_36 = layout.u16(572);
inline constexpr Field mld_value_38 = layout.u16(574);
inline constexpr Field mld_value_40 = layout.u16(576);
inline constexpr Field flag_1376 = layout.u16(1376);
inline constexpr Field value_1378 = layout.u16(1378);
inline constexpr Field value_1380 = layout.u8(1380);
inline constexpr Field value_1381 = layout.u16(1381);
inline constexpr Field value_1383 = layout.u16(1383);
inline constexpr Field value_1385 = layout.u8(1385);
inline constexpr Field value_1386 = layout.u16(1386);
inline constexpr Field value_1388 = layout.u16(1388);
inline constexpr Field value_1390 = layout.u32(1390);
// UNI ports; port 0.
inline constexpr int uni_ports = 4;
inline constexpr int uni_port_size = 57;
inline constexpr Field uni_value_1398 = layout.u8(1398);
inline constexpr Field uni_flag_1403 = layout.u16(1403);
inline constexpr Field uni_value_1405 = layout.u16(1405);
inline constexpr Field uni_value_1407 = layout.u8(1407);
inline constexpr Field uni_value_1408 = layout.u16(1408);
inline constexpr Field uni_value_1410 = layout.u16(1410);
inline constexpr Field uni_value_1412 = layout.u8(1412);
inline constexpr Field uni_value_1413 = layout.u16(1413);
inline constexpr Field uni_value_1415 = layout.u16(1415);
inline constexpr Field uni_value_1417 = layout.u32(1417);
inline constexpr Field uni_flag_1421 = layout.u16(1421);
inline constexpr Field uni_value_1423 = layout.u32(1423);
inline constexpr Field uni_value_1427 = layout.u32(1427);
inline constexpr Field uni_flag_1431 = layout.u16(1431);
inline constexpr Field uni_value_1433 = layout.u32(1433);
inline constexpr Field uni_value_1437 = layout.u32(1437);
static_assert(multicast_value.offset + multicast_entries * multicast_entry_size == value_502.offset);
static_assert(mld_value.offset + mld_entries * mld_entry_size == flag_1376.offset);
static_assert(uni_value_1437.offset + 4 + (uni_ports - 1) * uni_port_size <= size);

// Those of a new one; every other byte is 0.
inline constexpr Default defaults[] = {
    {value_280, 3},
    {value_290, 125},
    {value_294, 100},
    {value_298, 10},
    {uni_value_1423, 2488320, uni_ports, uni_port_size},
    {uni_value_1427, 2488320, uni_ports, uni_port_size},
    {uni_value_1433, 2488320, uni_ports, uni_port_size},
    {uni_value_1437, 2488320, uni_ports, uni_port_size},
};

inline constexpr ProfileDescription kind{
    "ports",
    size,
    count,
    command::get_ports_profiles,
    command::add_ports_profile,
    command::set_ports_profile,
    command::delete_ports_profile,
    defaults,
};
}  // namespace ports_profile

inline constexpr const ProfileDescription *profile_kinds[] = {
    &management_profile::kind, &crossconnect_profile::kind, &shaping_profile::kind, &alloc_profile::kind,
    &ports_profile::kind};

// Lists of OLT profiles, which are only read.
namespace olt_profile {
inline constexpr Field in_use = u16_at(4);
inline constexpr Field name = text_at(22, 256);
}  // namespace olt_profile
namespace olt_address_table_profile {
inline constexpr std::size_t size = 7454;
inline constexpr RecordKind layout{size};
inline constexpr int count = 32;
}  // namespace olt_address_table_profile
namespace olt_vlan_profile {
inline constexpr std::size_t size = 294;
inline constexpr RecordKind layout{size};
inline constexpr int count = 32;
}  // namespace olt_vlan_profile

}  // namespace tarn

#endif
