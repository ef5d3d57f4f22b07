#include "host/agent/configuration.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include "host/agent/identity.h"
#include "host/services/cache_clock.h"
#include "host/services/logger.h"

extern "C" SNMPCallback vacm_warn_if_not_configured;
extern "C" int vacm_is_configured(void);

namespace tarn::host {
namespace {

// net-snmp passes over anything else without a word.
bool is_readable_file(const std::string &path) {
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status {};
    const bool good = file >= 0 && fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    if (file >= 0) {
        (void)close(file);
    }
    if (!good) {
        log_add(log_level::error, "%s: not a file that can be read\n", path.c_str());
    }
    return good;
}

std::string listening_addresses() {
    const char *addresses = netsnmp_ds_get_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS);
    return addresses != nullptr ? addresses : "";
}

// net-snmp's own warning names files that this agent never reads.
void replace_access_warning() {
    (void)snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_POST_READ_CONFIG,
                                   vacm_warn_if_not_configured, nullptr, 0);
}

void warn_without_access() {
    if (vacm_is_configured() == 0) {
        log_add(log_level::warning,
                "no access line (rocommunity, rouser, ...) is given: nobody is answered\n");
    }
}

void apply_at_run_time(const Settings &settings) {
    // Commands that the module runs are found in these places only.
    (void)setenv("PATH", settings.command_path.c_str(), 1);
    set_log_level(settings.log_level);
    (void)netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_MAX_GETBULKRESPONSES,
                             settings.largest_bulk);
}

}  // namespace

// Options override what the configuration file says.
void Configuration::override_settings(Settings &settings) const {
    const auto replace = [](std::string &setting, const std::string &option) {
        if (!option.empty()) {
            setting = option;
        }
    };
    replace(settings.module_path, options_.module);
    replace(settings.mib_directories, options_.mibs);
    replace(settings.chassis, options_.chassis);
    replace(settings.control, options_.control);
    replace(settings.log, options_.log);
    if (settings.log.empty()) {
        settings.log = options_.foreground ? "stderr" : "syslog";
    }
}

bool Configuration::read(const char *application) {
    register_directives(application);
    replace_access_warning();
    if (!options_.config.empty()) {
        if (!is_readable_file(options_.config)) {
            return false;
        }
        (void)netsnmp_ds_set_string(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OPTIONALCONFIG,
                                    options_.config.c_str());
    }
    settings_.state = options_.state;
    if (!settings_.state.empty() && !keep_state_in(settings_.state)) {
        log_add(log_level::error, "%s: not a directory that can be written\n", settings_.state.c_str());
        return false;
    }
    describe_system(application);
    const int problems = read_directives(settings_, [application] { init_snmp(application); });
    if (problems != 0) {
        log_add(log_level::error, "not started: mistakes in the configuration: %d\n", problems);
        return false;
    }
    addresses_ = listening_addresses();
    if (addresses_.empty()) {
        log_add(log_level::error, "not started: no agentAddress is given\n");
        return false;
    }
    override_settings(settings_);
    apply_at_run_time(settings_);
    if (!open_log(settings_.log)) {
        log_add(log_level::error, "the log %s cannot be opened\n", settings_.log.c_str());
        return false;
    }
    warn_without_access();
    return true;
}

void Configuration::read_again() {
    flush_log();
    if (!open_log(settings_.log)) {
        log_add(log_level::error, "the log %s cannot be opened\n", settings_.log.c_str());
    }
    if (options_.config.empty() || !is_readable_file(options_.config)) {
        return;
    }
    Settings fresh;
    fresh.state = settings_.state;
    const int problems = read_directives(fresh, update_config);
    (void)netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_PORTS, addresses_.c_str());
    warn_without_access();
    override_settings(fresh);
    HostConfig config;
    std::string error;
    if (problems != 0 || !host_config(fresh, config, error)) {
        log_add(log_level::error,
                "the agent's own settings stay as they were: mistakes in the configuration: %d%s\n", problems,
                error.empty() ? "" : (", " + error).c_str());
        return;
    }
    if (fresh.log != settings_.log && open_log(fresh.log)) {
        settings_.log = fresh.log;
    }
    apply_at_run_time(fresh);
    set_cache_period(config.cache_period);
    set_configured_slots(config.configured);
    set_firmware_directories(config.firmware);
    log_add(log_level::information, "the configuration is read again\n");
}

}  // namespace tarn::host
