// What a card's Ethernet switch is configured to and has counted and learnt.
#ifndef TARN_MODULE_STORE_SWITCH_SECTIONS_H
#define TARN_MODULE_STORE_SWITCH_SECTIONS_H

#include "module/store/commit_set.h"
#include "module/store/growable.h"
#include "module/store/sections.h"
#include "wire/records/switch.h"

namespace tarn {

struct SwitchSections {
    Section<vlan_list::size> vlan_list;
    Section<vlan_list::size> operational_vlan_list;
    std::array<std::uint8_t *, switch_vlans> vlans;  // balloc'ed records by board VLAN number, or null
    std::array<Stamp, switch_vlans> vlan_stamps;
    Stamp vlans_block_stamp;
    CommitSet<switch_vlans> unsent_vlans;                                   // edited by the SET under way
    std::array<std::uint8_t *, operational_vlans_limit> operational_vlans;  // by number as the card lists it
    std::array<Stamp, operational_vlans_limit> operational_vlan_stamps;
    Section<switch_general::size> switch_general;
    Section<switch_qos::size + 2> switch_qos;  // with the queues that were written last at its end
    Record<2> sent_last_queues;                // those of them that the card has taken
    Section<switch_blacklist::size> switch_blacklist;
    std::array<Records<switch_blacklist::rule_size, switch_blacklist::rules_per_list>,
               switch_blacklist::lists>
        blacklist_rules;
    std::array<std::uint32_t, switch_blacklist::lists> blacklist_rule_counts;
    Stamp blacklist_rules_stamp;
    Sections<switch_port_counters::size, switch_ports> port_counters;
    Sections<switch_port_utilization::size, switch_ports> port_utilization;
    Growable<switch_mac::size> mac_table;
    std::uint32_t mac_count;
    Stamp mac_stamp;
    Growable<1> mac_text;  // NUL-terminated
    std::size_t mac_text_length;
    Stamp mac_text_stamp;

    void release();
};

}  // namespace tarn

#endif
