// Commit, confirm, roll back, save and reset of a card's configuration and of the chassis-wide profiles.
#ifndef TARN_MODULE_SWITCH_BLADE_CONFIG_MANAGEMENT_H
#define TARN_MODULE_SWITCH_BLADE_CONFIG_MANAGEMENT_H

#include "module/common/exports.h"

// Each sends one request to the slot (modulo 256): 0, or -1 without an answer.
TARN_EXPORT int slot_lib_set_commit_change(int slot);
TARN_EXPORT int slot_lib_set_confirm_change(int slot);
TARN_EXPORT int slot_lib_set_rollback_change(int slot);
TARN_EXPORT int slot_lib_set_save_to_startup(int slot);
TARN_EXPORT int slot_lib_set_to_default(int slot);
// The same, but -2 without an answer.
TARN_EXPORT int slot_lib_set_reread_config(int slot);
TARN_EXPORT int slot_lib_set_reload_blade_slot(int slot);
// Each sends its request to the chassis-wide targets 16, 17 and 18 in turn and stops at the first that gives
// no answer: 0, or -1 then.
TARN_EXPORT int slot_lib_confirm_blade_profiles(void);
TARN_EXPORT int slot_lib_set_commit_blade_profiles(void);
TARN_EXPORT int slot_lib_set_rollback_blade_profiles(void);
TARN_EXPORT int slot_lib_set_default_blade_profiles(void);

#endif
