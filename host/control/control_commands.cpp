#include "host/control/control_commands.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "host/control/alarms.h"
#include "host/control/download.h"
#include "host/control/figures_report.h"
#include "host/services/logger.h"

namespace tarn::host {
namespace {

using Json = nlohmann::ordered_json;

class ControlError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What a command means for a commit that waits to be confirmed.
enum class Trial { none, begins, ends };

// The commands by name, and the module's functions for line cards and for the chassis-wide profiles.
struct ConfigurationCommand {
    std::string_view name;
    const char *of_slot;
    const char *of_profiles;  // null: there is none
    bool forgets;             // what the module remembers of the slot no longer holds
    Trial trial;
};

constexpr ConfigurationCommand commands[] = {
    {"commit", "slot_lib_set_commit_change", "slot_lib_set_commit_blade_profiles", false, Trial::begins},
    {"confirm", "slot_lib_set_confirm_change", "slot_lib_confirm_blade_profiles", false, Trial::ends},
    {"rollback", "slot_lib_set_rollback_change", "slot_lib_set_rollback_blade_profiles", true, Trial::ends},
    {"save", "slot_lib_set_save_to_startup", nullptr, false, Trial::none},
    {"default", "slot_lib_set_to_default", "slot_lib_set_default_blade_profiles", true, Trial::none},
    {"reread", "slot_lib_set_reread_config", nullptr, true, Trial::none},
    {"reload", "slot_lib_set_reload_blade_slot", nullptr, true, Trial::ends},
};

using profiles_function = int();

template <class Function>
Function *find_function(const Module &module, const char *symbol) {
    auto *function = symbol != nullptr ? module.function<Function>(symbol) : nullptr;
    if (function == nullptr) {
        throw ControlError(symbol != nullptr ? std::string("the module has no ") + symbol
                                             : "there is no such command for the profiles");
    }
    return function;
}

void need_keys(const Json &request, std::initializer_list<std::string_view> known) {
    for (const auto &[key, value] : request.items()) {
        if (key != "do" && std::ranges::find(known, key) == known.end()) {
            throw ControlError("unknown key \"" + key + '"');
        }
    }
}

// The slots of a request, 0-15 inside the agent and 1-16 outside; without the key those that are up.
std::vector<int> requested_slots(const Json &request, const Slots &slots) {
    if (!request.contains("slots")) {
        return slots.up();
    }
    const Json &list = request["slots"];
    if (!list.is_array() || list.empty()) {
        throw ControlError("slots must be a list of slots");
    }
    std::vector<int> result;
    for (const Json &slot : list) {
        if (!slot.is_number_integer() || slot < 1 || slot > chassis_slot::line_cards) {
            throw ControlError("a slot lies between 1 and " + std::to_string(chassis_slot::line_cards));
        }
        result.push_back(slot.get<int>() - 1);
    }
    return result;
}

// An answer that did not come says nothing: the commit may have been carried out, the confirmation may not.
void watch_commit(UnconfirmedCommits &unconfirmed, const ConfigurationCommand &command, int slot,
                  int outcome) {
    if (command.trial == Trial::begins) {
        unconfirmed.begin(slot);
    } else if (command.trial == Trial::ends && outcome == 0) {
        unconfirmed.end(slot);
    }
}

Json run_on_slots(const ConfigurationCommand &command, const Json &request, const Module &module,
                  Slots &slots, UnconfirmedCommits &unconfirmed) {
    need_keys(request, {"slots"});
    auto *function = find_function<slot_function>(module, command.of_slot);
    Json results = Json::array();
    for (const int slot : requested_slots(request, slots)) {
        Json result{{"slot", slot + 1}};
        if (slots.is_up(slot)) {
            const int outcome = function(slot);
            result["result"] = outcome;
            watch_commit(unconfirmed, command, slot, outcome);
            if (command.forgets) {  // also without an answer: the card may have done it
                slots.restart(slot);
            }
        } else {
            result["error"] = "not up";
        }
        results.push_back(std::move(result));
    }
    return {{"results", results}};
}

Json list_slots(const Slots &slots, const IpcClient *cards) {
    Json list = Json::array();
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        list.push_back({{"slot", slot + 1},
                        {"served", slots.served().test(static_cast<std::size_t>(slot))},
                        {"up", slots.is_up(slot)}});
        if (cards != nullptr) {
            list.back()["card"] = name_of(cards->state(slot));
        }
    }
    return {{"slots", list}};
}

std::string text_of(const Json &request, const char *key) {
    if (!request.contains(key) || !request[key].is_string()) {
        throw ControlError(std::string(key) + " must be a text");
    }
    return request[key].get<std::string>();
}

Json download_firmware(const Json &request, const Module &module) {
    need_keys(request, {"server", "path"});
    std::string error;
    if (!start_download(module, text_of(request, "server"), text_of(request, "path"), error)) {
        throw ControlError(error);
    }
    return {{"download", "started"}};
}

Json list_alarms(const Module &module) {
    std::string error;
    Json list = Json::array();
    for (const Alarm &alarm : read_alarms(module, error)) {
        list.push_back(
            {{"entry", alarm.entry}, {"type", alarm.type}, {"first", alarm.first}, {"second", alarm.second}});
    }
    if (list.empty()) {
        throw ControlError(error);
    }
    return {{"alarms", list}};
}

int number_of(const Json &request, const char *key, int highest) {
    if (!request.contains(key) || !request[key].is_number_integer() || request[key] < 0 ||
        request[key] > highest) {
        throw ControlError(std::string(key) + " must be a number from 0 to " + std::to_string(highest));
    }
    return request[key].get<int>();
}

Json set_alarm(const Json &request, const Module &module) {
    need_keys(request, {"entry", "first", "second"});
    std::string error;
    const int outcome =
        write_alarm(module, number_of(request, "entry", alarms_config::entries - 1),
                    static_cast<std::uint16_t>(number_of(request, "first", UINT16_MAX)),
                    static_cast<std::uint16_t>(number_of(request, "second", UINT16_MAX)), error);
    if (!error.empty()) {
        throw ControlError(error);
    }
    return {{"result", outcome}};
}

constexpr std::string_view questions[] = {"slots", "stats", "trace", "version"};
constexpr std::string_view profiles_suffix = "-profiles";

}  // namespace

