// The addresses and sessions learnt behind ONTs. Fields whose meaning only the card knows are named after
// their offset.
#ifndef TARN_WIRE_RECORDS_ADDRESS_H
#define TARN_WIRE_RECORDS_ADDRESS_H

#include "wire/record.h"
#include "wire/serial.h"

namespace tarn {

// One address learnt behind an ONT.
namespace ont_address {
inline constexpr std::size_t size = 37;
inline constexpr RecordKind layout{size};
inline constexpr Field value_0 = layout.s16(0);
inline constexpr Field value_2 = layout.s16(2);
inline constexpr Field value_4 = layout.s16(4);
inline constexpr Field value_6 = layout.s16(6);
inline constexpr Field mac = layout.octets(8, 6);
inline constexpr Field flag_14 = layout.u16(14);
inline constexpr Field flag_16 = layout.u16(16);
inline constexpr Field value_18 = layout.s16(18);
inline constexpr Field channel = layout.u8(20);
inline constexpr Field serial = layout.octets(21, serial_size);
inline constexpr Field value_29 = layout.u16(29);
inline constexpr Field value_31 = layout.u16(31);
inline constexpr Field value_33 = layout.u16(33);
inline constexpr Field value_35 = layout.u16(35);
static_assert(value_35.offset + value_35.size == size);
}  // namespace ont_address

namespace pppoe_session {
inline constexpr std::size_t size = 31;  // the last three bytes are zero
inline constexpr RecordKind layout{size};
inline constexpr Field serial = layout.octets(0, serial_size);
inline constexpr Field channel = layout.u8(8);
inline constexpr Field ont_id = layout.u32(9);
inline constexpr Field client_mac = layout.octets(13, 6);
inline constexpr Field session_id = layout.u16(19);
inline constexpr Field duration = layout.u32(21);  // seconds
inline constexpr Field vlan = layout.u16(25);
inline constexpr Field service = layout.u8(27);
}  // namespace pppoe_session

}  // namespace tarn

#endif
