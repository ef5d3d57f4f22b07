#include "module/switch/switch_operations.h"

#include <algorithm>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/sent_section.h"
#include "module/store/switch_sections.h"
#include "module/store/utilization_sections.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr Query general{command::get_switch_general_cfg, destination::ethernet_switch, usual_pace,
                        &SwitchSections::switch_general};
constexpr Query qos_settings{command::get_switch_qos_cfg, destination::ethernet_switch, usual_pace,
                             &SwitchSections::switch_qos};
constexpr Query blacklist{command::get_switch_blacklist_cfg, destination::ethernet_switch, usual_pace,
                          &SwitchSections::switch_blacklist};
constexpr Query acl_rules{command::get_switch_blacklist_rules, destination::ethernet_switch, usual_pace,
                          &SwitchSections::blacklist_rules_stamp};
constexpr Query counters{command::get_switch_port_counters, destination::services, usual_pace,
                         &SwitchSections::port_counters};
constexpr Query utilization{command::get_switch_port_utilization, destination::services, usual_pace,
                            &SwitchSections::port_utilization};

template <std::size_t Size>
int send_section(int slot, const std::uint8_t *section, std::uint16_t command_code, const char *operation) {
    Request<payload + Size> request(command_code, destination::ethernet_switch);
    request.put_bytes(payload, section, Size);
    return act(request, operation, slot);
}

bool is_switch_port(int port) {
    return port >= 0 && port < switch_ports;
}

// Takes from every queue but the one in `last_queue` the bits of that one's mask.
void leave_bits_to(std::uint8_t *qos, Field last_queue, Field (*mask)(int queue)) {
    const auto owner = static_cast<int>(load_integer(qos, last_queue));
    if (owner >= switch_qos::queues) {
        return;
    }
    const std::int64_t owned = load_integer(qos, mask(owner));
    for (int queue = 0; queue < switch_qos::queues; ++queue) {
        if (queue != owner) {
            store_integer(qos, mask(queue), load_integer(qos, mask(queue)) & ~owned);
        }
    }
}

void read_rules(SwitchSections &db, const Answer &answer, const char *operation) {
    constexpr std::size_t first_rule = payload + 4;
    const std::size_t stated = answer.get<std::uint32_t>(payload);
    const std::size_t count = answer.records(stated, first_rule, switch_blacklist::rule_size);
    if (count != stated) {
        log_add(log_error, "%s : %zu rules stated, %zu taken\n", operation, stated, count);
    }
    db.blacklist_rule_counts.fill(0);
    for (std::size_t i = 0; i < count; ++i) {
        Record<switch_blacklist::rule_size> rule;
        answer.copy(rule.data(), first_rule + i * rule.size(), rule.size());
        const auto list = static_cast<std::size_t>(load_integer(rule.data(), switch_blacklist::rule_list));
        if (list >= switch_blacklist::lists) {
            continue;
        }
        std::uint32_t &rules = db.blacklist_rule_counts[list];
        if (rules < switch_blacklist::rules_per_list) {
            db.blacklist_rules[list][rules++] = rule;
        }
    }
}

}  // namespace

std::uint8_t *get_switch_general_cfg(int slot) {
    return refresh(general, slot, __func__);
}

int set_switch_general_cfg(int slot) {
    const SwitchSections *db = slot_sections<SwitchSections>(slot);
    return db == nullptr ? -1
                         : send_section<switch_general::size>(slot, db->switch_general.record.data(),
                                                              command::set_switch_general_cfg, __func__);
}

std::uint8_t *get_switch_qos_cfg(int slot) {
    auto *sections = slot_sections<SwitchSections>(slot);
    if (sections == nullptr) {
        return nullptr;
    }
    const bool dropped = !sections->switch_qos.stamp.filled;
    std::uint8_t *qos = refresh(qos_settings, slot, __func__, everything, switch_qos::size);
    if (dropped && sections->switch_qos.stamp.filled) {
        std::ranges::copy(sections->sent_last_queues, qos + switch_qos::size);
    }
    return qos;
}

