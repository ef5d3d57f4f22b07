#include "chassis/control/control.h"

#include <algorithm>

namespace tarn::chassis {
namespace {

Json fault_json(const Fault &fault) {
    const FaultName &name = fault_name(fault.kind);
    Json result{{"id", fault.id}, {"kind", name.name}};
    if (!name.value_name.empty()) {
        result[std::string(name.value_name)] = fault.value;
    }
    if (fault.slot) {
        result["slot"] = *fault.slot;
    }
    if (fault.command) {
        result["command"] = *fault.command;
    }
    if (fault.times) {
        result["times"] = *fault.times;
    }
    result["hits"] = fault.hits;
    return result;
}

constexpr const char *outcome_name(Outcome outcome) {
    switch (outcome) {
        case Outcome::answered:
            return "answered";
        case Outcome::silent:
            return "silent";
        case Outcome::dropped:
            return "dropped";
    }
    return "";
}

Json entry_json(const RequestEntry &entry) {
    Json result{{"sequence", entry.sequence},
                {"time_ms", entry.time_ms},
                {"slot", entry.slot},
                {"command", entry.command},
                {"name", entry.name},
                {"destination", entry.destination},
                {"length", entry.length},
                {"payload", to_hex(entry.payload)},
                {"outcome", outcome_name(entry.outcome)}};
    if (entry.outcome == Outcome::answered) {
        result["status"] = entry.status;
    }
    return result;
}

bool is_meant(const Json &request, int slot, std::uint16_t command) {
    return number(request, "slot").value_or(slot) == slot &&
           number(request, "command").value_or(command) == command;
}

Json add_fault(Chassis &chassis, const Json &request) {
    try {
        const Fault fault =
            parse_fault(text(request, "kind"), [&](std::string_view key) { return number(request, key); });
        const RequestRule *rule = fault.command ? find_rule(*fault.command, std::nullopt) : nullptr;
        if (fault.kind == FaultKind::wrong_count && fault.command &&
            (rule == nullptr || !rule->answer_count)) {
            throw ControlError("the answer to command " + std::to_string(*fault.command) + " has no count");
        }
        return {{"id", chassis.faults().add(fault)}};
    } catch (const std::invalid_argument &error) {
        throw ControlError(error.what());
    }
}

Json list_faults(Chassis &chassis, const Json &) {
    Json list = Json::array();
    for (const Fault &fault : chassis.faults().list()) {
        list.push_back(fault_json(fault));
    }
    return {{"faults", list}};
}

Json clear_faults(Chassis &chassis, const Json &request) {
    std::optional<int> id;
    std::optional<int> slot;
    if (request.contains("id")) {
        id = static_cast<int>(number(request, "id", 1, INT32_MAX));
    }
    if (request.contains("slot")) {
        slot = static_cast<int>(number(request, "slot", 0, chassis_slot::chassis_network));
    }
    const std::size_t cleared = chassis.faults().clear(id, slot);
    if (id && cleared == 0) {
        throw ControlError("no fault " + std::to_string(*id));
    }
    return {{"cleared", cleared}};
}

Json list_requests(Chassis &chassis, const Json &request) {
    const auto after =
        static_cast<std::uint64_t>(request.contains("after") ? number(request, "after", 0, INT64_MAX) : 0);
    const auto limit = static_cast<std::size_t>(
        request.contains("limit") ? number(request, "limit", 1, INT32_MAX) : INT32_MAX);
    // The newest `limit` of those that are meant, oldest first.
    std::vector<const RequestEntry *> meant;
    const auto &entries = chassis.requests().entries();
    for (auto entry = entries.rbegin(); entry != entries.rend() && meant.size() < limit; ++entry) {
        if (entry->sequence > after && is_meant(request, entry->slot, entry->command)) {
            meant.push_back(&*entry);
        }
    }
    Json list = Json::array();
    for (auto entry = meant.rbegin(); entry != meant.rend(); ++entry) {
        list.push_back(entry_json(**entry));
    }
    return {{"requests", list}};
}

Json count_requests(Chassis &chassis, const Json &request) {
    Json list = Json::array();
    std::uint64_t total = 0;
    for (const auto &[key, count] : chassis.requests().counts()) {
        const auto [slot, command] = key;
        if (is_meant(request, slot, command)) {
            list.push_back({{"slot", slot}, {"command", command}, {"count", count}});
            total += count;
        }
    }
    return {{"counts", list}, {"total", total}};
}

Json reset_requests(Chassis &chassis, const Json &) {
    chassis.requests().reset();
    return Json::object();
}

int slot_of(const Json &request) {
    return static_cast<int>(number(request, "slot", 0, chassis_slot::line_cards - 1));
}

// A line card, or one of the chassis' own services.
Card &card_of(Chassis &chassis, const Json &request) {
    Card *card = chassis.card(static_cast<int>(number(request, "slot", 0, chassis_slot::chassis_network)));
    if (card == nullptr) {
        throw ControlError("no card in the slot");
    }
    return *card;
}

Json list_cards(Chassis &chassis, const Json &) {
    Json list = Json::array();
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (const Card *card = chassis.card(slot)) {
            list.push_back({{"slot", slot},
                            {"onts", card->onts.size()},
                            {"addresses", card->addresses.size()},
                            {"pppoe_sessions", card->pppoe_sessions.size()}});
        }
    }
    return {{"cards", list}};
}

Json pull_card(Chassis &chassis, const Json &request) {
    if (!chassis.pull(slot_of(request))) {
        throw ControlError("no card in the slot");
    }
    return Json::object();
}

Json insert_card(Chassis &chassis, const Json &request) {
    const int slot = slot_of(request);
    if (!chassis.insert(slot)) {
        throw ControlError("the slot has a card already");
    }
    chassis.log().line("slot " + std::to_string(slot) + ": card inserted");
    return Json::object();
}

Json read_state(Chassis &chassis, const Json &request) {
    return get_state(card_of(chassis, request), chassis.now(), request);
}

Json write_state(Chassis &chassis, const Json &request) {
    set_state(card_of(chassis, request), chassis.now(), request);
    return Json::object();
}

Json clock(Chassis &chassis, const Json &request) {
    if (const auto factor = request.find("factor"); factor != request.end()) {
        if (!factor->is_number() || *factor < 0 || *factor > max_time_factor) {
            throw ControlError("factor must be a number between 0 and " + std::to_string(max_time_factor));
        }
        chassis.set_time_factor(factor->get<double>());
    }
    return {{"time_ms", chassis.now()}, {"factor", chassis.scenario().time_factor}};
}

Json version(Chassis &, const Json &) {
    return {{"program", "tarn-chassisd"}, {"version", TARN_VERSION}};
}

// Carried out by whoever owns the event loop, once this answer is out.
Json shutdown(Chassis &, const Json &) {
    return Json::object();
}

struct Action {
    std::string_view name;
    std::vector<std::string_view> keys;  // besides "do"
    Json (*act)(Chassis &chassis, const Json &request);
};

const std::vector<Action> &actions() {
    static const std::vector<Action> table = {
        {"fault-add",
         {"kind", "slot", "command", "times", "milliseconds", "status", "bytes", "count", "length", "offset"},
         add_fault},
        {"fault-list", {}, list_faults},
        {"fault-clear", {"id", "slot"}, clear_faults},
        {"requests", {"slot", "command", "after", "limit"}, list_requests},
        {"counts", {"slot", "command"}, count_requests},
        {"requests-reset", {}, reset_requests},
        {"cards", {}, list_cards},
        {"card-pull", {"slot"}, pull_card},
        {"card-insert", {"slot"}, insert_card},
        {"state-get", {"slot", "item", "channel", "serial", "kind", "index"}, read_state},
        {"state-set",
         {"slot", "item", "channel", "serial", "kind", "index", "value", "offset", "hex"},
         write_state},
        {"clock", {"factor"}, clock},
        {"version", {}, version},
        {"shutdown", {}, shutdown},
    };
    return table;
}

const Action &find_action(const Json &request) {
    const std::string name = text(request, "do");
    const auto found =
        std::ranges::find_if(actions(), [&](const Action &action) { return action.name == name; });
    if (found == actions().end()) {
        throw ControlError("unknown request \"" + name + '"');
    }
    for (const auto &[key, value] : request.items()) {
        if (key != "do" && std::ranges::find(found->keys, key) == found->keys.end()) {
            throw ControlError(std::string("unknown key \"").append(key).append("\" in ").append(name));
        }
    }
    return *found;
}

}  // namespace

