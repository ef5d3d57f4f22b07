// State and configuration of a card's PON channels.
#ifndef TARN_MODULE_STORE_CHANNEL_SECTIONS_H
#define TARN_MODULE_STORE_CHANNEL_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/channel.h"

namespace tarn {

struct ChannelSections {
    Records<channel_state::size, channels_per_slot> channel_states;
    std::array<Stamp, channels_per_slot> channel_state_stamps;
    Stamp channels_lite_stamp;
    Sections<olt_channel_config::size, channels_per_slot> olt_channel_configs;
};

}  // namespace tarn

#endif
