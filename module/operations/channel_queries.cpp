#include "module/operations/channel_queries.h"

#include "module/store/cached_query.h"
#include "module/store/channel_sections.h"
#include "module/store/olt_sections.h"
#include "wire/records/channel.h"

using namespace tarn;

namespace {

constexpr int channel_period_seconds = 20;
constexpr int channel_timeout_ms = 3000;
constexpr std::uint8_t all_channels = 255;
constexpr std::size_t first_record = payload + 1;  // behind the selector byte
constexpr std::size_t whole_answer_size = first_record + channels_per_slot * channel_state::size;

void copy_field(const std::uint8_t *from, Field field, std::uint8_t *to) {
    std::memcpy(to + field.offset, from + field.offset, field.size);
}

}  // namespace

// The stamps are written before the requests: a failing board is asked again only after the period.

std::uint8_t *get_olt_channel_state(int slot, int channel) {
    slot = slot_byte(slot);
    ChannelSections *db = slot_sections<ChannelSections>(slot);
    const auto index = static_cast<std::size_t>(channel);
    if (db == nullptr || index >= channels_per_slot) {
        return nullptr;
    }
    Record<channel_state::size> &record = db->channel_states[index];
    Stamp &stamp = db->channel_state_stamps[index];
    if (stamp.expired(channel_period_seconds)) {
        stamp.set();
        Request<33> request(command::get_olt_channel_state, destination::services);
        request.put(32, static_cast<std::uint8_t>(channel));
        if (const Answer answer = ask(request, __func__, slot, whole_answer_size, channel_timeout_ms)) {
            answer.copy(record.data(), first_record + index * channel_state::size, channel_state::size);
        }
    }
    return record.data();
}

std::uint8_t *get_olt_channels_state_lite(int slot) {
    slot = slot_byte(slot);
    ChannelSections *db = slot_sections<ChannelSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    Stamp &stamp = db->channels_lite_stamp;
    if (stamp.expired(channel_period_seconds)) {
        stamp.set();
        Request<33> request(command::get_olt_channels_state_lite, destination::services);
        request.put(32, all_channels);
        if (const Answer answer = ask(request, __func__, slot, whole_answer_size, channel_timeout_ms)) {
            const std::uint8_t *from = answer.data() + first_record;
            for (Record<channel_state::size> &record : db->channel_states) {
                copy_field(from, channel_state::value_3, record.data());
                copy_field(from, channel_state::value_7, record.data());
                from += channel_state::size;
            }
        }
    }
    return db->channel_states[0].data();
}

std::uint8_t *get_olt_state(int slot) {
    slot = slot_byte(slot);
    OltSections *db = slot_sections<OltSections>(slot);
    return db == nullptr ? nullptr
                         : refresh(db->olt_state, Request<32>(command::get_olt_state, destination::services),
                                   __func__, slot);
}

std::uint8_t *get_hardware_information(int slot) {
    slot = slot_byte(slot);
    OltSections *db = slot_sections<OltSections>(slot);
    return db == nullptr ? nullptr
                         : refresh(db->hardware_information,
                                   Request<32>(command::get_hardware_information, destination::services),
                                   __func__, slot);
}

std::uint8_t *get_version_information(int slot) {
    slot = slot_byte(slot);
    OltSections *db = slot_sections<OltSections>(slot);
    return db == nullptr ? nullptr
                         : refresh(db->version_information,
                                   Request<32>(command::get_version_information, destination::services),
                                   __func__, slot);
}
