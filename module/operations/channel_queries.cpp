#include "module/operations/channel_queries.h"

#include "module/store/cached_query.h"
#include "module/store/channel_sections.h"
#include "module/store/olt_sections.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

constexpr std::size_t first_record = payload + 1;  // after the selector byte
constexpr std::size_t whole_answer_size = first_record + channels_per_slot * channel_state::size;

// A failing board is asked for its channels again only after the period.
constexpr Pace of_channels{.timeout_ms = 3000, .period_seconds = 20, .stamped = Stamped::before};

constexpr Query channels_lite{command::get_olt_channels_state_lite, destination::services, of_channels,
                              &ChannelSections::channels_lite_stamp};
constexpr Query channel_states{command::get_olt_channel_state, destination::services, of_channels,
                               &ChannelSections::channel_state_stamps};
constexpr Query state{command::get_olt_state, destination::services, usual_pace, &OltSections::olt_state};
constexpr Query hardware{command::get_hardware_information, destination::services, usual_pace,
                         &OltSections::hardware_information};
constexpr Query version{command::get_version_information, destination::services, usual_pace,
                        &OltSections::version_information};

void copy_field(const std::uint8_t *from, Field field, std::uint8_t *to) {
    std::memcpy(to + field.offset, from + field.offset, field.size);
}

void take_short_states(ChannelSections &channels, const Answer &answer, const char * /*operation*/) {
    const std::uint8_t *from = answer.data() + first_record;
    for (Record<channel_state::size> &record : channels.channel_states) {
        copy_field(from, channel_state::value_3, record.data());
        copy_field(from, channel_state::value_7, record.data());
        from += channel_state::size;
    }
}

}  // namespace

std::uint8_t *get_olt_channel_state(int slot, int channel) {
    auto *channels = slot_sections<ChannelSections>(slot);
    const auto index = static_cast<std::size_t>(channel);
    if (channels == nullptr || index >= channels_per_slot) {
        return nullptr;
    }
    std::uint8_t *record = channels->channel_states[index].data();
    ask_when_due(channel_states, channels->channel_state_stamps[index], slot,
                 Selector<1>{static_cast<std::uint8_t>(channel)}, whole_answer_size, __func__,
                 [&](const Answer &answer) {
                     answer.copy(record, first_record + index * channel_state::size, channel_state::size);
                     return true;
                 });
    return record;
}

std::uint8_t *get_olt_channels_state_lite(int slot) {
    auto *channels =
        refresh(channels_lite, slot, every_channel, whole_answer_size, __func__, take_short_states);
    return channels != nullptr ? channels->channel_states[0].data() : nullptr;
}

std::uint8_t *get_olt_state(int slot) {
    return refresh(state, slot, __func__);
}

std::uint8_t *get_hardware_information(int slot) {
    return refresh(hardware, slot, __func__);
}

std::uint8_t *get_version_information(int slot) {
    return refresh(version, slot, __func__);
}
