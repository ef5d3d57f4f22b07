// The records of an ONT: its place in the list, its state and readings, its connection log. Fields whose
// meaning only the card knows are named after their offset.
#ifndef TARN_WIRE_RECORDS_ONT_H
#define TARN_WIRE_RECORDS_ONT_H

#include "wire/record.h"
#include "wire/serial.h"

namespace tarn {

inline constexpr int max_onts = 1024;        // positions of a slot's ONT list
inline constexpr int ont_not_found = 65535;  // "no such ONT" where a position is asked for

// One position of a slot's ONT list. An all-zero serial marks a free position, and the first one ends the
// list.
namespace ont_list {
inline constexpr std::size_t size = 106;
inline constexpr RecordKind layout{size};
inline constexpr Field serial = layout.octets(0, serial_size);
inline constexpr Field channel = layout.u8(8);
inline constexpr Field ont_id = layout.u32(12);
inline constexpr Field text_18 = layout.text(18, 32);
inline constexpr Field text_50 = layout.text(50, 18);
inline constexpr Field state_code = layout.u16(68);
inline constexpr Field optical_power = layout.f64(70);  // not a number: no reading
inline constexpr Field text_91 = layout.text(91, 15);
static_assert(text_91.offset + text_91.size <= size);

inline constexpr int state_working = 7;
inline constexpr int state_not_asked = 13;  // the card is not asked for this ONT's state record
}  // namespace ont_list

// State of one ONT.
namespace ont_state {
inline constexpr std::size_t size = 170;
inline constexpr RecordKind layout{size};
inline constexpr Field value_66 = layout.u16(66);
inline constexpr Field value_68 = layout.u16(68);
inline constexpr Field text_70 = layout.text(70, 16);
inline constexpr Field value_86 = layout.s16(86);
inline constexpr Field value_128 = layout.f64(128);
static_assert(value_128.offset + value_128.size <= size);
}  // namespace ont_state

// Readings of an ONT's optical module.
namespace ont_i2c {
inline constexpr std::size_t size = 14;
inline constexpr RecordKind layout{size};
inline constexpr Field value_0 = layout.s16(0);
inline constexpr Field value_2 = layout.s16(2);
inline constexpr Field value_4 = layout.u8(4);  // 255: no reading
inline constexpr Field value_6 = layout.s16(6);
inline constexpr Field value_8 = layout.s16(8);
inline constexpr Field value_10 = layout.s16(10);
inline constexpr Field value_12 = layout.u16(12);
static_assert(value_12.offset + value_12.size <= size);
}  // namespace ont_i2c

// State of an ONT's UNI ports: a count, then four port blocks.
namespace ont_uni_ports {
inline constexpr std::size_t size = 66;
inline constexpr RecordKind layout{size};
inline constexpr int ports = 4;
inline constexpr int block_size = 16;
inline constexpr Field port_count = layout.s16(0);
// Fields of the block of port 0; port p's lie at field.at(p, block_size).
inline constexpr Field value_0 = layout.u16(2 + 0);
inline constexpr Field value_2 = layout.u16(2 + 2);
inline constexpr Field value_4 = layout.u16(2 + 4);
inline constexpr Field flag_6 = layout.u16(2 + 6);
inline constexpr Field value_8 = layout.u8(2 + 8);
inline constexpr Field value_9 = layout.u8(2 + 9);
inline constexpr Field value_10 = layout.u8(2 + 10);
inline constexpr Field value_11 = layout.u8(2 + 11);
inline constexpr Field value_12 = layout.u32(2 + 12);
static_assert(2 + ports * block_size == size);
}  // namespace ont_uni_ports

// The connection log of one ONT: an 8-byte head, then up to ten entries.
namespace ont_connections {
inline constexpr std::size_t size = 990;
inline constexpr RecordKind layout{size};
inline constexpr int head_size = 8;
inline constexpr int entry_size = 99;
// The last entry is cut by the end of the block; all its named fields lie inside.
inline constexpr int max_entries = 10;
inline constexpr Field equipment_id = layout.text(head_size + 2, 64);
inline constexpr Field version = layout.text(head_size + 66, 16);
inline constexpr Field link_up_time = layout.u32(head_size + 82);    // seconds since 1970, 0 never
inline constexpr Field link_down_time = layout.u32(head_size + 86);  // the same
inline constexpr Field last_state = layout.u8(head_size + 90);
static_assert(last_state.offset + (max_entries - 1) * entry_size < static_cast<int>(size));
}  // namespace ont_connections

// What the services of an ONT carry at the moment, kbit/s; the fields of service 0, those of the others 4
// bytes further each.
namespace ont_services_utilization {
inline constexpr std::size_t size = 512;
inline constexpr int services = 16;
inline constexpr std::size_t stride = 4;
inline constexpr RecordKind layout{size};
inline constexpr Field downstream = layout.u32(0);
inline constexpr Field upstream = layout.u32(256);
}  // namespace ont_services_utilization

// Bit errors of the downstream signal that an ONT counted.
namespace ont_downstream_ber {
inline constexpr std::size_t size = 22;  // the last two bytes are zero
inline constexpr RecordKind layout{size};
inline constexpr Field serial = layout.octets(0, serial_size);
inline constexpr Field errors = layout.u32(8);
inline constexpr Field bits = layout.u64(12);
}  // namespace ont_downstream_ber

}  // namespace tarn

#endif
