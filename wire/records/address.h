// The addresses and sessions learnt behind ONTs. Fields whose meaning only the card knows are named after
// their offset.
#ifndef TARN_WIRE_RECORDS_ADDRESS_H
#define TARN_WIRE_RECORDS_ADDRESS_H

#include "wire/record.h"
#include "wire/records/ont.h"

namespace tarn {

// One address learnt behind an ONT.
namespace ont_address {
inline constexpr std::size_t size = 37;
inline constexpr Field value_0 = s16_at(0);
inline constexpr Field value_2 = s16_at(2);
inline constexpr Field value_4 = s16_at(4);
inline constexpr Field value_6 = s16_at(6);
inline constexpr Field mac = octets_at(8, 6);
inline constexpr Field flag_14 = u16_at(14);
inline constexpr Field flag_16 = u16_at(16);
inline constexpr Field value_18 = s16_at(18);
inline constexpr Field channel = u8_at(20);
inline constexpr Field serial = octets_at(21, serial_size);
inline constexpr Field value_29 = u16_at(29);
inline constexpr Field value_31 = u16_at(31);
inline constexpr Field value_33 = u16_at(33);
inline constexpr Field value_35 = u16_at(35);
static_assert(value_35.offset + value_35.size == size);
}  // namespace ont_address

namespace pppoe_session {
inline constexpr std::size_t size = 31;  // opaque here
}

}  // namespace tarn

#endif
