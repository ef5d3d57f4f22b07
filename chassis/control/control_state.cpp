// Reading and changing single pieces of a card's state over the control socket.
#include <algorithm>
#include <numeric>

#include "chassis/control/control.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"
#include "wire/records/switch.h"

namespace tarn::chassis {
namespace {

Channel &channel_of(Card &card, const Json &request) {
    return card.channels[static_cast<std::size_t>(number(request, "channel", 0, channels_per_slot - 1))];
}

Serial serial_of(const Json &request) {
    const Bytes bytes = from_hex(text(request, "serial"));
    Serial serial{};
    if (bytes.size() != serial.size()) {
        throw ControlError("a serial has 8 bytes");
    }
    std::ranges::copy(bytes, serial.begin());
    return serial;
}

Ont &ont_of(Card &card, const Json &request) {
    Ont *ont = find_ont(card.onts, serial_of(request));
    if (ont == nullptr) {
        throw ControlError("no such ONT");
    }
    return *ont;
}

// What the working configuration of the card provisions.
Provisioning &provisioned(Card &card, Moment now) {
    return card.config.working(now).provisioning;
}

// Record `index` of a list that only some slots have.
template <class Records>
std::span<std::uint8_t> indexed_record(Records &records, const Json &request) {
    if (records.empty()) {
        throw ControlError("the slot has no such records");
    }
    const auto last = static_cast<std::int64_t>(records.size()) - 1;
    return records[static_cast<std::size_t>(number(request, "index", 0, last))];
}

// The stored record of the ONT with a serial, or at an index of the store.
std::span<std::uint8_t> ont_config_of(Card &card, Moment now, const Json &request) {
    auto &records = provisioned(card, now).onts;
    if (!request.contains("serial")) {
        return indexed_record(records, request);
    }
    const Serial serial = serial_of(request);
    const auto found = std::ranges::find_if(records, [&](const auto &record) {
        return load_integer(record.data(), ont_config::in_use) != 0 &&
               std::equal(serial.begin(), serial.end(), record.begin() + ont_config::serial.offset);
    });
    if (found == records.end()) {
        throw ControlError("no ONT with this serial is configured");
    }
    return *found;
}

std::span<std::uint8_t> profile_of(Card &card, Moment now, const Json &request) {
    ProfileStore &store = provisioned(card, now).profiles;
    const std::string name = text(request, "kind");
    for (std::size_t kind = 0; kind < profile_kind_count; ++kind) {
        if (profile_kinds[kind]->name == name && !store[kind].empty()) {
            const auto index = number(request, "index", 0, profile_kinds[kind]->count - 1);
            return profile_record(store, kind, static_cast<int>(index));
        }
    }
    throw ControlError("the slot has no profiles of kind \"" + name + '"');
}

// A record's bytes as held, for reading and for writing some of them in place.
using RecordOf = std::span<std::uint8_t> (*)(Card &card, Moment now, const Json &request);

struct RecordItem {
    std::string_view name;
    RecordOf record;
};

constexpr RecordItem records[] = {
    {"olt-state",
     [](Card &card, Moment, const Json &) { return std::span<std::uint8_t>(card.identity.olt); }},
    {"channel-record",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(channel_of(card, request).state);
     }},
    {"channel-config",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(channel_of(card, request).config);
     }},
    {"ont-config", ont_config_of},
    {"ont-template",
     [](Card &card, Moment now, const Json &request) {
         return indexed_record(provisioned(card, now).templates, request);
     }},
    {"profile", profile_of},
    {"network-config", [](Card &card, Moment now,
                          const Json &) { return std::span<std::uint8_t>(provisioned(card, now).network); }},
    {"olt-config", [](Card &card, Moment now,
                      const Json &) { return std::span<std::uint8_t>(provisioned(card, now).olt); }},
    {"alarms-config", [](Card &card, Moment now,
                         const Json &) { return std::span<std::uint8_t>(provisioned(card, now).alarms); }},
    {"ont-list-record",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(ont_of(card, request).list);
     }},
    {"ont-state-record",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(ont_of(card, request).state);
     }},
    {"ont-i2c-record",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(ont_of(card, request).i2c);
     }},
    {"ont-uni-ports-record",
     [](Card &card, Moment, const Json &request) {
         return std::span<std::uint8_t>(ont_of(card, request).uni_ports);
     }},
};

Json channel_json(Card &card, Moment now, const Json &request) {
    const Channel &channel = channel_of(card, request);
    const int number_of_channel = static_cast<int>(*number(request, "channel"));
    return {{"working_onts", working_onts(card, number_of_channel, now)},
            {"received", static_cast<std::uint32_t>(channel.received.value(now))},
            {"activation_mode", channel.activation_auth},
            {"enabled", load_integer(channel.config.data(), olt_channel_config::enabled)},
            {"reconfigurations", channel.reconfigurations},
            {"counter_resets", channel.counter_resets}};
}

