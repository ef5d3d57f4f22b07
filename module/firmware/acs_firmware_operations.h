// The catalogue of ONT firmware images.
#ifndef TARN_MODULE_FIRMWARE_ACS_FIRMWARE_OPERATIONS_H
#define TARN_MODULE_FIRMWARE_ACS_FIRMWARE_OPERATIONS_H

#include "module/exports.h"

TARN_EXPORT void init_acs_firmware_operations_manual(void);
TARN_EXPORT void deinit_acs_firmware_operations_manual(void);

#endif
