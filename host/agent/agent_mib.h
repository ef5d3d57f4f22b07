// The objects of TARN-AGENT-MIB: what the agent counts of itself, for managers.
#ifndef TARN_HOST_AGENT_AGENT_MIB_H
#define TARN_HOST_AGENT_AGENT_MIB_H

#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <functional>

#include "host/control/figures.h"

namespace tarn::host {

class AgentMib {
  public:
    // Registers the objects with net-snmp; `cards` must outlive them. True when net-snmp took them.
    bool register_objects(const IpcClient &cards, std::function<AgentFigures()> figures);
    // Takes them out again; before net-snmp is shut down.
    void unregister_objects();
    AgentMib() = default;
    ~AgentMib() { unregister_objects(); }
    AgentMib(const AgentMib &) = delete;
    AgentMib &operator=(const AgentMib &) = delete;

  private:
    static int serve_figures(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
                             netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);
    static int serve_slots(netsnmp_mib_handler *handler, netsnmp_handler_registration *registration,
                           netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

    const IpcClient *cards_ = nullptr;
    std::function<AgentFigures()> figures_;
    netsnmp_handler_registration *scalars_ = nullptr;
    netsnmp_handler_registration *slots_ = nullptr;
};

}  // namespace tarn::host

#endif
