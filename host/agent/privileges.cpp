#include "host/agent/privileges.h"

#include <grp.h>
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tarn::host {
namespace {

// 0 where the directive is not given.
unsigned named_id(int which) {
    const int id = netsnmp_ds_get_int(NETSNMP_DS_APPLICATION_ID, which);
    return id > 0 ? static_cast<unsigned>(id) : 0;
}

bool take_groups(const passwd *user, gid_t group) {
    return (user != nullptr ? initgroups(user->pw_name, group) : setgroups(1, &group)) == 0 &&
           setgid(group) == 0;
}

}  // namespace

bool become_agent_user(const std::vector<std::string> &files, std::string &error) {
    const uid_t uid = named_id(NETSNMP_DS_AGENT_USERID);
    gid_t gid = named_id(NETSNMP_DS_AGENT_GROUPID);
    if (uid == 0 && gid == 0) {
        return true;
    }
    const passwd *user = uid != 0 ? getpwuid(uid) : nullptr;
    if (gid == 0 && user == nullptr) {
        error = "agentuser: a user without a name needs an agentgroup";
        return false;
    }
    gid = gid != 0 ? gid : user->pw_gid;
    const uid_t new_uid = uid != 0 ? uid : getuid();
    if (new_uid == geteuid() && gid == getegid()) {
        return true;
    }
    for (const std::string &file : files) {
        if (chown(file.c_str(), new_uid, gid) != 0 && errno != ENOENT) {
            error = file + ": cannot be given to agentuser and agentgroup: " + std::strerror(errno);
            return false;
        }
    }
    if (!take_groups(user, gid) || setuid(new_uid) != 0) {
        error = std::string("agentuser and agentgroup cannot be taken: ") + std::strerror(errno);
        return false;
    }
    return true;
}

}  // namespace tarn::host
