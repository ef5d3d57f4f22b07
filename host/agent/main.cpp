// tarn-agentd: a net-snmp agent of its own around the core.
#include <malloc.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "host/agent/directives.h"
#include "host/agent/host.h"
#include "host/agent/identity.h"
#include "host/services/block_allocator.h"
#include "host/services/logger.h"

// Without this, net-snmp reads /etc/hosts.allow and /etc/hosts.deny anew for every packet. Who may do what is
// decided by the access lines of the configuration alone (rocommunity, rwcommunity, rouser, ... with their
// source addresses); TCP wrappers' files have no effect on this agent.
extern "C" int hosts_ctl(char * /*daemon*/, char * /*client_name*/, char * /*client_address*/,
                         char * /*user*/) {
    return 1;
}

namespace {

using namespace tarn::host;

constexpr const char *application = "tarn-agentd";
// UDP carries 65,507 bytes; a longer answer would be lost instead of cut.
constexpr int largest_message = 65'000;

volatile std::sig_atomic_t stopping = 0;

void request_stop(int /*signal*/) {
    stopping = 1;
}

struct Options {
    std::string config;
    std::string module;
    std::string mibs;
    std::string chassis;
    std::string control;
    std::string log;
    std::string state;
    bool foreground = false;
};

void set_boolean(int store, int which) {
    (void)netsnmp_ds_set_boolean(store, which, 1);
}

// net-snmp reads nothing that was not named.
void prepare_environment() {
    (void)setenv("MIBS", "", 1);
    (void)setenv("MIBDIRS", "", 1);
    (void)setenv("SNMPCONFPATH", "/nonexistent", 1);
    (void)std::signal(SIGPIPE, SIG_IGN);
    set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_DONT_LOG_TCPWRAPPERS_CONNECTS);
    (void)netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_MSG_SEND_MAX, largest_message);
    // Large GETBULK answers would have the heap trimmed and grown again for each packet.
    (void)mallopt(M_TRIM_THRESHOLD, 256 * 1024 * 1024);
}

void catch_signals() {
    struct sigaction action {};
    action.sa_handler = request_stop;
    (void)sigaction(SIGINT, &action, nullptr);
    (void)sigaction(SIGTERM, &action, nullptr);
}

// Options override what the configuration file says.
void override_settings(const Options &options, Settings &settings) {
    const auto replace = [](std::string &setting, const std::string &option) {
        if (!option.empty()) {
            setting = option;
        }
    };
    replace(settings.module_path, options.module);
    replace(settings.mib_directories, options.mibs);
    replace(settings.chassis, options.chassis);
    replace(settings.control, options.control);
    replace(settings.log, options.log);
    if (settings.log.empty()) {
        settings.log = options.foreground ? "stderr" : "syslog";
    }
}

bool read_configuration(const Options &options, Settings &settings) {
    register_directives(application, settings);
    if (!options.config.empty()) {
        if (access(options.config.c_str(), R_OK) != 0) {
            log_add(log_level::error, "%s: cannot be read\n", options.config.c_str());
            return false;
        }
        (void)netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG,
                                    options.config.c_str());
    }
    settings.state = options.state;
    if (!settings.state.empty() && !keep_state_in(settings.state)) {
        log_add(log_level::error, "%s: not a directory that can be written\n", settings.state.c_str());
        return false;
    }
    describe_system(application);
    init_snmp(application);
    if (configuration_problems() != 0) {
        return false;
    }
    override_settings(options, settings);
    // Commands that the module runs are found in these places only.
    (void)setenv("PATH", settings.command_path.c_str(), 1);
    set_log_level(settings.log_level);
    if (!open_log(settings.log)) {
        log_add(log_level::error, "the log %s cannot be opened\n", settings.log.c_str());
        return false;
    }
    (void)netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_MAX_GETBULKRESPONSES,
                             settings.largest_bulk);
    return true;
}

bool listen() {
    if (init_master_agent() == 0) {
        return true;
    }
    log_add(log_level::error, "cannot listen on the agent's address\n");
    return false;
}

bool serve(const Settings &settings, const Options &options) {
    HostConfig config;
    std::string error;
    if (!host_config(settings, config, error)) {
        log_add(log_level::error, "%s\n", error.c_str());
        return false;
    }
    const std::unique_ptr<Host> host = Host::start(config, error);
    if (host == nullptr || !listen()) {
        if (!error.empty()) {
            log_add(log_level::error, "%s\n", error.c_str());
        }
        return false;
    }
    const char *address = netsnmp_ds_get_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS);
    save_state(application);
    std::printf("tarn-agentd ready: %zu of %zu slots up, %zu tables, listening on %s\n",
                host->slots().up().size(), host->slots().served().count(), host->tables(),
                address == nullptr ? "udp:161" : address);
    (void)std::fflush(stdout);
    if (!options.foreground && daemon(1, 0) != 0) {
        log_add(log_level::error, "cannot go to the background\n");
        return false;
    }
    announce_start();
    while (stopping == 0) {
        (void)agent_check_and_process(1);
    }
    log_add(log_level::information, "stopping\n");
    host->stop();
    save_state(application);
    // The module's scalars must be out of net-snmp before the module is unloaded.
    snmp_shutdown(application);
    shutdown_agent();
    return true;
}

}  // namespace

int main(int argc, char **argv) try {
    Options options;
    CLI::App app{"SNMP agent of a GPON chassis"};
    app.add_option("--config", options.config, "configuration file, net-snmp's directives and the agent's");
    app.add_option("--module", options.module, "the module, overrides tarnModule");
    app.add_option("--mibs", options.mibs,
                   "directories of MIB files separated by colons, overrides tarnMibs");
    app.add_option("--chassis", options.chassis, "unix:PATH or tcp:ADDRESS:PORT, overrides tarnChassis");
    app.add_option("--control", options.control, "path of the control socket, overrides tarnControl");
    app.add_option("--log", options.log, "stderr, syslog or \"file PATH\", overrides tarnLog");
    app.add_option("--state", options.state, "directory of the engine's identity, overrides tarnState");
    app.add_flag("--foreground", options.foreground, "do not go to the background");
    app.set_version_flag("--version", std::string("tarn-agentd ") + TARN_VERSION);
    CLI11_PARSE(app, argc, argv);

    prepare_environment();
    catch_signals();
    (void)open_log("stderr");
    choose_standard_groups();
    (void)init_agent(application);
    Settings settings;
    if (!read_configuration(options, settings) || !serve(settings, options)) {
        return EXIT_FAILURE;
    }
    return report_outstanding_blocks() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception &error) {
    (void)std::fprintf(stderr, "tarn-agentd: %s\n", error.what());
    return EXIT_FAILURE;
}
