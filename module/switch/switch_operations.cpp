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

template <std::size_t Size>
using SectionOfSlot = Section<Size> SwitchSections::*;

template <std::size_t Size>
std::uint8_t *get_section(int slot, SectionOfSlot<Size> section, std::uint16_t command_code,
                          const char *operation) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    return refresh(db->*section, Request<payload>(command_code, destination::ethernet_switch), operation,
                   slot);
}

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
    return get_section(slot, &SwitchSections::switch_general, command::get_switch_general_cfg, __func__);
}

int set_switch_general_cfg(int slot) {
    slot = slot_byte(slot);
    const SwitchSections *db = slot_sections<SwitchSections>(slot);
    return db == nullptr ? -1
                         : send_section<switch_general::size>(slot, db->switch_general.record.data(),
                                                              command::set_switch_general_cfg, __func__);
}

std::uint8_t *get_switch_qos_cfg(int slot) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    std::uint8_t *section = db->switch_qos.record.data();
    Stamp &stamp = db->switch_qos.stamp;
    const bool dropped = !stamp.filled;
    if (refresh(section, switch_qos::size, stamp,
                Request<payload>(command::get_switch_qos_cfg, destination::ethernet_switch), __func__,
                slot) &&
        dropped) {
        std::ranges::copy(db->sent_last_queues, section + switch_qos::size);
    }
    return section;
}

int set_switch_qos_cfg(int slot) {
    slot = slot_byte(slot);
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
    SwitchSections *db = slot_sections<SwitchSections>(slot_byte(slot));
    if (db != nullptr) {
        std::uint8_t *qos = db->switch_qos.record.data();
        leave_bits_to(qos, switch_qos::last_priority_queue, switch_qos::priority_mask);
        leave_bits_to(qos, switch_qos::last_dscp_queue, switch_qos::dscp_mask);
    }
}

std::uint8_t *get_switch_blacklist_cfg(int slot) {
    return get_section(slot, &SwitchSections::switch_blacklist, command::get_switch_blacklist_cfg, __func__);
}

int set_switch_blacklist_cfg(int slot) {
    slot = slot_byte(slot);
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
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->blacklist_rules_stamp.expired()) {
        const Request<payload> request(command::get_switch_blacklist_rules, destination::ethernet_switch);
        if (const Answer answer = ask(request, __func__, slot, payload + 4)) {
            read_rules(*db, answer, __func__);
            db->blacklist_rules_stamp.filled = true;
        }
        db->blacklist_rules_stamp.set();
    }
    return db->blacklist_rules[0][0].data();
}

int set_switch_blacklist_rules(int slot) {
    constexpr std::size_t most_rules = switch_blacklist::rules_per_list - 1;
    constexpr std::size_t first_rule = payload + 4;
    slot = slot_byte(slot);
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
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr || !is_switch_port(port)) {
        return nullptr;
    }
    Request<payload + 1> request(command::get_switch_port_counters, destination::services);
    request.put(payload, static_cast<std::uint8_t>(port));
    return refresh(db->port_counters[static_cast<std::size_t>(port)], request, __func__, slot);
}

int reset_switch_port_counters(int slot, int port) {
    slot = slot_byte(slot);
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
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr || !is_switch_port(port)) {
        return nullptr;
    }
    const UtilizationSections *profiles = chassis_sections<UtilizationSections>();
    const std::uint16_t interval = profiles != nullptr ? profiles->utilization_interval : 0;
    Request<payload + 3> request(command::get_switch_port_utilization, destination::services);
    request.put(payload, interval).put(payload + 2, static_cast<std::uint8_t>(port));
    return refresh(db->port_utilization[static_cast<std::size_t>(port)], request, __func__, slot);
}

void to_c64(struct counter64 *out, std::uint64_t in) {
    const std::uint64_t quotient = in >> 32 != 0 ? in / 0xFFFFFFFF : 0;
    out->high = static_cast<std::uint32_t>(quotient);
    out->low = static_cast<std::uint32_t>(in + quotient);
}
