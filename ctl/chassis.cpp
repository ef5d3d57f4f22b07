#include "ctl/chassis.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "ctl/commands.h"
#include "ctl/serial.h"
#include "wire/protocol.h"

namespace tarn::ctl {
namespace {

// The chassis' own services, by the slots that they have there.
struct Service {
    std::string_view name;
    int slot;
};
constexpr Service services[] = {{"profiles", chassis_slot::profiles},
                                {"olt-profiles", chassis_slot::olt_profiles},
                                {"network", chassis_slot::chassis_network}};

template <class Number>
Number parse_as(std::string_view text, const char *what) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        throw std::invalid_argument('"' + std::string(text) + "\" is no " + what);
    }
    return value;
}

Json parse_card(std::string_view text) {
    const std::vector<int> slots = parse_slots(text);
    if (slots.size() != 1) {
        throw std::invalid_argument("one slot at a time, not " + std::string(text));
    }
    return slots.front() - 1;
}

Json parse_slot(std::string_view text) {
    for (const Service &service : services) {
        if (text == service.name) {
            return service.slot;
        }
    }
    return parse_card(text);
}

Json parse_whole(std::string_view text) {
    return parse_as<std::int64_t>(text, "whole number");
}

Json parse_number(std::string_view text) {
    return parse_as<double>(text, "number");
}

// Power is asked for in tenths of a dBm.
Json parse_power(std::string_view text) {
    const double tenths = 10 * parse_as<double>(text, "power in dBm");
    if (!(std::abs(tenths) < 10000)) {
        throw std::invalid_argument("no module has a power of " + std::string(text) + " dBm");
    }
    return std::lround(tenths);
}

Json parse_text(std::string_view text) {
    return std::string(text);
}

Json parse_serial(std::string_view text) {
    return serial_digits(text);
}

constexpr Parameter card{"slot", "slot of the card, counted from 1", parse_card};
constexpr Parameter slot{"slot", "slot, counted from 1, or profiles, olt-profiles or network", parse_slot};
constexpr Parameter serial{"serial", "the ONT's serial number: ABCD-01:23:45:67, ABCD01234567 or 16 digits",
                           parse_serial};
constexpr Parameter count{"value", "how many", parse_whole};
constexpr Parameter item{"item", "what of the slot, see docs/protocol.md", parse_text};
constexpr Parameter channel{"channel", "channel, 0 to 7", parse_whole};
constexpr Parameter kind{"kind", "kind of profile", parse_text};
constexpr Parameter index{"index", "index of a record", parse_whole};
constexpr Parameter command_code{"command", "command code of a board request", parse_whole};

constexpr Parameter as(Use use, Parameter parameter) {
    parameter.use = use;
    return parameter;
}

constexpr Parameter option(std::string_view key, std::string_view help,
                           Json (*parse)(std::string_view) = parse_whole) {
    return {key, help, parse, Use::option};
}
constexpr Parameter option(const Parameter &parameter) {
    return as(Use::option, parameter);
}

constexpr ChassisGroup groups[] = {
    {"ont", "ONTs: see them, take one down, bring it up, move its optical power"},
    {"fault", "make the chassis answer wrongly, late or not at all"},
    {"log", "what the chassis has been asked"},
    {"state", "any other piece of a slot's state"},
};

}  // namespace

std::span<const ChassisGroup> chassis_groups() {
    return groups;
}