Json ont_json(const Ont &ont, Moment now) {
    return {{"serial", to_hex(ont.serial)},
            {"channel", ont.channel},
            {"id", ont.id},
            {"code", ont.code_at(now)},
            {"enabled", ont.enabled},
            {"errors", static_cast<std::uint16_t>(ont.errors.value(now))},
            {"reconfigurations", ont.reconfigurations},
            {"reboots", ont.reboots},
            {"defaults", ont.defaults},
            {"counter_resets", ont.counter_resets}};
}

Json ont_firmware_json(Card &card, Moment now, const Json &request) {
    const Ont &ont = ont_of(card, request);
    return {{"updates", ont.update.count},
            {"file", ont.update.file_name},
            {"progress", update_progress(ont, now)}};
}

Json firmware_json(Card &card, Moment, const Json &) {
    return {{"card_updates", card.firmware.card_updates},
            {"rule_reads", card.firmware.rule_reads},
            {"tasks", card.firmware.tasks.size()}};
}

Json onts_json(Card &card, Moment now, const Json &) {
    Json list = Json::array();
    for (const Ont &ont : card.onts) {
        list.push_back(ont_json(ont, now));
    }
    return {{"onts", list}};
}

Json one_ont_json(Card &card, Moment now, const Json &request) {
    return ont_json(ont_of(card, request), now);
}

Json counts_json(Card &card, Moment, const Json &) {
    return {{"onts", card.onts.size()},
            {"addresses", card.addresses.size()},
            {"pppoe_sessions", card.pppoe_sessions.size()},
            {"mac_addresses", card.ethernet_switch.macs.size()}};
}

Json config_json(Card &card, Moment now, const Json &) {
    const StagedConfig::Status status = card.config.status(now);
    Json result{{"edited", status.edited},         {"saved", status.saved},
                {"commits", status.commits},       {"confirmations", status.confirmations},
                {"roll_backs", status.roll_backs}, {"saves", status.saves},
                {"defaults", status.defaults},     {"rereads", card.config_rereads},
                {"reloads", status.reloads}};
    if (status.confirm_within) {
        result["confirm_within_ms"] = *status.confirm_within;
    }
    return result;
}

// The records of the working and of the running configuration, by VLAN identifier.
Json vlans_json(Card &card, Moment now, const Json &) {
    const auto list = [](const SwitchConfig &config) {
        Json vlans = Json::object();
        for (const auto &[vlan_number, record] : config.vlans) {
            vlans[std::to_string(vlan_number + 1)] = to_hex(record);
        }
        return vlans;
    };
    return {{"working", list(card.config.working(now).ethernet_switch)},
            {"running", list(card.config.running(now).ethernet_switch)}};
}

// A section of the working configuration.
template <auto section>
Json switch_section_json(Card &card, Moment now, const Json &) {
    return {{"hex", to_hex(card.config.working(now).ethernet_switch.*section)}};
}

Json switch_ports_json(Card &card, Moment now, const Json &) {
    Json ports = Json::array();
    for (const SwitchPort &port : card.ethernet_switch.ports) {
        ports.push_back(
            {{"counters", to_hex(port_counters_record(port, now))}, {"counter_resets", port.counter_resets}});
    }
    return {{"ports", ports}};
}

struct ReadItem {
    std::string_view name;
    Json (*read)(Card &card, Moment now, const Json &request);
};

constexpr ReadItem read_items[] = {{"channel", channel_json},
                                   {"onts", onts_json},
                                   {"ont", one_ont_json},
                                   {"counts", counts_json},
                                   {"config", config_json},
                                   {"vlans", vlans_json},
                                   {"switch-general", switch_section_json<&SwitchConfig::general>},
                                   {"switch-qos", switch_section_json<&SwitchConfig::qos>},
                                   {"switch-ports", switch_ports_json},
                                   {"firmware", firmware_json},
                                   {"ont-firmware", ont_firmware_json}};

std::int64_t value(const Json &request, std::int64_t highest) {
    return number(request, "value", 0, highest);
}

void need_onts(const Card &card, std::int64_t count) {
    if (card.onts.empty() && count > 0) {
        throw ControlError("the card has no ONTs");
    }
}

void set_addresses(Card &card, Moment, const Json &request) {
    const std::int64_t count = value(request, max_addresses);
    need_onts(card, count);
    card.addresses = make_addresses(card.seed, card.slot, card.onts, static_cast<int>(count));
}

