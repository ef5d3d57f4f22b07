// The multicast groups that ONTs' clients watch.
#ifndef TARN_CHASSIS_STATE_MULTICAST_H
#define TARN_CHASSIS_STATE_MULTICAST_H

#include <vector>

#include "chassis/state/card.h"

namespace tarn::chassis {

// IPv4 addresses as numbers, the first part in the highest byte.
struct JoinedGroup {
    std::uint32_t client = 0;
    std::uint32_t group = 0;
    std::uint32_t source = 0;
    Moment joined = 0;
    std::uint16_t vlan = 0;
    std::uint32_t bandwidth = 0;  // kbit/s
    std::uint32_t joins = 0;      // of this client since the chassis started, this one included
};

// What an ONT's clients have joined, in the first VLAN that is running; none unless the ONT works. A client
// changes its group every few minutes.
std::vector<JoinedGroup> joined_groups(Card &card, const Ont &ont, Moment now);

}  // namespace tarn::chassis

#endif