std::string error_line(const std::string &text) {
    return Json{{"error", text}}.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::optional<std::int64_t> number(const Json &request, std::string_view key) {
    const auto found = request.find(std::string(key));
    if (found == request.end()) {
        return std::nullopt;
    }
    if (!found->is_number_integer() ||
        (found->is_number_unsigned() &&
         found->get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX))) {
        throw ControlError(std::string(key) + " must be an integer");
    }
    return found->get<std::int64_t>();
}

std::int64_t number(const Json &request, std::string_view key, std::int64_t low, std::int64_t high) {
    const std::optional<std::int64_t> value = number(request, key);
    if (!value) {
        throw ControlError(std::string(key) + " is missing");
    }
    if (*value < low || *value > high) {
        throw ControlError(std::string(key) + " must lie between " + std::to_string(low) + " and " +
                           std::to_string(high));
    }
    return *value;
}

std::string text(const Json &request, std::string_view key) {
    const auto found = request.find(std::string(key));
    if (found == request.end() || !found->is_string()) {
        throw ControlError(std::string(key) + (found == request.end() ? " is missing" : " must be a text"));
    }
    return found->get<std::string>();
}

std::string to_hex(std::span<const std::uint8_t> bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string result;
    result.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes) {
        result += digits[byte >> 4];
        result += digits[byte & 0x0F];
    }
    return result;
}

Bytes from_hex(const std::string &digits) {
    const auto value = [](char c) -> int {
        if (c >= '0' && c <= '9') {
            return c - '0';
        }
        const char lower = static_cast<char>(c | 0x20);
        return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
    };
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const int high = value(digits[i]);
        const int low = value(digits[i + 1]);
        if (high < 0 || low < 0) {
            throw ControlError("not hexadecimal: \"" + digits.substr(i, 2) + '"');
        }
        bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    if (digits.size() % 2 != 0) {
        throw ControlError("an odd number of hexadecimal digits");
    }
    return bytes;
}

std::string Control::answer(const std::string &line) {
    try {
        const Json request = Json::parse(line);
        if (!request.is_object()) {
            return error_line("a request is a JSON object");
        }
        const Action &action = find_action(request);
        const Json result = action.act(chassis_, request);
        shutdown_requested_ = shutdown_requested_ || action.act == shutdown;
        return result.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
    } catch (const ControlError &error) {
        return error_line(error.what());
    } catch (const Json::exception &error) {
        return error_line(error.what());
    }
}

}  // namespace tarn::chassis
