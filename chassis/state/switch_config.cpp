#include "chassis/state/switch_config.h"

#include <string>

#include "chassis/state/generator.h"
#include "wire/records/switch.h"

namespace tarn::chassis {
namespace {

constexpr std::uint32_t all_ports = 0x001FFFFF;

VlanRecord make_vlan(Generator &generator, int identifier) {
    VlanRecord vlan{};
    put(vlan, vlan_record::name, identifier == 1 ? "default" : "vlan-" + std::to_string(identifier));
    put(vlan, vlan_record::present, 1);
    put(vlan, vlan_record::first_ports,
        identifier == 1 ? all_ports : static_cast<std::int64_t>(generator.bits() & all_ports));
    put(vlan, vlan_record::second_ports, static_cast<std::int64_t>(generator.bits() & all_ports));
    put(vlan, vlan_record::first_groups, generator.between(0, 1));
    put(vlan, vlan_record::flag_46, generator.between(0, 1));
    put(vlan, vlan_record::value_50, 3);
    put(vlan, vlan_record::value_52, 1);
    put(vlan, vlan_record::value_53, 125);
    put(vlan, vlan_record::value_55, 10);
    put(vlan, vlan_record::value_56, 2);
    return vlan;
}

// Every priority and every code point in one queue; the last priorities share the last queue.
void spread_traffic(RecordBytes<switch_qos::size> &qos) {
    for (int priority = 0; priority < 8; ++priority) {
        const int queue = std::min(priority, switch_qos::queues - 1);
        put(qos, switch_qos::priority_mask(queue),
            load_integer(qos.data(), switch_qos::priority_mask(queue)) | 1 << priority);
        store_le64(qos.data() + switch_qos::dscp_mask(queue).offset,
                   load_le64(qos.data() + switch_qos::dscp_mask(queue).offset) | 0xFFULL << 8 * priority);
    }
}

}  // namespace

SwitchConfig make_switch_config(std::uint64_t seed, int slot, int vlans) {
    Generator generator(seed, slot, "switch", 0);
    SwitchConfig config;
    for (int i = 0; i < vlans; ++i) {
        // VLAN 1, then as far apart as the identifiers allow, up to every tenth one.
        const int number = i * std::min(10, switch_vlans / vlans);
        config.vlans[static_cast<std::uint16_t>(number)] = make_vlan(generator, number + 1);
    }
    for (std::uint8_t &byte : config.general) {
        byte = static_cast<std::uint8_t>(generator.bits());
    }
    put(config.general, switch_general::igmp_snooping, 1);
    put(config.general, switch_general::p2p, 0);
    spread_traffic(config.qos);
    put(config.qos, switch_qos::value_64, 1);
    put(config.qos, switch_qos::flag_65, 1);
    for (int list = 0; list < 2; ++list) {
        AclRule rule{};
        put(rule, switch_blacklist::rule_list, list);
        config.acl_rules.push_back(rule);
    }
    return config;
}

}  // namespace tarn::chassis
