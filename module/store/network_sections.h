// Network settings of a card and of the chassis, and the chassis' alarms.
#ifndef TARN_MODULE_STORE_NETWORK_SECTIONS_H
#define TARN_MODULE_STORE_NETWORK_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/network.h"

namespace tarn {

struct NetworkSections {
    Section<network_config::size> network_config;
};

struct ChassisNetworkSections {
    Section<network_config::size> common_network_config;
    Section<alarms_config::size> alarms_config;
};

}  // namespace tarn

#endif
