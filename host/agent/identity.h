// What the agent is to a manager before any table: the standard groups, and an SNMPv3 engine that stays the
// same from one start to the next.
#ifndef TARN_HOST_AGENT_IDENTITY_H
#define TARN_HOST_AGENT_IDENTITY_H

#include <string>

namespace tarn::host {

// Which of net-snmp's own MIB modules there are; before init_agent.
void choose_standard_groups();
// Says what the system is: its description, sysObjectID and sysServices, which the configuration may change,
// and its entry in the sysORTable; between init_agent and init_snmp.
void describe_system(const char *application);

// Keeps the engine's id, its boots and what managers change in the standard groups in a directory, where an
// earlier run left them; before init_snmp, or while it reads the directives that precede the MIBs. False when
// the directory cannot be written. Without this call nothing is kept: each start makes a new engine.
bool keep_state_in(const std::string &directory);
// Writes the state; nothing without a directory.
void save_state(const char *application);

// Sends coldStart to those that the configuration names.
void announce_start();

}  // namespace tarn::host

#endif
