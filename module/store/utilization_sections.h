// How the chassis measures the utilization of switch ports.
#ifndef TARN_MODULE_STORE_UTILIZATION_SECTIONS_H
#define TARN_MODULE_STORE_UTILIZATION_SECTIONS_H

#include "module/store/sections.h"

namespace tarn {

struct UtilizationSections {
    std::uint16_t utilization_interval;  // seconds
};

}  // namespace tarn

#endif
