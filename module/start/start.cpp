#include "module/start/start.h"

#include <cstdint>
#include <cstring>

#include "module/config/config_buffer.h"
#include "module/firmware/acs_firmware_operations.h"
#include "module/firmware/transfers.h"
#include "module/store/slot_database.h"
#include "module/store/utilization_sections.h"
#include "module/tables/scalars.h"
#include "tarn/module_api.h"
#include "wire/protocol.h"

namespace {

bool profiles_inited = false;

constexpr int default_utilization_interval = 300;  // seconds

int start_line_card(int slot) {
    init_config_buffer();
    return allocate_slot_mandb(slot) == 0 ? 0 : -1;
}

void stop_line_card(int slot) {
    deinit_config_buffer();
    cleanup_mandb(slot);
}

// A failed start leaves the firmware machinery and the scalars up; the next start runs all of them again.
int start_chassis_stores() {
    if (profiles_inited) {
        return 0;
    }
    init_acs_firmware_operations_manual();
    init_tarnONTFirmwareUpdateViaOMCI_manual();
    init_tarnONTDisable_manual();
    init_tarnONTFirmwaresVersionPriorityFile_manual();
    init_tarnONTAutoUpdateEnabled_manual();
    init_tarnPortsUtilizationInterval_manual();
    init_config_buffer();
    if (allocate_profiles_mandb() != 0) {
        return -1;
    }
    tarn::chassis_sections<tarn::UtilizationSections>()->utilization_interval = default_utilization_interval;
    profiles_inited = true;
    return 0;
}

// Not the mirror of the start: the utilization interval stays registered, the configuration buffer allocated.
void stop_chassis_stores() {
    if (!profiles_inited) {
        return;
    }
    deinit_tarnONTFirmwareUpdateViaOMCI_manual();
    deinit_acs_firmware_operations_manual();
    deinit_tarnONTDisable_manual();
    deinit_tarnONTFirmwaresVersionPriorityFile_manual();
    deinit_tarnONTAutoUpdateEnabled_manual();
    cleanup_profiles_mandb();
    profiles_inited = false;
}

}  // namespace

int mod_get_info(void *descriptor) {
    ModuleDescriptor info{};
    std::strcpy(info.family, "mod_snmp_agent");
    std::strcpy(info.variant, "blade-8");
    for (int i = 0; i < 5; ++i) {
        info.version[i] = static_cast<std::uint32_t>(tarn::release_numbers[i]);
    }
    std::memcpy(descriptor, &info, sizeof info);
    return 0;
}

int slot_initializer(int slot) {
    return slot == tarn::chassis_slot::profiles ? start_chassis_stores() : start_line_card(slot);
}

int slot_deinitializer(int slot) {
    if (slot == tarn::chassis_slot::profiles) {
        stop_chassis_stores();
    } else {
        stop_line_card(slot);
    }
    return 0;
}

int cleanup_lib(void) {
    tarn::end_transfers();
    for (int slot = 0; slot <= tarn::chassis_slot::profiles; ++slot) {
        slot_deinitializer(slot);
    }
    return 0;
}
