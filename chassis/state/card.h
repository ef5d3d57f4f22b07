// A line card, or one of the chassis' own services, which are addressed like cards and have no ONTs: its
// state, one record a topic.
#ifndef TARN_CHASSIS_STATE_CARD_H
#define TARN_CHASSIS_STATE_CARD_H

#include "chassis/state/addresses.h"
#include "chassis/state/channels.h"
#include "chassis/state/firmware.h"
#include "chassis/state/identity.h"
#include "chassis/state/onts.h"
#include "chassis/state/scenario.h"
#include "chassis/state/staged_config.h"
#include "chassis/state/switch_traffic.h"

namespace tarn::chassis {

struct Card {
    int slot = 0;
    std::uint64_t seed = 0;
    std::uint32_t start_time = 0;  // seconds since 1970 when the chassis starts
    Moment reregister_time = 0;    // how long an ONT takes to come back
    Identity identity;
    Channels channels;
    std::vector<Ont> onts;  // in list order
    std::vector<AddressEntry> addresses;
    std::vector<PppoeSession> pppoe_sessions;
    StagedConfig config;
    std::uint32_t config_rereads = 0;
    SwitchTraffic ethernet_switch;
    Firmware firmware;
};

Card make_card(const Scenario &scenario, int slot, const CardPlan &plan);

int working_onts(const Card &card, int channel, Moment now);
// Takes down every ONT of the channel; all channels' with a negative one.
void reregister_onts(Card &card, int channel, Moment now);

}  // namespace tarn::chassis

#endif
