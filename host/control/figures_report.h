// The figures as the control socket gives them.
#ifndef TARN_HOST_CONTROL_FIGURES_REPORT_H
#define TARN_HOST_CONTROL_FIGURES_REPORT_H

#include <nlohmann/json.hpp>

#include "host/control/figures.h"

namespace tarn::host {

// docs/protocol.md describes it; slots count from 1.
nlohmann::ordered_json report_figures(const IpcClient &cards, const AgentFigures &figures);

}  // namespace tarn::host

#endif
