// What a line card says about itself: its state words, versions and identity texts.
#ifndef TARN_CHASSIS_STATE_IDENTITY_H
#define TARN_CHASSIS_STATE_IDENTITY_H

#include "chassis/state/record_bytes.h"
#include "wire/records/identity.h"
#include "wire/records/olt.h"

namespace tarn::chassis {

struct Identity {
    RecordBytes<olt_state::size> olt{};  // word 0 counts reconfigurations
    RecordBytes<board_versions::size> versions{};
    RecordBytes<board_hardware::size> hardware{};
};

Identity make_identity(std::uint64_t seed, int slot);

}  // namespace tarn::chassis

#endif
