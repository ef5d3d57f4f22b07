// The slot management database: per line card the last answer of every kind of query with its stamp, and the
// profiles database with what exists once in the chassis.
#ifndef TARN_MODULE_STORE_SLOT_DATABASE_H
#define TARN_MODULE_STORE_SLOT_DATABASE_H

#include <array>
#include <cstdint>

#include "module/common/cache.h"
#include "module/common/exports.h"
#include "module/store/commit_set.h"
#include "module/store/growable.h"
#include "wire/records/address.h"
#include "wire/records/channel.h"
#include "wire/records/firmware.h"
#include "wire/records/network.h"
#include "wire/records/olt.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"
#include "wire/records/profile.h"
#include "wire/records/switch.h"
#include "wire/records/template.h"

struct AutoUpdateEntry;

TARN_EXPORT void initialize_mandb(void);
// 0, or -1 without memory or for a slot outside 0-15. An existing database keeps its contents.
TARN_EXPORT int allocate_slot_mandb(int slot);
TARN_EXPORT void cleanup_mandb(int slot);
TARN_EXPORT int allocate_profiles_mandb(void);
TARN_EXPORT void cleanup_profiles_mandb(void);
TARN_EXPORT void age_slot_mandb(void);
// Null for a slot outside 0-15 or without a database.
TARN_EXPORT void *get_slot_mandb(int slot);
TARN_EXPORT void *get_profiles_mandb(void);

namespace tarn {

template <std::size_t Size>
using Record = std::array<std::uint8_t, Size>;
template <std::size_t Size, std::size_t Count>
using Records = std::array<Record<Size>, Count>;

// One cached answer.
template <std::size_t Size>
struct Section {
    Record<Size> record;
    Stamp stamp;
};
template <std::size_t Size, std::size_t Count>
using Sections = std::array<Section<Size>, Count>;

// Values of one ONT in one performance-monitoring table: those of key k begin at values[k * positions].
template <int Keys, int Positions>
struct CounterSection {
    static constexpr int keys = Keys;
    static constexpr int positions = Positions;
    std::array<std::uint8_t, serial_size> serial;
    Stamp stamp;
    std::array<std::uint32_t, static_cast<std::size_t>(Keys *Positions)> values;
};

struct SlotDatabase {
    // PON channels and OLT
    Records<channel_state::size, channels_per_slot> channel_states;
    std::array<Stamp, channels_per_slot> channel_state_stamps;
    Stamp channels_lite_stamp;
    Section<olt_state::size> olt_state;
    Section<128> hardware_information;
    Section<64> version_information;

    // ONTs; the per-ONT sections are indexed by position in the ONT list
    Records<ont_list::size, max_onts> ont_list;
    Stamp ont_list_stamp;
    Stamp all_ont_list_stamp;
    std::array<std::uint16_t, max_onts> ont_list_by_serial;  // positions
    Sections<ont_state::size, max_onts> ont_states;
    Sections<ont_uni_ports::size, max_onts> ont_uni_ports;
    Sections<ont_i2c::size, max_onts> ont_i2c;
    Sections<22, max_onts> ont_downstream_ber;
    std::array<std::uint8_t, serial_size> services_utilization_serial;  // whose figures follow
    Section<512> ont_services_utilization;
    std::array<std::uint8_t, serial_size> connections_serial;
    std::uint8_t connections_count;
    Section<ont_connections::size> connections;

    // Addresses and sessions
    Growable<ont_address::size> addresses;
    std::uint16_t address_count;
    Growable<sizeof(std::uint32_t)> addresses_by_serial;  // positions
    Stamp addresses_stamp;
    Growable<1> address_text;  // NUL-terminated
    std::size_t address_text_length;
    Stamp address_text_stamp;
    Growable<pppoe_session::size> pppoe_sessions;
    std::uint16_t pppoe_session_count;
    Stamp pppoe_stamp;
    Stamp igmp_stamp;

    // Firmware update scheduler
    Growable<update_task::size> update_tasks;
    std::uint32_t update_task_count;
    Stamp update_tasks_stamp;

    // Configuration
    Sections<olt_channel_config::size, channels_per_slot> olt_channel_configs;
    Record<olt_config::size + 2> olt_config;  // the hold flag behind it
    Stamp olt_config_stamp;
    Section<network_config::size> network_config;
    Records<ont_config::size, ont_config::count> ont_configs;
    std::array<std::uint16_t, ont_config::count> ont_configs_by_serial;  // store indices
    Stamp ont_configs_stamp;

    // Switch
    Section<vlan_list::size> vlan_list;
    Section<vlan_list::size> operational_vlan_list;
    std::array<std::uint8_t *, switch_vlans> vlans;  // balloc'ed records by board VLAN number, or null
    std::array<Stamp, switch_vlans> vlan_stamps;
    Stamp vlans_block_stamp;
    CommitSet<switch_vlans> unsent_vlans;                                   // edited by the SET under way
    std::array<std::uint8_t *, operational_vlans_limit> operational_vlans;  // by number as the card lists it
    std::array<Stamp, operational_vlans_limit> operational_vlan_stamps;
    Section<switch_general::size> switch_general;
    Section<switch_qos::size + 2> switch_qos;  // with the queues that were written last behind it
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

    // ONT performance monitoring
    CounterSection<4, 30> ethernet_counters;
    CounterSection<16, 2> gal_ethernet_counters;
    CounterSection<1, 6> fec_counters;
    CounterSection<10, 4> gem_port_counters_ds;
    CounterSection<10, 4> gem_port_counters_us;
    CounterSection<16, 4> crossconnect_counters_ds;
    CounterSection<16, 6> crossconnect_counters_us;
    CounterSection<5, 15> ethernet_frame_counters_ds;
    CounterSection<5, 15> ethernet_frame_counters_us;

    timespec ageing;  // allocation time plus 120 s; read by nothing
};

struct ProfilesDatabase {
    Records<management_profile::size, management_profile::count> management_profiles;
    Stamp management_stamp;
    Records<crossconnect_profile::size, crossconnect_profile::count> crossconnect_profiles;
    Stamp crossconnect_stamp;
    Records<shaping_profile::size, shaping_profile::count> shaping_profiles;
    Stamp shaping_stamp;
    Records<alloc_profile::size, alloc_profile::count> alloc_profiles;
    Stamp alloc_stamp;
    Records<ports_profile::size, ports_profile::count> ports_profiles;
    Stamp ports_stamp;
    Records<ont_template::size, ont_template::count> templates;
    Stamp templates_stamp;
    CommitSet<ont_template::count> templates_to_commit;
    Records<olt_address_table_profile::size, olt_address_table_profile::count> olt_address_table_profiles;
    Stamp olt_address_table_stamp;
    Records<olt_vlan_profile::size, olt_vlan_profile::count> olt_vlan_profiles;
    Stamp olt_vlan_stamp;
    std::array<AutoUpdateEntry *, 1024> auto_update_entries;  // balloc'ed
    std::uint32_t auto_update_count;
    Stamp auto_update_stamp;
    Section<network_config::size> common_network_config;
    Section<alarms_config::size> alarms_config;
    std::uint16_t utilization_interval;
};

// Operations take a slot modulo 256.
constexpr int slot_byte(int slot) {
    return slot & 0xFF;
}

SlotDatabase *slot_database(int slot);
ProfilesDatabase *profiles_database();

}  // namespace tarn

#endif
