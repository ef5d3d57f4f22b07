#include "module/config/olt_channel_config.h"

#include "module/store/cached_query.h"
#include "module/store/channel_sections.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

constexpr Query channel_configs{command::get_olt_channel_config, destination::services,
                                Pace{.stamped = Stamped::by_answer}, &ChannelSections::olt_channel_configs,
                                payload + 1};  // after the channel byte

}  // namespace

std::uint8_t *get_olt_channel_config(int slot, int channel) {
    return refresh(channel_configs, slot, channel, Selector<1>{static_cast<std::uint8_t>(channel)}, __func__);
}

int set_olt_channel_config(int slot, int channel) {
    auto *channels = slot_sections<ChannelSections>(slot);
    if (channels == nullptr || channel < 0 || channel >= channels_per_slot) {
        return -1;
    }
    auto &section = channels->olt_channel_configs[static_cast<std::size_t>(channel)];
    Request<130> request(command::set_olt_channel_config, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel))
        .put_bytes(33, section.record.data(), olt_channel_config::size);
    if (act(request, __func__, slot) != 0) {
        return -1;
    }
    section.stamp.clear();
    return 0;
}
