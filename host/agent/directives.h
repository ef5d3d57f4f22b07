// The agent's directives in net-snmp's configuration files.
#ifndef TARN_HOST_AGENT_DIRECTIVES_H
#define TARN_HOST_AGENT_DIRECTIVES_H

#include <functional>
#include <string>
#include <vector>

#include "host/agent/host.h"

namespace tarn::host {

// What the configuration files say, as they say it; host_config makes a HostConfig of it.
struct Settings {
    std::string module_path;
    std::string mib_directories;  // separated by colons
    std::string chassis;
    std::string control;  // path of a socket
    SlotSet slots = SlotSet().set();
    std::string state;  // the directory of the engine's identity; empty: a new one at each start
    std::string log;    // as open_log takes it
    int log_level = 6;
    std::string command_path = "/usr/sbin:/usr/bin:/sbin:/bin";  // where the module's commands are
    int largest_bulk = 1000;                                     // variables of a GETBULK answer
    HostConfig host;
    bool configured_slots_given = false;
    bool candidate_slots_given = false;
};

// Makes the agent's directives known to net-snmp, for `application`'s files.
void register_directives(const char *application);

// Has the directives that net-snmp meets while `read` runs passed on to `settings`. Returns the number of
// problems, unknown directives too; each is reported with its file and line.
int read_directives(Settings &settings, const std::function<void()> &read);

// Lists the directives with the form of their values, one a line, on standard output.
void print_directives();

// Puts the settings together. False, and the reason in `error`, when something is missing or wrong.
bool host_config(const Settings &settings, HostConfig &config, std::string &error);

}  // namespace tarn::host

#endif
