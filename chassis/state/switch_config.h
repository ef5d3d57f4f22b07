// What can be configured on a line card's Ethernet switch.
#ifndef TARN_CHASSIS_STATE_SWITCH_CONFIG_H
#define TARN_CHASSIS_STATE_SWITCH_CONFIG_H

#include <map>
#include <vector>

#include "chassis/state/record_bytes.h"
#include "wire/records/switch.h"

namespace tarn::chassis {

using VlanRecord = RecordBytes<vlan_record::size>;
using AclRule = RecordBytes<switch_blacklist::rule_size>;

struct SwitchConfig {
    std::map<std::uint16_t, VlanRecord> vlans;  // by number, the identifier minus 1
    RecordBytes<switch_general::size> general{};
    RecordBytes<switch_qos::size> qos{};
    RecordBytes<switch_blacklist::size> acl_lists{};
    std::vector<AclRule> acl_rules;

    bool operator==(const SwitchConfig &) const = default;
};

// With this many VLANs, the first of them VLAN 1.
SwitchConfig make_switch_config(std::uint64_t seed, int slot, int vlans);

}  // namespace tarn::chassis

#endif