std::string ControlCommands::error_line(const std::string &text) {
    return Json{{"error", text}}.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

bool ControlCommands::is_question(const std::string &line) {
    const Json request = Json::parse(line, nullptr, false);
    return request.is_object() && request.contains("do") &&
           std::ranges::find(questions, request["do"]) != std::end(questions);
}

std::string ControlCommands::answer(const std::string &line) try {
    const Json request = Json::parse(line);
    if (!request.is_object() || !request.contains("do") || !request["do"].is_string()) {
        throw ControlError("a request is a JSON object with a text \"do\"");
    }
    auto name = request["do"].get<std::string>();
    if (name == "slots" || name == "version") {
        need_keys(request, {});
        const Json answer = name == "slots" ? list_slots(slots_, cards_)
                                            : Json{{"program", "tarn-agentd"}, {"version", TARN_VERSION}};
        return answer.dump() + '\n';
    }
    if (name == "trace") {
        throw ControlError(
            "a trace needs a slot from 1 to 19 and a place: not too many may follow at a time");
    }
    if (name == "stats" && cards_ != nullptr) {
        need_keys(request, {});
        return report_figures(*cards_, figures_()).dump() + '\n';
    }
    if (name == "firmware-state") {
        need_keys(request, {});
        return Json{{"download", download_state(module_)}}.dump() + '\n';
    }
    if (name == "alarms") {
        need_keys(request, {});
        return list_alarms(module_).dump() + '\n';
    }
    if (name == "alarm-set") {
        log_add(log_level::information, "control: %s\n", printable(line).c_str());
        changed_();  // the other entries are sent as they are now
        return set_alarm(request, module_).dump() + '\n';
    }
    if (name == "firmware-download") {
        log_add(log_level::information, "control: %s\n", printable(line).c_str());
        return download_firmware(request, module_).dump() + '\n';
    }
    const bool of_profiles = name.ends_with(profiles_suffix);
    if (of_profiles) {
        name.resize(name.size() - profiles_suffix.size());
    }
    const auto *const command =
        std::ranges::find_if(commands, [&](const ConfigurationCommand &c) { return c.name == name; });
    if (command == std::end(commands)) {
        throw ControlError("unknown request \"" + request["do"].get<std::string>() + '"');
    }
    log_add(log_level::information, "control: %s\n", printable(line).c_str());
    Json answer;
    if (of_profiles) {
        need_keys(request, {});
        const int outcome = find_function<profiles_function>(module_, command->of_profiles)();
        watch_commit(unconfirmed_, *command, profiles_slot, outcome);
        answer = {{"result", outcome}};
    } else {
        answer = run_on_slots(*command, request, module_, slots_, unconfirmed_);
    }
    changed_();
    return answer.dump() + '\n';
} catch (const ControlError &error) {
    return error_line(error.what());
} catch (const Json::exception &error) {
    return error_line(error.what());
}

void ControlCommands::follow_commits() {
    const std::vector<int> overdue = unconfirmed_.take_overdue();
    for (const int slot : overdue) {
        const std::string what = slot == profiles_slot ? "profiles" : "slot " + std::to_string(slot + 1);
        log_add(log_level::information, "%s: a commit was not confirmed in time; all is read again\n",
                what.c_str());
        if (slots_.is_up(slot)) {
            slots_.restart(slot);
        }
    }
    if (!overdue.empty()) {
        changed_();
    }
}

}  // namespace tarn::host
