// A line card's PON channels.
#ifndef TARN_CHASSIS_STATE_CHANNELS_H
#define TARN_CHASSIS_STATE_CHANNELS_H

#include "chassis/state/record_bytes.h"
#include "chassis/state/time.h"
#include "wire/records/channel.h"

namespace tarn::chassis {

inline constexpr std::uint16_t activation_auth_on = 2;
inline constexpr std::uint16_t activation_auth_off = 4;

struct Channel {
    // What does not move: value_3 and value_7 are filled in whenever the record is read.
    RecordBytes<channel_state::size> state{};
    RecordBytes<olt_channel_config::size> config{};
    Counter received;  // channel_state::value_7, modulo 2^32
    std::uint16_t activation_auth = activation_auth_on;
    std::uint32_t reconfigurations = 0;
    std::uint32_t counter_resets = 0;
};

using Channels = std::array<Channel, channels_per_slot>;

Channels make_channels(std::uint64_t seed, int slot);

// The two moving fields alone, which is all that the short form of the state has.
RecordBytes<channel_state::size> short_channel_state(const Channel &channel, int working_onts, Moment now);
RecordBytes<channel_state::size> full_channel_state(const Channel &channel, int working_onts, Moment now);

}  // namespace tarn::chassis

#endif
