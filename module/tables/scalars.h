// Start and stop of the module's scalars, in the order of the chassis-wide start.
#ifndef TARN_MODULE_TABLES_SCALARS_H
#define TARN_MODULE_TABLES_SCALARS_H

#include "module/common/exports.h"

TARN_EXPORT void init_tarnONTFirmwareUpdateViaOMCI_manual(void);
TARN_EXPORT void deinit_tarnONTFirmwareUpdateViaOMCI_manual(void);
TARN_EXPORT void init_tarnONTDisable_manual(void);
TARN_EXPORT void deinit_tarnONTDisable_manual(void);
TARN_EXPORT void init_tarnONTFirmwaresVersionPriorityFile_manual(void);
TARN_EXPORT void deinit_tarnONTFirmwaresVersionPriorityFile_manual(void);
TARN_EXPORT void init_tarnONTAutoUpdateEnabled_manual(void);
TARN_EXPORT void deinit_tarnONTAutoUpdateEnabled_manual(void);
TARN_EXPORT void init_tarnPortsUtilizationInterval_manual(void);
TARN_EXPORT void deinit_tarnPortsUtilizationInterval_manual(void);

#endif
