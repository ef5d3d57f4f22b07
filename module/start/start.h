// Module descriptor, start and stop of slots.
#ifndef TARN_MODULE_START_START_H
#define TARN_MODULE_START_START_H

#include "module/common/exports.h"

// Fills the host's 84-byte descriptor; returns 0.
TARN_EXPORT int mod_get_info(void *descriptor);
// Slots 0-15 are line cards, 16 carries what exists once in the chassis. 0, or -1 without memory or for
// another slot number.
TARN_EXPORT int slot_initializer(int slot);
TARN_EXPORT int slot_deinitializer(int slot);
// Stops the slots 0-15 in order, then 16.
TARN_EXPORT int cleanup_lib(void);

#endif
