#include "host/tables/set_log.h"

#include <cstdlib>
#include <string>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

std::string manager_of(const netsnmp_agent_session &agent) {
    const netsnmp_pdu &pdu = *agent.pdu;
    std::string manager = pdu.version == SNMP_VERSION_3
                              ? "user " + printable({pdu.securityName, pdu.securityNameLen})
                              : "a community";
    netsnmp_transport *transport =
        agent.session == nullptr ? nullptr : snmp_sess_transport(snmp_sess_pointer(agent.session));
    if (transport != nullptr && transport->f_fmtaddr != nullptr) {
        char *address = transport->f_fmtaddr(transport, pdu.transport_data, pdu.transport_data_length);
        if (address != nullptr) {
            manager += std::string(" at ") + address;
            std::free(address);
        }
    }
    return manager;
}

std::string text_of(const netsnmp_variable_list &variable) {
    char name[1024];
    (void)snprint_objid(name, sizeof name, variable.name, variable.name_length);
    if (variable.type == ASN_OCTET_STR) {
        return std::string(name) + " = " + std::to_string(variable.val_len) + " octets";
    }
    char value[256];
    (void)snprint_value(value, sizeof value, variable.name, variable.name_length, &variable);
    return std::string(name) + " = " + value;
}

// In a phase that takes the SET back a request's own status is not why.
std::string outcome_of(const netsnmp_agent_request_info &reqinfo, const netsnmp_request_info &request) {
    const int status = request.status != SNMP_ERR_NOERROR ? request.status : reqinfo.asp->status;
    if (reqinfo.mode == MODE_SET_COMMIT) {
        return status == SNMP_ERR_NOERROR ? "done" : snmp_errstring(status);
    }
    const char *taken_back = reqinfo.mode == MODE_SET_UNDO ? "undone" : "not done";
    return status == SNMP_ERR_NOERROR ? taken_back : std::string(taken_back) + ": " + snmp_errstring(status);
}

}  // namespace

void log_set(const netsnmp_agent_request_info *reqinfo, const netsnmp_request_info *requests) {
    const std::string manager = manager_of(*reqinfo->asp);
    for (const auto *request = requests; request != nullptr; request = request->next) {
        log_add(log_level::information, "SET by %s: %s: %s\n", manager.c_str(),
                text_of(*request->requestvb).c_str(), outcome_of(*reqinfo, *request).c_str());
    }
}

}  // namespace tarn::host