std::span<const ChassisCommand> chassis_commands() {
    static const std::vector<ChassisCommand> table = {
        {"", "cards", "list the cards and what they hold", R"({"do":"cards"})"},
        {"", "pull", "pull a card: its link goes down", R"({"do":"card-pull"})", {card}},
        {"", "insert", "put a card back: its link comes up", R"({"do":"card-insert"})", {card}},
        {"",
         "config",
         "say what became of the slot's configuration: edited, committed, saved",
         R"({"do":"state-get","item":"config"})",
         {slot}},
        {"",
         "clock",
         "say how fast chassis time goes, or change it",
         R"({"do":"clock"})",
         {{"factor", "times as fast as real time, 0 to 1000; 0 stops it", parse_number, Use::optional}}},
        {"", "version", "say which version the chassis is", R"({"do":"version"})"},
        {"", "shutdown", "stop the chassis", R"({"do":"shutdown"})", {}, "Stop the chassis"},

        {"ont", "list", "list the ONTs of a card", R"({"do":"state-get","item":"onts"})", {card}},
        {"ont",
         "show",
         "say how an ONT is, and what has been done to it",
         R"({"do":"state-get","item":"ont"})",
         {card, serial}},
        {"ont",
         "down",
         "take an ONT's signal away",
         R"({"do":"state-set","item":"ont-signal","value":0})",
         {card, serial}},
        {"ont",
         "up",
         "give an ONT its signal back: it registers again",
         R"({"do":"state-set","item":"ont-signal","value":1})",
         {card, serial}},
        {"ont",
         "power",
         "set the optical power that an ONT receives",
         R"({"do":"state-set","item":"optical-power"})",
         {card, serial, {"value", "power in dBm, -50 to 20, such as -24.3", parse_power}}},
        {"ont",
         "code",
         "set an ONT's state code",
         R"({"do":"state-set","item":"ont-code"})",
         {card, serial, {"value", "7 is working", parse_whole}}},
        {"ont",
         "record",
         "show the record that is stored of a configured ONT",
         R"({"do":"state-get","item":"ont-config"})",
         {card, serial}},
        {"ont",
         "firmware",
         "say how updates of an ONT's firmware go",
         R"({"do":"state-get","item":"ont-firmware"})",
         {card, serial}},
        {"ont",
         "populate",
         "give a card other ONTs, so many over all channels",
         R"({"do":"state-set","item":"onts"})",
         {card, count},
         "Give up the card's ONTs for others"},

        {"fault",
         "add",
         "switch a fault on; says its number",
         R"({"do":"fault-add"})",
         {{"kind", "silent, slow, status, truncated, wrong_count, wrong_length, corrupt or dropped",
           parse_text},
          option(slot),
          option(command_code),
          option("times", "how many requests it hits; without it, all"),
          option("milliseconds", "slow: how much later the answer comes"),
          option("status", "status: 1 to 255"),
          option("bytes", "truncated: the answer's length, its header included"),
          option("count", "wrong_count: what the answer's record count says"),
          option("length", "wrong_length: what the answer's header says"),
          option("offset", "corrupt: the first of sixteen damaged bytes; 32 is the first after the header")}},
        {"fault", "list", "list the faults that are on", R"({"do":"fault-list"})"},
        {"fault",
         "clear",
         "switch a fault off, a slot's, or all",
         R"({"do":"fault-clear"})",
         {{"id", "the fault's number", parse_whole, Use::optional}, option(slot)}},

        {"log",
         "show",
         "list requests, oldest first",
         R"({"do":"requests"})",
         {option(slot), option(command_code), option("after", "only those after this sequence number"),
          option("limit", "only the newest, so many")}},
        {"log",
         "count",
         "say how often each request came",
         R"({"do":"counts"})",
         {option(slot), option(command_code)}},
        {"log", "clear", "forget requests and counts", R"({"do":"requests-reset"})"},

        {"state",
         "get",
         "show an item",
         R"({"do":"state-get"})",
         {slot, item, option(channel), option(serial), option(kind), option(index)}},
        {"state",
         "set",
         "change an item: its value, or some bytes of its record",
         R"({"do":"state-set"})",
         {slot, item, option(channel), option(serial), option(kind), option(index),
          option("value", "what it becomes"), option("offset", "the first byte to write"),
          option("hex", "the bytes, as hexadecimal digits", parse_text)}},
    };
    return table;
}

Json chassis_request(const ChassisCommand &command, std::span<const std::string> values) {
    Json request = Json::parse(command.request);
    for (std::size_t i = 0; i < command.parameters.size(); ++i) {
        const Parameter &parameter = command.parameters[i];
        if (!values[i].empty()) {
            request[std::string(parameter.key)] = parameter.parse(values[i]);
        } else if (parameter.use == Use::required) {
            throw std::invalid_argument(std::string(parameter.key) + " is missing");
        }
    }
    return request;
}

void recount_slots(Json &answer) {
    if (!answer.is_structured()) {
        return;
    }
    for (auto &[key, value] : answer.items()) {
        if (key != "slot" || !value.is_number()) {
            recount_slots(value);
            continue;
        }
        const int counted = value.get<int>();
        const auto *const service =
            std::ranges::find_if(services, [&](const Service &s) { return s.slot == counted; });
        value = service != std::end(services) ? Json(service->name) : Json(counted + 1);
    }
}

}  // namespace tarn::ctl
