#include "chassis/state/card.h"

#include <algorithm>

namespace tarn::chassis {

Card make_card(const Scenario &scenario, int slot, const CardPlan &plan) {
    Card card;
    card.slot = slot;
    card.seed = scenario.seed;
    card.start_time = scenario.start_time;
    card.reregister_time = static_cast<Moment>(scenario.reregister_seconds) * 1000;
    card.identity = make_identity(scenario.seed, slot);
    card.channels = make_channels(scenario.seed, slot);
    card.onts = make_onts(scenario.seed, slot, plan.onts_per_channel, scenario.start_time);
    card.addresses = make_addresses(scenario.seed, slot, card.onts, plan.addresses);
    card.pppoe_sessions =
        make_pppoe_sessions(scenario.seed, slot, card.onts, plan.pppoe_sessions, plan.vlans);
    card.config = StagedConfig({make_switch_config(scenario.seed, slot, plan.vlans),
                                make_provisioning(scenario.seed, slot, card.onts, scenario.profiles)},
                               static_cast<Moment>(scenario.confirm_seconds) * 1000);
    card.ethernet_switch = make_switch_traffic(scenario.seed, slot, plan.mac_addresses);
    card.firmware.tftp_root = scenario.tftp_root;
    return card;
}

int working_onts(const Card &card, int channel, Moment now) {
    return static_cast<int>(std::ranges::count_if(card.onts, [&](const Ont &ont) {
        return ont.channel == channel && ont.code_at(now) == ont_code::working;
    }));
}

void reregister_onts(Card &card, int channel, Moment now) {
    for (Ont &ont : card.onts) {
        if (channel < 0 || ont.channel == channel) {
            reregister(ont, now, card.reregister_time, card.start_time);
        }
    }
}

}  // namespace tarn::chassis
