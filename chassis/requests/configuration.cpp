// The stages of a configuration: commit, confirm, roll back, save, defaults; re-read and reload.
#include "chassis/requests/selectors.h"

namespace tarn::chassis {
namespace {

constexpr std::uint8_t configuration = destination::configuration;
constexpr std::uint8_t services = destination::services;

template <void (StagedConfig::*step)(Moment now)>
Refusal take(Exchange &exchange) {
    (exchange.card.config.*step)(exchange.now);
    return {};
}

Refusal reread(Exchange &exchange) {
    ++exchange.card.config_rereads;
    return {};
}

// The card comes back with its startup configuration, its ONTs register anew.
Refusal reload(Exchange &exchange) {
    exchange.card.config.reload(exchange.now);
    for (SwitchPort &port : exchange.card.ethernet_switch.ports) {
        for (Counter &counter : port.counters) {
            counter.reset(exchange.now);
        }
    }
    reregister_onts(exchange.card, -1, exchange.now);
    return {};
}

// The chassis-wide stores are addressed like cards.
constexpr SlotRange with_stores{0, chassis_slot::chassis_network};

constexpr RequestRule rules[] = {
    {command::commit_change, configuration, 32, take<&StagedConfig::commit>, {}, with_stores},
    {command::confirm_change, configuration, 32, take<&StagedConfig::confirm>, {}, with_stores},
    {command::rollback_change, configuration, 32, take<&StagedConfig::roll_back>, {}, with_stores},
    {command::set_to_default, configuration, 32, take<&StagedConfig::set_to_default>, {}, with_stores},
    {command::save_to_startup, configuration, 32, take<&StagedConfig::save>},
    {command::commit_change, services, 32, reread},
    {command::reload_slot, services, 32, reload},
};

}  // namespace

std::span<const RequestRule> configuration_requests() {
    return rules;
}

}  // namespace tarn::chassis
