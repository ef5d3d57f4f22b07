// Giving up what only root may do.
#ifndef TARN_HOST_AGENT_PRIVILEGES_H
#define TARN_HOST_AGENT_PRIVILEGES_H

#include <string>
#include <vector>

namespace tarn::host {

// Becomes the user and the group that net-snmp's directives agentuser and agentgroup name, where they do; the
// group is the user's own unless one is named. `files`, those of them that are there, go to them first.
// False, and the reason in `error`, when that cannot be.
bool become_agent_user(const std::vector<std::string> &files, std::string &error);

}  // namespace tarn::host

#endif
