// tarn-agentd: a net-snmp agent of its own around the core.
#include <malloc.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "host/agent/configuration.h"
#include "host/agent/directives.h"
#include "host/agent/event_loop.h"
#include "host/agent/host.h"
#include "host/agent/identity.h"
#include "host/agent/notifications.h"
#include "host/agent/privileges.h"
#include "host/agent/service_manager.h"
#include "host/services/block_allocator.h"
#include "host/services/logger.h"

// Without this, net-snmp reads /etc/hosts.allow and /etc/hosts.deny anew for every packet. Who may do what is
// decided by the access lines of the configuration alone (rocommunity, rwcommunity, rouser, ... with their
// source addresses); TCP wrappers' files have no effect on this agent.
extern "C" int hosts_ctl(char * /*daemon*/, char * /*client_name*/, char * /*client_address*/,
                         char * /*user*/) {
    return 1;
}

// Stands in front of net-snmp's function of this name: its sessions pass on here what they received.
extern "C" int handle_snmp_packet(int operation, netsnmp_session *session, int reqid, netsnmp_pdu *pdu,
                                  void *magic) {
    return tarn::host::take_packet(operation, session, reqid, pdu, magic);
}

namespace {

using namespace tarn::host;

constexpr const char *application = "tarn-agentd";
// UDP carries 65,507 bytes; a longer answer would be lost instead of cut.
constexpr int largest_message = 65'000;

volatile std::sig_atomic_t stopping = 0;
volatile std::sig_atomic_t reading_asked = 0;

void request_stop(int /*signal*/) {
    stopping = 1;
}

void request_reading(int /*signal*/) {
    reading_asked = 1;
}

void set_boolean(int store, int which) {
    (void)netsnmp_ds_set_boolean(store, which, 1);
}

// net-snmp reads nothing that was not named.
void prepare_environment() {
    (void)setenv("MIBS", "", 1);
    (void)setenv("MIBDIRS", "", 1);
    (void)setenv("SNMPCONFPATH", "/nonexistent", 1);
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
    action.sa_handler = request_reading;
    (void)sigaction(SIGHUP, &action, nullptr);
    for (const int ignored : {SIGPIPE, SIGUSR1, SIGUSR2}) {
        (void)std::signal(ignored, SIG_IGN);
    }
}

bool listen(std::string &error) {
    error = "cannot listen on the agent's address";
    return init_master_agent() == 0;
}

bool start_serving(const Configuration &configuration, std::unique_ptr<Host> &host, std::string &error) {
    const Settings &settings = configuration.settings();
    HostConfig config;
    if (!host_config(settings, config, error)) {
        return false;
    }
    host = Host::start(config, error);
    return host != nullptr && listen(error) &&
           become_agent_user({settings.control, settings.state, log_file(settings.log)}, error);
}

bool serve(Configuration &configuration) {
    std::unique_ptr<Host> host;
    std::string error;
    if (!start_serving(configuration, host, error)) {
        log_add(log_level::error, "not started: %s\n", error.c_str());
        return false;
    }
    save_state(application);
    std::printf("tarn-agentd ready: %zu of %zu slots up, %zu tables, listening on %s\n",
                host->slots().up().size(), host->slots().served().count(), host->tables(),
                configuration.addresses().c_str());
    (void)std::fflush(stdout);
    if (!configuration.options().foreground && daemon(1, 0) != 0) {
        log_add(log_level::error, "cannot go to the background\n");
        return false;
    }
    notify_service_manager("READY=1");
    keep_watchdog_fed();
    announce_start();
    while (stopping == 0) {
        if (reading_asked != 0) {
            reading_asked = 0;
            configuration.read_again();
        }
        take_turn();
    }
    notify_service_manager("STOPPING=1");
    log_add(log_level::information, "stopping\n");
    announce_shutdown();
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
    app.add_flag("--directives", options.directives, "list the agent's own directives and end");
    app.set_version_flag("--version", std::string("tarn-agentd ") + TARN_VERSION);
    CLI11_PARSE(app, argc, argv);
    if (options.directives) {
        print_directives();
        return EXIT_SUCCESS;
    }

    prepare_environment();
    catch_signals();
    (void)open_log("stderr");
    choose_standard_groups();
    (void)init_agent(application);
    Configuration configuration(options);
    if (!configuration.read(application) || !serve(configuration)) {
        return EXIT_FAILURE;
    }
    return report_outstanding_blocks() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception &error) {
    (void)std::fprintf(stderr, "tarn-agentd: %s\n", error.what());
    return EXIT_FAILURE;
}
