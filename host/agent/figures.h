// Gathers what is counted all over the agent.
#ifndef TARN_HOST_AGENT_FIGURES_H
#define TARN_HOST_AGENT_FIGURES_H

#include <list>

#include "host/agent/manager_requests.h"
#include "host/control/figures.h"
#include "host/tables/table.h"

namespace tarn::host {

AgentFigures gather_figures(const ManagerRequests &requests, const std::list<Table> &tables);

}  // namespace tarn::host

#endif
