// tarnctl: the operator's command.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <optional>
#include <thread>

#include "ctl/chassis_options.h"
#include "ctl/client.h"
#include "ctl/commands.h"
#include "ctl/report.h"

namespace {

using namespace tarn::ctl;

constexpr const char *description =
    R"(tarnctl - commit, roll back and save the configuration of line cards; see and change
a simulated chassis

Talks to the control socket of a running tarn-agentd, and to that of a simulated chassis.)";

constexpr const char *footer = R"(SLOTS
  As in 1-4,7, counted from 1; or "all": every slot that is up. Commands to the
  simulated chassis take one slot.

EXIT STATUS
  0  everything that was asked for was done
  1  some of it was not: a card did not answer, the agent or the chassis could not be
     reached, or a question was not answered with yes
  2  the command line is wrong

EXAMPLES
  tarnctl commit 3 && tarnctl confirm 3 && tarnctl save 3
  tarnctl profiles commit
  tarnctl firmware download 192.0.2.7 images/ont.img
  tarnctl --json slots
  tarnctl --yes reload 1-4
  tarnctl --chassis-socket control.socket chassis cards
  tarnctl chassis ont down 3 TARN-00:00:00:01
  tarnctl chassis fault add slow --milliseconds 500 --slot 3 --times 10)";

struct Options {
    std::string agent = "/run/tarn/agent-control";
    std::string chassis = "/run/tarn/chassis-control";
    bool json = false;
    bool yes = false;
    std::string slots;
    std::string request;
    std::string server;
    std::string path;
    int entry = 0;
    int first = 0;
    int second = 0;
    int slot = 0;
    std::optional<int> watch;  // seconds between two answers
};

// Whether to go on with a command that destroys something. Without a terminal nobody can say yes.
bool agreed(const Options &options, const std::string &question) {
    if (options.yes || question.empty()) {
        return true;
    }
    if (isatty(STDIN_FILENO) == 0) {
        std::cerr << "tarnctl: " << question << "? There is nobody to ask; say --yes\n";
        return false;
    }
    std::cerr << question << "? [y/N] ";
    std::string reply;
    std::getline(std::cin, reply);
    return reply == "y" || reply == "yes";
}

int finish(const Options &options, const Json &answer) {
    const int status = exit_status(answer);
    if (options.json) {
        std::cout << answer.dump() << '\n';
    } else {
        (status == exit_done ? std::cout : std::cerr) << describe(answer);
    }
    return status;
}

// Until the agent ends.
int show_figures(const Options &options) {
    int status = finish(options, ask(options.agent, {{"do", "stats"}}));
    while (options.watch && status == exit_done) {
        std::cout << std::flush;
        std::this_thread::sleep_for(std::chrono::seconds(*options.watch));
        std::cout << (options.json ? "" : "\n");
        status = finish(options, ask(options.agent, {{"do", "stats"}}));
    }
    return status;
}

// Until the agent ends.
int show_trace(const Options &options) {
    int status = exit_failed;
    follow(options.agent, {{"do", "trace"}, {"slot", options.slot}}, [&](const Json &line) {
        if (line.contains("error")) {
            status = finish(options, line);
            return false;
        }
        status = exit_done;
        std::cout << (options.json ? line.dump() + '\n' : describe_trace(line)) << std::flush;
        return true;
    });
    return status;
}

int run_on_slots(const Options &options, const Command &command) {
    Json request{{"do", command.name}};
    if (options.slots != "all") {
        request["slots"] = parse_slots(options.slots);
    }
    const std::string question(command.question);
    const std::string where = options.slots == "all" ? " in every slot" : " in slot " + options.slots;
    if (!agreed(options, question.empty() ? "" : question + where)) {
        return exit_failed;
    }
    return finish(options, ask(options.agent, request));
}

int run_on_profiles(const Options &options, const Command &command) {
    const std::string question(command.question);
    if (!agreed(options, question.empty() ? "" : question + " of the profiles")) {
        return exit_failed;
    }
    return finish(options, ask(options.agent, {{"do", std::string(command.name) + "-profiles"}}));
}

int run_on_chassis(const Options &options, const ChassisCommand &command,
                   const std::vector<std::string> &values) {
    const Json request = chassis_request(command, values);
    if (!agreed(options, std::string(command.question))) {
        return exit_failed;
    }
    Json answer = ask(options.chassis, request);
    recount_slots(answer);
    return finish(options, answer);
}

int pass_to_chassis(const Options &options) {
    const Json request = Json::parse(options.request, nullptr, false);
    if (!request.is_object()) {
        throw std::invalid_argument("a request to the chassis is a JSON object");
    }
    return finish(options, ask(options.chassis, request));
}

