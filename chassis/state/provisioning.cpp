#include "chassis/state/provisioning.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "chassis/state/generator.h"
#include "wire/defaults.h"
#include "wire/protocol.h"
#include "wire/records/channel.h"
#include "wire/records/config_image.h"
#include "wire/records/network.h"
#include "wire/records/ont_config.h"
#include "wire/records/template.h"

namespace tarn::chassis {
namespace {

using OntRecord = RecordBytes<ont_config::size>;

constexpr std::size_t length_offset = config_image::compressed_length - board_header::size;

// The word of a record that is the card's own: different at every place.
std::uint32_t board_word(int slot, std::size_t index) {
    return 0x5A000000U | static_cast<std::uint32_t>(slot) << 16 | static_cast<std::uint32_t>(index);
}

void configure(OntRecord &record, const Ont &ont, Generator &values, int slot, int profiles) {
    using namespace ont_config;
    write_defaults(record.data(), defaults);
    store_text(record.data(), password, default_password);
    std::ranges::copy(ont.serial, record.begin() + serial.offset);
    put(record, description,
        "ONT " + std::to_string(slot) + '/' + std::to_string(ont.channel) + '/' + std::to_string(ont.id));
    put(record, uni_enabled, 1);
    put(record, uni_enabled.at(1, uni_port_size), values.chance(50) ? 1 : 0);
    put(record, tunnel_vid, values.between(1, 4094));
    put(record, tunnel_vid.at(1, tunnel_vid_size), values.between(1, 4094));
    if (profiles > 0) {
        put(record, service_profile_1756, values.between(0, profiles - 1));
        put(record, service_profile_1788, values.between(0, profiles - 1));
        put(record, profile_1824, values.between(0, profiles - 1));
    }
}

std::vector<OntRecord> make_ont_records(std::uint64_t seed, int slot, const std::vector<Ont> &onts,
                                        int profiles) {
    std::vector<OntRecord> records(ont_config::count);
    for (std::size_t index = 0; index < records.size(); ++index) {
        put(records[index], ont_config::board_word, board_word(slot, index));
    }
    std::size_t beyond = std::size_t{channels_per_slot} * ont_config::onts_per_channel;
    for (const Ont &ont : onts) {
        const bool has_place = ont.id < ont_config::onts_per_channel;
        if (!has_place && beyond == records.size()) {
            continue;
        }
        const std::size_t index =
            has_place ? ont.channel * std::size_t{ont_config::onts_per_channel} + ont.id : beyond++;
        Generator values(seed, slot, "ont-config", index);
        configure(records[index], ont, values, slot, profiles);
    }
    return records;
}

RecordBytes<network_config::size> make_network() {
    using namespace network_config;
    RecordBytes<network_config::size> network{};
    for (int i = 0; i < 2; ++i) {
        put(network, vlan_in_use.at(i, terminal_vlan_size), 1);
        put(network, vlan_name.at(i, terminal_vlan_size), "terminal-" + std::to_string(i));
        put(network, vlan_value_23.at(i, terminal_vlan_size), 100 + i);
    }
    return network;
}

RecordBytes<alarms_config::size> make_alarms() {
    using namespace alarms_config;
    RecordBytes<alarms_config::size> alarms{};
    for (int i = 0; i < entries; ++i) {
        put(alarms, type.at(i, entry_size), i + 1);
        put(alarms, value_9.at(i, entry_size), 1);
        put(alarms, value_11.at(i, entry_size), 1);
    }
    return alarms;
}

std::vector<RecordBytes<ont_template::size>> make_templates(int used) {
    std::vector<RecordBytes<ont_template::size>> templates(ont_template::count);
    for (int i = 0; i < std::min(used, ont_template::count); ++i) {
        auto &record = templates[static_cast<std::size_t>(i)];
        put(record, ont_template::in_use, 1);
        put(record, ont_template::name, "template-" + std::to_string(i));
    }
    return templates;
}

template <class Records>
void place(std::vector<std::uint8_t> &image, std::size_t offset, const Records &records) {
    for (const auto &record : records) {
        std::ranges::copy(record, image.begin() + static_cast<std::ptrdiff_t>(offset));
        offset += record.size();
    }
}

// An image whose records are empty. The rest of it, which only the card itself reads, compresses as badly as
// settings do, so that an image is about as large as a real one.
std::vector<std::uint8_t> make_empty_image() {
    std::vector<std::uint8_t> image(config_image::size);
    constexpr std::size_t network_end = config_image::network + network_config::size;
    constexpr std::size_t templates_end = config_image::templates + ont_template::count * ont_template::size;
    Generator values(0, 0, "image", 0);
    const auto fill = [&](std::size_t from, std::size_t to) {
        std::generate(image.begin() + static_cast<std::ptrdiff_t>(from),
                      image.begin() + static_cast<std::ptrdiff_t>(to),
                      [&] { return static_cast<std::uint8_t>(values.bits() & 0x7F); });
    };
    fill(0, config_image::ont_records);
    fill(network_end, config_image::templates);
    fill(templates_end, image.size());
    return image;
}

}  // namespace

Provisioning make_provisioning(std::uint64_t seed, int slot, const std::vector<Ont> &onts, int profiles) {
    Provisioning result;
    result.network = make_network();
    result.alarms = make_alarms();
    if (slot < chassis_slot::line_cards) {
        result.onts = make_ont_records(seed, slot, onts, profiles);
    } else if (slot == chassis_slot::profiles) {
        result.templates = make_templates(profiles);
        result.profiles = make_profiles(profiles);
    } else if (slot == chassis_slot::olt_profiles) {
        result.olt_profiles = make_olt_profiles(profiles);
    }
    return result;
}

std::vector<std::uint8_t> image_payload(const Provisioning &provisioning) {
    static const std::vector<std::uint8_t> empty_image = make_empty_image();
    std::vector<std::uint8_t> image = empty_image;
    place(image, config_image::ont_records, provisioning.onts);
    place(image, config_image::network, std::span(&provisioning.network, 1));
    place(image, config_image::templates, provisioning.templates);

    std::vector<std::uint8_t> payload(length_offset + sizeof(std::uint32_t));
    uLongf length = length_offset;
    if (compress2(payload.data(), &length, image.data(), image.size(), Z_BEST_SPEED) != Z_OK) {
        throw std::runtime_error("a configuration image does not fit its answer");
    }
    store_le32(&payload[length_offset], static_cast<std::uint32_t>(length));
    return payload;
}

}  // namespace tarn::chassis
