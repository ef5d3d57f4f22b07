#include "chassis/state/channels.h"

#include <string>

#include "chassis/state/generator.h"
#include "wire/records/channel.h"

namespace tarn::chassis {
namespace {

Channel make_channel(std::uint64_t seed, int slot, int number) {
    Generator generator(seed, slot, "channel", static_cast<std::uint64_t>(number));
    Channel channel;
    put(channel.state, channel_state::text_12, "Tarn Optics");
    put(channel.state, channel_state::text_29, "TO-GPON-" + std::to_string(generator.between(1000, 9999)));
    put(channel.state, channel_state::text_46, "A" + std::to_string(generator.between(1, 9)));
    put(channel.state, channel_state::value_51, generator.between(3200, 3400));
    put(channel.state, channel_state::value_55, generator.between(8, 40));
    put(channel.state, channel_state::value_59, generator.between(20, 60));
    put(channel.state, channel_state::value_63, generator.between(-5, 5));
    put(channel.config, olt_channel_config::enabled, 1);
    for (std::size_t i = olt_channel_config::enabled.size; i < channel.config.size(); ++i) {
        channel.config[i] = static_cast<std::uint8_t>(generator.bits());
    }
    channel.received.per_second = static_cast<std::uint64_t>(generator.between(100, 5000));
    channel.received.base = static_cast<std::uint64_t>(generator.between(0, 1000000));
    return channel;
}

}  // namespace

Channels make_channels(std::uint64_t seed, int slot) {
    Channels channels;
    for (int number = 0; number < channels_per_slot; ++number) {
        channels[static_cast<std::size_t>(number)] = make_channel(seed, slot, number);
    }
    return channels;
}

RecordBytes<channel_state::size> short_channel_state(const Channel &channel, int working_onts, Moment now) {
    RecordBytes<channel_state::size> record{};
    put(record, channel_state::value_3, working_onts);
    put(record, channel_state::value_7, static_cast<std::int64_t>(channel.received.value(now)));
    return record;
}

RecordBytes<channel_state::size> full_channel_state(const Channel &channel, int working_onts, Moment now) {
    RecordBytes<channel_state::size> record = channel.state;
    put(record, channel_state::value_3, working_onts);
    put(record, channel_state::value_7, static_cast<std::int64_t>(channel.received.value(now)));
    return record;
}

}  // namespace tarn::chassis
