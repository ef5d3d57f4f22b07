// The addresses that a line card has learnt behind its ONTs, and its PPPoE sessions.
#ifndef TARN_CHASSIS_STATE_ADDRESSES_H
#define TARN_CHASSIS_STATE_ADDRESSES_H

#include "chassis/state/onts.h"
#include "wire/records/address.h"

namespace tarn::chassis {

using AddressEntry = RecordBytes<ont_address::size>;

struct PppoeSession {
    std::uint8_t channel = 0;
    std::uint32_t ont_id = 0;
    RecordBytes<pppoe_session::size> record{};  // its duration at the chassis' start
};

// `count` entries in the order in which the card reports them, spread over the ONTs; none without ONTs.
// Sessions belong to ONTs that work, and are in one of the first VLANs.
std::vector<AddressEntry> make_addresses(std::uint64_t seed, int slot, const std::vector<Ont> &onts,
                                         int count);
std::vector<PppoeSession> make_pppoe_sessions(std::uint64_t seed, int slot, const std::vector<Ont> &onts,
                                              int count, int vlans);

}  // namespace tarn::chassis

#endif