int set_switch_qos_cfg(int slot) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    normalize_qos_queries(slot);
    auto &[section, stamp] = db->switch_qos;
    stamp.clear();
    const int result = settle(
        stamp, send_section<switch_qos::size>(slot, section.data(), command::set_switch_qos_cfg, __func__));
    if (result == 0) {
        std::copy_n(section.begin() + switch_qos::size, db->sent_last_queues.size(),
                    db->sent_last_queues.begin());
    }
    return result;
}

void normalize_qos_queries(int slot) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db != nullptr) {
        std::uint8_t *qos = db->switch_qos.record.data();
        leave_bits_to(qos, switch_qos::last_priority_queue, switch_qos::priority_mask);
        leave_bits_to(qos, switch_qos::last_dscp_queue, switch_qos::dscp_mask);
    }
}

std::uint8_t *get_switch_blacklist_cfg(int slot) {
    return refresh(blacklist, slot, __func__);
}

int set_switch_blacklist_cfg(int slot) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    db->switch_blacklist.stamp.clear();
    auto &[section, stamp] = db->switch_blacklist;
    return settle(stamp, send_section<switch_blacklist::size>(slot, section.data(),
                                                              command::set_switch_blacklist_cfg, __func__));
}

std::uint8_t *get_switch_blacklist_rules(int slot) {
    auto *sections = refresh(acl_rules, slot, everything, payload + 4, __func__, read_rules);
    return sections != nullptr ? sections->blacklist_rules[0][0].data() : nullptr;
}

int set_switch_blacklist_rules(int slot) {
    constexpr std::size_t most_rules = switch_blacklist::rules_per_list - 1;
    constexpr std::size_t first_rule = payload + 4;
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    Request<first_rule + switch_blacklist::rules_per_list * switch_blacklist::rule_size> request(
        command::set_switch_blacklist_rules, destination::ethernet_switch);
    std::uint32_t sent = 0;
    for (std::size_t list = 0; list < switch_blacklist::lists; ++list) {
        for (std::size_t i = 0; i < db->blacklist_rule_counts[list]; ++i) {
            const std::uint8_t *rule = db->blacklist_rules[list][i].data();
            if (load_integer(rule, switch_blacklist::rule_list) == switch_blacklist::deleted_rule) {
                continue;
            }
            if (sent == most_rules) {
                log_add(log_error, "%s : exceeded max number of rules!\n", __func__);
                return -1;
            }
            request.put_bytes(first_rule + sent * switch_blacklist::rule_size, rule,
                              switch_blacklist::rule_size);
            ++sent;
        }
    }
    request.put(payload, sent);
    const int result = act(request, __func__, slot);
    db->blacklist_rules_stamp.clear();
    return settle(db->blacklist_rules_stamp, result);
}

std::uint8_t *get_switch_port_counters(int slot, int port) {
    return refresh(counters, slot, port, Selector<1>{static_cast<std::uint8_t>(port)}, __func__);
}

int reset_switch_port_counters(int slot, int port) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr || !is_switch_port(port)) {
        return 1;
    }
    Request<payload + 1> request(command::reset_switch_port_counters, destination::services);
    request.put(payload, static_cast<std::uint8_t>(port));
    if (act(request, __func__, slot) != 0) {
        return 1;
    }
    db->port_counters[static_cast<std::size_t>(port)].stamp.clear();
    return 0;
}

std::uint8_t *get_switch_port_utilization(int slot, int port) {
    const auto *settings = chassis_sections<UtilizationSections>();
    Selector<3> selector{0, 0, static_cast<std::uint8_t>(port)};
    store_le16(selector.data(), settings != nullptr ? settings->utilization_interval : std::uint16_t{0});
    return refresh(utilization, slot, port, selector, __func__);
}

void to_c64(struct counter64 *out, std::uint64_t in) {
    const std::uint64_t quotient = in >> 32 != 0 ? in / 0xFFFFFFFF : 0;
    out->high = static_cast<std::uint32_t>(quotient);
    out->low = static_cast<std::uint32_t>(in + quotient);
}
