// What is provisioned on a line card, or on one of the chassis' own services: ONTs, profiles and templates,
// networks, alarms.
#ifndef TARN_CHASSIS_STATE_PROVISIONING_H
#define TARN_CHASSIS_STATE_PROVISIONING_H

#include <vector>

#include "chassis/state/onts.h"
#include "chassis/state/profiles.h"
#include "chassis/state/record_bytes.h"
#include "wire/records/network.h"
#include "wire/records/olt.h"
#include "wire/records/ont_config.h"
#include "wire/records/template.h"

namespace tarn::chassis {

struct Provisioning {
    std::vector<RecordBytes<ont_config::size>> onts;         // of a line card, in store order
    std::vector<RecordBytes<ont_template::size>> templates;  // of the profile store
    ProfileStore profiles;                                   // of the profile store
    OltProfileLists olt_profiles;                            // of the OLT profiles' store
    RecordBytes<network_config::size> network{};
    RecordBytes<olt_config::size> olt{};
    RecordBytes<alarms_config::size> alarms{};

    bool operator==(const Provisioning &) const = default;
};

// ONTs that are configured where they are listed: up to 64 a channel, and as many again as the records after
// the last channel take. `profiles` of each kind, and of the templates, exist.
Provisioning make_provisioning(std::uint64_t seed, int slot, const std::vector<Ont> &onts, int profiles);

// The payload of the answer that carries the image of a configuration: compressed, its length after it.
std::vector<std::uint8_t> image_payload(const Provisioning &provisioning);

}  // namespace tarn::chassis

#endif
