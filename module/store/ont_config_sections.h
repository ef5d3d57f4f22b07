// The configuration of a card's ONTs.
#ifndef TARN_MODULE_STORE_ONT_CONFIG_SECTIONS_H
#define TARN_MODULE_STORE_ONT_CONFIG_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/ont_config.h"

namespace tarn {

struct OntConfigSections {
    Records<ont_config::size, ont_config::count> ont_configs;
    std::array<std::uint16_t, ont_config::count> ont_configs_by_serial;  // store indices
    Stamp ont_configs_stamp;
};

}  // namespace tarn

#endif
