#include "host/agent/directives.h"

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/library/read_config.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>

#include "host/agent/identity.h"
#include "host/services/logger.h"

namespace tarn::host {
namespace {

Settings *target = nullptr;
int problems = 0;

std::optional<int> parse_number(std::string_view text, int lowest, int highest) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < lowest || value > highest) {
        return std::nullopt;
    }
    return value;
}

void complain(const char *token, std::string_view expected, std::string_view given) {
    const std::string text =
        std::string(token) + ": expected " + std::string(expected) + ", not \"" + printable(given) + "\"";
    netsnmp_config_error("%s", text.c_str());
}

std::vector<std::string> split(const std::string &text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) {
        if (!part.empty()) {
            parts.push_back(part);
        }
    }
    return parts;
}

// "1-4,7": slots as people count them, from 1.
std::optional<SlotSet> parse_slots(const std::string &text) {
    SlotSet slots;
    std::istringstream parts(text + ',');
    for (std::string part; std::getline(parts, part, ',');) {
        const std::size_t dash = part.find('-');
        const auto first = parse_number(part.substr(0, dash), 1, chassis_slot::line_cards);
        const auto last = dash == std::string::npos
                              ? first
                              : parse_number(part.substr(dash + 1), 1, chassis_slot::line_cards);
        if (!first || !last || *first > *last) {
            return std::nullopt;
        }
        for (int slot = *first; slot <= *last; ++slot) {
            slots.set(static_cast<std::size_t>(slot) - 1);
        }
    }
    return slots;
}

std::string text_of(const char *line) {
    std::string text(line == nullptr ? "" : line);
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return text;
}

template <std::string Settings::*member>
void text_directive(const char *token, char *line) {
    target->*member = text_of(line);
    if ((target->*member).empty()) {
        complain(token, "a text", "");
    }
}

void chassis_directive(const char *token, char *line) {
    target->chassis = text_of(line);
    if (!parse_chassis_address(target->chassis)) {
        complain(token, "unix:PATH or tcp:ADDRESS:PORT", target->chassis);
    }
}

bool slots_directive(const char *token, char *line, SlotSet &slots) {
    const std::optional<SlotSet> parsed = parse_slots(text_of(line));
    if (!parsed) {
        complain(token, "slots from 1 to 16 such as 1-8,12", text_of(line));
        return false;
    }
    slots = *parsed;
    return true;
}

void served_slots_directive(const char *token, char *line) {
    (void)slots_directive(token, line, target->slots);
}

void configured_slots_directive(const char *token, char *line) {
    target->configured_slots_given = slots_directive(token, line, target->host.configured.running);
}

void candidate_slots_directive(const char *token, char *line) {
    target->candidate_slots_given = slots_directive(token, line, target->host.configured.candidate);
}

void number_directive(const char *token, char *line, int lowest, int highest, int &number) {
    const std::optional<int> parsed = parse_number(text_of(line), lowest, highest);
    if (!parsed) {
        complain(token, "a number from " + std::to_string(lowest) + " to " + std::to_string(highest),
                 text_of(line));
        return;
    }
    number = *parsed;
}

constexpr int day = 86'400;

void cache_period_directive(const char *token, char *line) {
    number_directive(token, line, 0, day, target->host.cache_period);
}

template <std::chrono::seconds HostConfig::*member>
void seconds_directive(const char *token, char *line) {
    int seconds = static_cast<int>((target->host.*member).count());
    number_directive(token, line, 0, day, seconds);
    target->host.*member = std::chrono::seconds(seconds);
}

void max_bulk_directive(const char *token, char *line) {
    number_directive(token, line, 1, 65535, target->largest_bulk);
}

