#include "module/config/olt_channel_config.h"

#include "module/store/cached_query.h"
#include "module/store/channel_sections.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

using ChannelConfig = Section<olt_channel_config::size>;

bool is_channel(int channel) {
    return channel >= 0 && channel < channels_per_slot;
}

ChannelConfig *section_of(int slot, int channel) {
    ChannelSections *db = slot_sections<ChannelSections>(slot);
    return db != nullptr && is_channel(channel) ? &db->olt_channel_configs[static_cast<std::size_t>(channel)]
                                                : nullptr;
}

}  // namespace

std::uint8_t *get_olt_channel_config(int slot, int channel) {
    slot = slot_byte(slot);
    ChannelConfig *section = section_of(slot, channel);
    if (section == nullptr) {
        return nullptr;
    }
    if (section->stamp.expired()) {
        constexpr std::size_t record = payload + 1;  // behind the channel byte
        Request<33> request(command::get_olt_channel_config, destination::services);
        request.put(32, static_cast<std::uint8_t>(channel));
        if (const Answer answer = ask(request, __func__, slot, record + olt_channel_config::size)) {
            answer.copy(section->record.data(), record, olt_channel_config::size);
            section->stamp.set();
            section->stamp.filled = true;
        }
    }
    return section->record.data();
}

int set_olt_channel_config(int slot, int channel) {
    slot = slot_byte(slot);
    ChannelConfig *section = section_of(slot, channel);
    if (section == nullptr) {
        return -1;
    }
    Request<130> request(command::set_olt_channel_config, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel))
        .put_bytes(33, section->record.data(), olt_channel_config::size);
    if (act(request, __func__, slot) != 0) {
        return -1;
    }
    section->stamp.clear();
    return 0;
}
