// What is provisioned: image, ONT records, templates, network and OLT settings, alarms. Requests read and
// edit the working configuration.
#include <algorithm>

#include "chassis/requests/selectors.h"
#include "wire/records/config_image.h"
#include "wire/records/network.h"
#include "wire/records/ont_config.h"
#include "wire/records/template.h"

namespace tarn::chassis {
namespace {

constexpr SlotRange profiles_only{chassis_slot::profiles, chassis_slot::profiles};
constexpr SlotRange olt_profiles_only{chassis_slot::olt_profiles, chassis_slot::olt_profiles};
constexpr SlotRange any_slot{0, chassis_slot::chassis_network};

Provisioning &working(Exchange &exchange) {
    return exchange.card.config.working(exchange.now).provisioning;
}

Refusal get_image(Exchange &exchange) {
    append(exchange.answer, image_payload(working(exchange)));
    return {};
}

// Channel at byte 32, ONT id at 33-36, the record after them.
Refusal check_place(const Exchange &exchange) {
    const std::uint8_t channel = exchange.request[payload];
    if (!is_channel(channel)) {
        return no_such_channel(channel);
    }
    const std::uint32_t id = load_le32(exchange.request.data() + payload + 1);
    if (id >= ont_config::onts_per_channel) {
        return {board_status::malformed, "ONT id " + std::to_string(id) + " out of range"};
    }
    return {};
}

// The first word of the stored record stays the card's.
Refusal set_ont(Exchange &exchange) {
    Refusal refusal = check_place(exchange);
    if (refusal.status != board_status::success) {
        return refusal;
    }
    const std::size_t index = exchange.request[payload] * std::size_t{ont_config::onts_per_channel} +
                              load_le32(exchange.request.data() + payload + 1);
    constexpr std::size_t kept = ont_config::board_word.size;
    auto &record = working(exchange).onts[index];
    std::ranges::copy(exchange.request.subspan(payload + 5 + kept), record.begin() + kept);
    return {};
}

// A field, read or written whole.
template <auto field>
Refusal get_field(Exchange &exchange) {
    append(exchange.answer, working(exchange).*field);
    return {};
}
template <auto field>
Refusal set_field(Exchange &exchange) {
    std::ranges::copy(exchange.request.subspan(payload), (working(exchange).*field).begin());
    return {};
}

template <auto list>
Refusal get_olt_profiles(Exchange &exchange) {
    append(exchange.answer, working(exchange).olt_profiles.*list);
    return {};
}

Refusal set_template(Exchange &exchange) {
    const std::uint16_t index = load_le16(exchange.request.data() + payload);
    if (index >= ont_template::count) {
        return {board_status::malformed, "template " + std::to_string(index) + " out of range"};
    }
    std::ranges::copy(exchange.request.subspan(payload + 2), working(exchange).templates[index].begin());
    return {};
}

Refusal set_alarms_entry(Exchange &exchange) {
    const std::uint32_t number = load_le32(exchange.request.data() + payload);
    if (number >= alarms_config::entries) {
        return {board_status::malformed, "alarms entry " + std::to_string(number) + " out of range"};
    }
    std::ranges::copy(
        exchange.request.subspan(payload + 4),
        working(exchange).alarms.begin() + static_cast<std::ptrdiff_t>(number) * alarms_config::entry_size);
    return {};
}

constexpr RequestRule rules[] = {
    // The length of the compressed image is what this answer counts.
    {command::get_all_config, destination::configuration, 32, get_image,
     CountPlace{config_image::compressed_length, sizeof(std::uint32_t)}, any_slot},
    {command::set_ont_config, destination::configuration, 2159, set_ont},
    // What the configuration holds already is told to the services, which have nothing else to store.
    {command::set_ont_config, destination::services, 2159,
     [](Exchange &exchange) { return check_place(exchange); }},
    {command::get_terminal_vlans, destination::configuration, 32, get_field<&Provisioning::network>},
    {command::set_network_cfg,
     destination::configuration,
     879,
     set_field<&Provisioning::network>,
     {},
     any_slot},
    {command::get_olt_cfg, destination::configuration, 32, get_field<&Provisioning::olt>},
    {command::set_olt_cfg, destination::configuration, 9542, set_field<&Provisioning::olt>},
    {command::get_olt_address_table_profiles,
     destination::configuration,
     32,
     get_olt_profiles<&OltProfileLists::address_tables>,
     {},
     olt_profiles_only},
    {command::get_olt_vlan_profiles,
     destination::configuration,
     32,
     get_olt_profiles<&OltProfileLists::vlans>,
     {},
     olt_profiles_only},
    {command::set_ont_template, destination::configuration, 507, set_template, {}, profiles_only},
    {command::get_alarms_config,
     destination::configuration,
     32,
     get_field<&Provisioning::alarms>,
     {},
     any_slot},
    {command::set_alarms_entry, destination::configuration, 53, set_alarms_entry, {}, any_slot},
};

}  // namespace

std::span<const RequestRule> provisioning_requests() {
    return rules;
}

}  // namespace tarn::chassis
