// What a line card says about itself: its state words, versions and identity texts.
#ifndef TARN_CHASSIS_STATE_IDENTITY_H
#define TARN_CHASSIS_STATE_IDENTITY_H

#include "chassis/state/record_bytes.h"
#include "wire/records/olt.h"

namespace tarn::chassis {

inline constexpr std::size_t version_text_size = 16;
inline constexpr std::size_t hardware_text_size = 32;
inline constexpr std::size_t identity_texts = 4;

struct Identity {
    RecordBytes<olt_state::size> olt{};  // word 0 counts reconfigurations
    RecordBytes<identity_texts * version_text_size> versions{};
    RecordBytes<identity_texts * hardware_text_size> hardware{};
};

Identity make_identity(std::uint64_t seed, int slot);

}  // namespace tarn::chassis

#endif
