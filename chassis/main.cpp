#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>

#include "chassis/net/control_server.h"
#include "chassis/net/server.h"

namespace {

constexpr const char *description =
    R"(tarn-chassisd - a simulated chassis of GPON line cards

Listens on a stream socket and answers board requests for up to sixteen line cards,
each with eight PON channels and up to 1024 ONTs. Requests that set something change
what the next ones read, counters move with time, and faults can be switched on and
off while it runs. Once it listens it prints one line: "ready" and where.
)";

constexpr const char *footer =
    R"(SCENARIO
  A YAML file. Every key may be left out; unknown keys are errors.
    seed: 1                 the same seed gives the same chassis
    time_factor: 1.0        chassis seconds a second; 0 stops counters
    reregister_seconds: 5   chassis time until an ONT that went down is back
    confirm_seconds: 600    chassis time for a commit to be confirmed; 0: it need not be
    start_time: 1767225600  the cards' clocks at start, seconds since 1970
    cards:                  without it: a card in every slot
      - slots: [0, 1, 2]    slots 0 to 15; all that a card needs
        onts: 64            over all channels, at most 1024; or
        onts_per_channel: 8 at most 128, or a list of eight
        addresses: 128
        pppoe_sessions: 8
        vlans: 16
        mac_addresses: 256  at most 16384
    faults:                 at start, as on the control socket
      - {kind: slow, milliseconds: 500, slot: 3, command: 70, times: 1}

CONTROL SOCKET
  One JSON object a line in, one JSON object a line out: faults, the request log,
  state, cards, the clock. See docs/protocol.md; tarnctl chassis speaks it.

SIGNALS
  SIGINT and SIGTERM stop the chassis; its socket files are removed.

EXIT STATUS
  0    stopped by a signal or over the control socket
  1    the scenario is wrong, or a socket can't be had
  100  and above: wrong options

EXAMPLES
  tarn-chassisd --socket /run/tarn/chassis --control /run/tarn/chassis-control
  tarn-chassisd --tcp 127.0.0.1:4700 --scenario small.yaml --log-requests
  tarnctl --chassis-socket /run/tarn/chassis-control chassis fault add silent --slot 3)";

struct Options {
    std::string socket;
    std::string tcp;
    std::string control;
    std::string scenario;
    std::string tftp_root;
    std::string log;
    bool log_requests = false;
};

int run(const Options &options) {
    using namespace tarn::chassis;
    std::ofstream log_file;
    if (!options.log.empty()) {
        log_file.open(options.log, std::ios::app);
        if (!log_file) {
            std::cerr << "tarn-chassisd: " << options.log << ": cannot write\n";
            return 1;
        }
    }
    Log log(options.log.empty() ? std::cerr : log_file);
    const auto start = std::chrono::steady_clock::now();
    Scenario scenario = options.scenario.empty() ? default_scenario() : read_scenario(options.scenario);
    if (!options.tftp_root.empty()) {
        scenario.tftp_root = options.tftp_root;
    }
    Chassis chassis(std::move(scenario), log, [start] {
        return static_cast<std::uint64_t>(
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start)
                .count());
    });
    chassis.log_requests = options.log_requests;

    asio::io_context context(1);
    Server server(context, chassis);
    chassis.on_pull = [&server](int slot) { server.close_slot(slot); };
    std::string where = options.socket;
    if (!options.tcp.empty()) {
        const std::uint16_t port = server.listen_tcp(options.tcp);
        where = options.tcp.substr(0, options.tcp.rfind(':') + 1) + std::to_string(port);
    } else {
        server.listen_unix(options.socket);
    }
    std::optional<ControlServer> control;
    if (!options.control.empty()) {
        control.emplace(context, chassis, options.control, [&context] { context.stop(); });
    }
    asio::signal_set signals(context, SIGINT, SIGTERM);
    signals.async_wait([&context](const asio::error_code &, int) { context.stop(); });
    std::cout << "ready " << where << std::endl;
    context.run();
    log.line("stopped");
    return 0;
}

}  // namespace

int main(int argc, char **argv) try {
    CLI::App app(description, "tarn-chassisd");
    app.footer(footer);
    app.set_version_flag("--version", std::string("tarn-chassisd ") + TARN_VERSION);
    Options options;
    auto *socket = app.add_option("--socket", options.socket, "Unix socket to listen on for the agent")
                       ->type_name("PATH");
    app.add_option("--tcp", options.tcp, "the same on TCP, a loopback address only; port 0 takes any")
        ->type_name("HOST:PORT")
        ->excludes(socket);
    app.add_option("--control", options.control, "Unix control socket")->type_name("PATH");
    app.add_option("--scenario", options.scenario, "what the chassis starts with")->type_name("FILE");
    app.add_option("--tftp-root", options.tftp_root,
                   "directory that cards fetch firmware from; without it they do not check it")
        ->type_name("DIRECTORY");
    app.add_option("--log", options.log, "append the log to a file instead of standard error")
        ->type_name("FILE");
    app.add_flag("--log-requests", options.log_requests,
                 "log every request; refusals and faults are always logged");
    CLI11_PARSE(app, argc, argv);
    if (options.socket.empty() && options.tcp.empty()) {
        return app.exit(CLI::RequiredError("--socket or --tcp"));
    }
    std::signal(SIGPIPE, SIG_IGN);
    return run(options);
} catch (const std::exception &error) {
    std::cerr << "tarn-chassisd: " << error.what() << '\n';
    return 1;
}
