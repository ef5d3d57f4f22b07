// Module descriptor, start and stop of slots, and truth values.
#ifndef TARN_MODULE_COMMON_COMMON_H
#define TARN_MODULE_COMMON_COMMON_H

#include "module/exports.h"

// Fills the host's 84-byte descriptor; returns 0.
TARN_EXPORT int mod_get_info(void *descriptor);
// Slots 0-15 are line cards, 16 carries what exists once in the chassis. 0, or -1 without memory or for
// another slot number.
TARN_EXPORT int slot_initializer(int slot);
TARN_EXPORT int slot_deinitializer(int slot);
// Stops the slots 0-15 in order, then 16.
TARN_EXPORT int cleanup_lib(void);
// A 64-byte text that the module never writes.
TARN_EXPORT char *get_sm_version(void);
TARN_EXPORT void init_common(void);

// SNMP TruthValue to internal boolean: 1 for exactly 1, otherwise 0.
TARN_EXPORT int set_truth_value(int snmp_value);
// Internal boolean to SNMP TruthValue: 1 where the low 16 bits are exactly 1, otherwise 2.
TARN_EXPORT int get_truth_value(int internal_value);

#endif