void max_notifications_directive(const char *token, char *line) {
    number_directive(token, line, 0, 100'000, target->host.most_notifications);
}

void row_budget_directive(const char *token, char *line) {
    int rows = static_cast<int>(target->host.row_budget);
    number_directive(token, line, 1, std::numeric_limits<int>::max(), rows);
    target->host.row_budget = static_cast<std::size_t>(rows);
}

void log_level_directive(const char *token, char *line) {
    target->log_level = log_level_of(text_of(line));
    if (target->log_level < 0) {
        target->log_level = log_level::information;
        complain(token, "error, warning, information or debug", text_of(line));
    }
}

void log_directive(const char *token, char *line) {
    target->log = text_of(line);
    if (target->log != "stderr" && target->log != "syslog" && !target->log.starts_with("file ")) {
        complain(token, "stderr, syslog or file PATH", target->log);
    }
}

// Comes before all others: which engine it is decides how they are read.
void state_directive(const char *token, char *line) {
    if (!target->state.empty()) {
        return;  // the option has said it
    }
    target->state = text_of(line);
    if (target->state.empty() || !keep_state_in(target->state)) {
        complain(token, "a directory that can be written", target->state);
        return;
    }
    // The files of the search path were read already.
    (void)read_config_files(PREMIB_CONFIG);
}

// The module takes directory names of at most 62 bytes.
template <std::string FirmwareDirectories::*member>
void firmware_directive(const char *token, char *line) {
    constexpr std::size_t longest = 62;
    const std::string text = text_of(line);
    if (text.empty() || text.size() > longest) {
        complain(token, "a directory of at most 62 bytes", text);
        return;
    }
    target->host.firmware.*member = text;
}

// "SLOT CHANNEL ID": slot and channel from 1, the ONT's id within its channel from 0.
void locked_ont_directive(const char *token, char *line) {
    const std::vector<std::string> words = split(text_of(line), ' ');
    const auto slot = words.size() == 3 ? parse_number(words[0], 1, chassis_slot::line_cards) : std::nullopt;
    const auto channel = slot ? parse_number(words[1], 1, 8) : std::nullopt;
    const auto id = channel ? parse_number(words[2], 0, 1023) : std::nullopt;
    if (!id) {
        complain(token, "SLOT CHANNEL ID", text_of(line));
        return;
    }
    target->host.configured.locked_onts.emplace(*slot - 1, *channel - 1, *id);
}

struct Directive {
    const char *name;
    void (*parse)(const char *token, char *line);
    const char *help;
    config_line *(*enter)(const char *type, const char *token, void (*parse)(const char *, char *),
                          void (*release)(void), const char *help) = register_config_handler;
};

constexpr std::array directives = {
    Directive{"tarnModule", text_directive<&Settings::module_path>, "PATH of the module"},
    Directive{"tarnMibs", text_directive<&Settings::mib_directories>, "DIRECTORY[:DIRECTORY...]"},
    Directive{"tarnChassis", chassis_directive, "unix:PATH | tcp:ADDRESS:PORT"},
    Directive{"tarnControl", text_directive<&Settings::control>, "PATH of the control socket"},
    Directive{"tarnSlots", served_slots_directive, "SLOTS to serve, such as 1-8,12"},
    Directive{"tarnConfiguredSlots", configured_slots_directive, "SLOTS of the running configuration"},
    Directive{"tarnCandidateSlots", candidate_slots_directive, "SLOTS of the candidate configuration"},
    Directive{"tarnLockedONT", locked_ont_directive, "SLOT CHANNEL ID of an ONT not to be written"},
    Directive{"tarnCachePeriod", cache_period_directive, "SECONDS"},
    Directive{"tarnSilentHold", seconds_directive<&HostConfig::hold>, "SECONDS"},
    Directive{"tarnConfirmTime", seconds_directive<&HostConfig::confirm_time>, "SECONDS"},
    Directive{"tarnMaxBulk", max_bulk_directive, "VARIABLES of a GETBULK answer"},
    Directive{"tarnMaxNotifications", max_notifications_directive, "NOTIFICATIONS a minute"},
    Directive{"tarnRowBudget", row_budget_directive, "ROWS to remember in all"},
    Directive{"tarnTftpDirectory", firmware_directive<&FirmwareDirectories::tftp_root>,
              "DIRECTORY that line cards fetch images from"},
    Directive{"tarnOntFirmwarePath", firmware_directive<&FirmwareDirectories::ont_path>,
              "DIRECTORY of ONT images below it"},
    Directive{"tarnCommandPath", text_directive<&Settings::command_path>,
              "DIRECTORY[:DIRECTORY...] of the module's commands"},
    Directive{"tarnState", state_directive, "DIRECTORY of the engine's identity",
              register_prenetsnmp_mib_handler},
    Directive{"tarnLog", log_directive, "stderr | syslog | file PATH"},
    Directive{"tarnLogLevel", log_level_directive, "error | warning | information | debug"},
};

// net-snmp tells problems in configuration files to its log and to nobody else.
int count_problem(int /*major*/, int /*minor*/, void *message, void * /*unused*/) {
    const std::string_view text(static_cast<snmp_log_message *>(message)->msg);
    if (text.find(": line ") != std::string_view::npos &&
        (text.find(": Error: ") != std::string_view::npos ||
         text.find(": Warning: ") != std::string_view::npos)) {
        ++problems;
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace

void register_directives(const char *application) {
    for (const Directive &directive : directives) {
        (void)directive.enter(application, directive.name, directive.parse, nullptr, directive.help);
    }
}

void print_directives() {
    for (const Directive &directive : directives) {
        std::printf("%s %s\n", directive.name, directive.help);
    }
}

int read_directives(Settings &settings, const std::function<void()> &read) {
    target = &settings;
    problems = 0;
    netsnmp_log_handler *counter = netsnmp_register_loghandler(NETSNMP_LOGHANDLER_CALLBACK, LOG_DEBUG);
    if (counter != nullptr) {
        counter->enabled = 1;
    }
    (void)snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, count_problem, nullptr);
    read();
    (void)snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, count_problem, nullptr, 0);
    if (counter != nullptr) {
        (void)netsnmp_remove_loghandler(counter);
    }
    target = nullptr;
    return problems;
}

bool host_config(const Settings &settings, HostConfig &config, std::string &error) {
    config = settings.host;
    config.module_path = settings.module_path;
    config.mib_directories = split(settings.mib_directories, ':');
    config.served_slots = settings.slots;
    config.control = settings.control;
    if (!settings.configured_slots_given) {
        config.configured.running = settings.slots;
    }
    if (!settings.candidate_slots_given) {
        config.configured.candidate = config.configured.running;
    }
    const std::optional<ChassisAddress> chassis = parse_chassis_address(settings.chassis);
    if (!chassis) {
        error = settings.chassis.empty() ? "no chassis is given (tarnChassis)"
                                         : settings.chassis + ": not unix:PATH or tcp:ADDRESS:PORT";
        return false;
    }
    config.chassis = *chassis;
    if (config.module_path.empty() || config.mib_directories.empty()) {
        error = config.module_path.empty() ? "no module is given (tarnModule)"
                                           : "no MIB directory is given (tarnMibs)";
        return false;
    }
    return true;
}

}  // namespace tarn::host
