// The alarms configuration of the chassis, which is spread to every configured slot.
#ifndef TARN_MODULE_CONFIG_ALARMS_CONFIG_H
#define TARN_MODULE_CONFIG_ALARMS_CONFIG_H

#include <cstdint>

#include "module/common/exports.h"

// The cached 801-byte configuration (see alarms_config), which the host edits in place; null without the
// profiles database.
TARN_EXPORT void *slot_lib_get_alarms_config(void);
// Sends every entry whose two values differ from the chassis' own to the configured slots, then to the
// chassis. 0, or -1 when anything failed or the configuration was never read (logged).
TARN_EXPORT int slot_lib_set_alarms_config(void);

#endif
