#include "host/agent/identity.h"

#include <strings.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include "tarn/mib_objects.h"
#include "tarn/module_api.h"
// After net-snmp's other headers.
#include <net-snmp/agent/agent_sysORTable.h>
#include <net-snmp/agent/mib_modules.h>
#include <net-snmp/library/read_config.h>

namespace tarn::host {
namespace {

// TARN-MIB's tarnAgent.
constexpr std::array<oid, 11> agent_identity = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 99, 1};

void set_state_flags(bool none) {
    for (const int flag : {NETSNMP_DS_LIB_DONT_PERSIST_STATE, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD,
                           NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE}) {
        (void)netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, flag, none ? 1 : 0);
    }
}

// Has net-snmp take a directive now; netsnmp_config would put it after the configuration file's.
void set_default(const char *application, const char *token, std::string value) {
    for (config_line *line = read_config_get_handlers(application); line != nullptr; line = line->next) {
        if (strcasecmp(token, line->config_token) == 0) {
            line->parse_line(line->config_token, value.data());
        }
    }
}

}  // namespace

void choose_standard_groups() {
    // Only what is listed is initialised: in particular not smux, for which net-snmp would listen on TCP port
    // 199 of every address.
    char groups[] =
        "system_mib,sysORTable,snmp_mib,setSerialNo,snmpEngine,snmpMPDStats,"
        "usmStats,usmUser,usmConf,vacm_vars,vacm_conf";
    add_to_init_list(groups);
    set_state_flags(true);
}

void describe_system(const char *application) {
    init_mib_modules();
    set_default(application, "sysDescr", "Tarn " TARN_VERSION ", SNMP agent of a GPON chassis");
    set_default(application, "sysObjectID", ".1.3.6.1.4.1.32473.1.22.99.1");
    set_default(application, "sysServices", "2");
    std::array root = mib_root;
    (void)register_sysORTable(root.data(), root.size(), "The line cards of a GPON chassis, TARN-MIB");
}

bool keep_state_in(const std::string &directory) {
    std::error_code failed;
    if (!std::filesystem::is_directory(directory, failed) ||
        access(directory.c_str(), R_OK | W_OK | X_OK) != 0) {
        return false;
    }
    set_state_flags(false);
    set_persistent_directory(directory.c_str());
    // net-snmp reads back what it kept only from a directory of its search path.
    (void)setenv("SNMPCONFPATH", directory.c_str(), 1);
    return true;
}

void save_state(const char *application) {
    snmp_store(application);
}

void announce_start() {
    send_enterprise_trap_vars(SNMP_TRAP_COLDSTART, 0, agent_identity.data(),
                              static_cast<int>(agent_identity.size()), nullptr);
}

}  // namespace tarn::host
