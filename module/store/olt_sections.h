// State, configuration and identity of a card as a whole.
#ifndef TARN_MODULE_STORE_OLT_SECTIONS_H
#define TARN_MODULE_STORE_OLT_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/identity.h"
#include "wire/records/olt.h"

namespace tarn {

struct OltSections {
    Section<olt_state::size> olt_state;
    Section<board_hardware::size> hardware_information;
    Section<board_versions::size> version_information;
    Section<olt_config::size + 2> olt_config;  // with the hold flag at its end
};

}  // namespace tarn

#endif