void make_sessions(Card &card, std::size_t count, Moment now) {
    const auto vlans = static_cast<int>(card.config.running(now).ethernet_switch.vlans.size());
    card.pppoe_sessions =
        make_pppoe_sessions(card.seed, card.slot, card.onts, static_cast<int>(count), vlans);
}

void set_sessions(Card &card, Moment now, const Json &request) {
    const std::int64_t count = value(request, max_pppoe_sessions);
    need_onts(card, count);
    make_sessions(card, static_cast<std::size_t>(count), now);
}

// New ONTs, and the addresses and sessions behind them: as many as before, none without ONTs.
void set_onts(Card &card, Moment now, const Json &request) {
    card.onts = make_onts(card.seed, card.slot, spread_onts(static_cast<int>(value(request, max_onts))),
                          card.start_time);
    card.addresses = make_addresses(card.seed, card.slot, card.onts, static_cast<int>(card.addresses.size()));
    make_sessions(card, card.pppoe_sessions.size(), now);
}

void set_ont_code(Card &card, Moment, const Json &request) {
    Ont &ont = ont_of(card, request);
    ont.code = static_cast<std::uint16_t>(value(request, 65535));
    ont.registering_until = 0;
}

// 0 takes the ONT down, 1 lets it register again.
void set_ont_signal(Card &card, Moment now, const Json &request) {
    Ont &ont = ont_of(card, request);
    const bool signal = value(request, 1) == 1;
    if (!signal) {
        lose_signal(ont, now, card.start_time);
    } else if (!ont.has_signal) {
        ont.has_signal = true;
        reregister(ont, now, card.reregister_time, card.start_time);
    }
}

void set_optical_power(Card &card, Moment, const Json &request) {
    ont_of(card, request).optical_power = static_cast<double>(number(request, "value", -500, 200)) / 10;
}

void set_activation_mode(Card &card, Moment, const Json &request) {
    channel_of(card, request).activation_auth = static_cast<std::uint16_t>(value(request, 65535));
}

void set_channel_enabled(Card &card, Moment, const Json &request) {
    put(channel_of(card, request).config, olt_channel_config::enabled, value(request, 65535));
}

void set_received(Card &card, Moment now, const Json &request) {
    Counter &received = channel_of(card, request).received;
    received.base = static_cast<std::uint64_t>(value(request, UINT32_MAX));
    received.since = now;
}

void set_mac_addresses(Card &card, Moment, const Json &request) {
    const auto count = static_cast<int>(value(request, switch_mac::max_entries));
    card.ethernet_switch.macs = make_switch_traffic(card.seed, card.slot, count).macs;
}

struct WriteItem {
    std::string_view name;
    void (*write)(Card &card, Moment now, const Json &request);
};

constexpr WriteItem write_items[] = {
    {"onts", set_onts},
    {"addresses", set_addresses},
    {"pppoe-sessions", set_sessions},
    {"mac-addresses", set_mac_addresses},
    {"ont-code", set_ont_code},
    {"ont-signal", set_ont_signal},
    {"optical-power", set_optical_power},
    {"activation-mode", set_activation_mode},
    {"channel-enabled", set_channel_enabled},
    {"received", set_received},
};

template <class Item, std::size_t size>
const Item *find_item(const Item (&items)[size], const std::string &name) {
    const auto *const found =
        std::ranges::find_if(items, [&](const Item &item) { return item.name == name; });
    return found == std::end(items) ? nullptr : found;
}

}  // namespace

Json get_state(Card &card, Moment now, const Json &request) {
    const std::string name = text(request, "item");
    if (const RecordItem *item = find_item(records, name)) {
        return {{"hex", to_hex(item->record(card, now, request))}};
    }
    if (const ReadItem *item = find_item(read_items, name)) {
        return item->read(card, now, request);
    }
    throw ControlError("unknown item \"" + name + '"');
}

void set_state(Card &card, Moment now, const Json &request) {
    const std::string name = text(request, "item");
    if (const RecordItem *item = find_item(records, name)) {
        const std::span<std::uint8_t> record = item->record(card, now, request);
        const Bytes bytes = from_hex(text(request, "hex"));
        const auto offset =
            static_cast<std::size_t>(number(request, "offset", 0, static_cast<std::int64_t>(record.size())));
        if (bytes.size() > record.size() - offset) {
            throw ControlError("the record has " + std::to_string(record.size()) + " bytes");
        }
        std::ranges::copy(bytes, record.begin() + static_cast<std::ptrdiff_t>(offset));
        return;
    }
    if (const WriteItem *item = find_item(write_items, name)) {
        item->write(card, now, request);
        return;
    }
    throw ControlError("unknown item \"" + name + '"');
}

}  // namespace tarn::chassis