void add_firmware_commands(CLI::App &app, Options &options, std::function<int()> &run) {
    CLI::App *firmware = app.add_subcommand("firmware", "download images of ONT firmware");
    firmware->require_subcommand(1);
    CLI::App *download =
        firmware->add_subcommand("download", "start a download; its end is notified by SNMP");
    download->add_option("server", options.server, "IPv4 address of the TFTP server")->required();
    download->add_option("path", options.path, "path of the image on the server")->required();
    download->callback([&options, &run] {
        run = [&options] {
            return finish(options, ask(options.agent, {{"do", "firmware-download"},
                                                       {"server", options.server},
                                                       {"path", options.path}}));
        };
    });
    firmware->add_subcommand("state", "how the last download goes or went")->callback([&options, &run] {
        run = [&options] { return finish(options, ask(options.agent, {{"do", "firmware-state"}})); };
    });
}

void add_alarm_commands(CLI::App &app, Options &options, std::function<int()> &run) {
    CLI::App *alarms = app.add_subcommand("alarms", "see and set the alarms of the chassis");
    alarms->require_subcommand(1);
    alarms->add_subcommand("list", "list the entries")->callback([&options, &run] {
        run = [&options] { return finish(options, ask(options.agent, {{"do", "alarms"}})); };
    });
    CLI::App *set = alarms->add_subcommand("set", "set the two numbers of an entry");
    set->add_option("entry", options.entry, "0 to 45")->required()->check(CLI::Range(0, 45));
    set->add_option("first", options.first, "0 to 65535")->required()->check(CLI::Range(0, 65535));
    set->add_option("second", options.second, "0 to 65535")->required()->check(CLI::Range(0, 65535));
    set->callback([&options, &run] {
        run = [&options] {
            return finish(options, ask(options.agent, {{"do", "alarm-set"},
                                                       {"entry", options.entry},
                                                       {"first", options.first},
                                                       {"second", options.second}}));
        };
    });
}

// The subcommands; each leaves in `run` what is to be done.
void add_commands(CLI::App &app, Options &options, std::function<int()> &run) {
    CLI::App *profiles = app.add_subcommand("profiles", "the same for the chassis-wide profiles");
    profiles->require_subcommand(1);
    for (const Command &command : commands()) {
        CLI::App *of_slots = app.add_subcommand(std::string(command.name), std::string(command.help));
        of_slots->add_option("slots", options.slots, "slots as in 1-4,7, or all")->required();
        of_slots->callback([&options, &run, &command] {
            run = [&options, &command] { return run_on_slots(options, command); };
        });
        if (command.of_profiles) {
            profiles->add_subcommand(std::string(command.name), std::string(command.help))
                ->callback([&options, &run, &command] {
                    run = [&options, &command] { return run_on_profiles(options, command); };
                });
        }
    }
    app.add_subcommand("slots", "list the slots of the agent")->callback([&options, &run] {
        run = [&options] { return finish(options, ask(options.agent, {{"do", "slots"}})); };
    });
    CLI::App *stats =
        app.add_subcommand("stats", "what the agent counted of its cards and of managers' requests");
    stats->add_option("--watch", options.watch, "again every so many seconds, 2 unless given")
        ->expected(0, 1)
        ->default_str("2")
        ->check(CLI::Range(1, 86400));
    stats->callback([&options, &run] { run = [&options] { return show_figures(options); }; });
    CLI::App *trace = app.add_subcommand("trace", "show requests to a card as they happen");
    trace->add_option("slot", options.slot, "1 to 16, or 17 to 19 for the chassis' own services")
        ->required()
        ->check(CLI::Range(1, 19));
    trace->callback([&options, &run] { run = [&options] { return show_trace(options); }; });
    add_firmware_commands(app, options, run);
    add_alarm_commands(app, options, run);
    CLI::App *chassis = app.add_subcommand("chassis", "see and change a simulated chassis");
    chassis->require_subcommand(1);
    add_chassis_commands(
        *chassis, [&options, &run](const ChassisCommand &command, const std::vector<std::string> &values) {
            run = [&options, &command, values] { return run_on_chassis(options, command, values); };
        });
    CLI::App *request = chassis->add_subcommand(
        "request", "pass a request on as it is, and its answer back; slots count from 0");
    request->add_option("request", options.request, "a JSON object, see docs/protocol.md")->required();
    request->callback([&options, &run] { run = [&options] { return pass_to_chassis(options); }; });
}

}  // namespace

int main(int argc, char **argv) try {
    Options options;
    std::function<int()> run;
    CLI::App app{description};
    app.footer(footer);
    app.add_option("--socket", options.agent, "the agent's control socket")->capture_default_str();
    app.add_option("--chassis-socket", options.chassis, "the simulated chassis' control socket")
        ->capture_default_str();
    app.add_flag("--json", options.json, "print the answer as JSON");
    app.add_flag("--yes", options.yes, "do not ask before something is destroyed");
    app.set_version_flag("--version", std::string("tarnctl ") + TARN_VERSION);
    app.require_subcommand(1);
    add_commands(app, options, run);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? exit_done : exit_usage;
    }
    return run();
} catch (const std::invalid_argument &error) {
    std::cerr << "tarnctl: " << error.what() << '\n';
    return tarn::ctl::exit_usage;
} catch (const std::exception &error) {
    std::cerr << "tarnctl: " << error.what() << '\n';
    return tarn::ctl::exit_failed;
}
