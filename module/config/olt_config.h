// The configuration of a slot's OLT and the chassis-wide lists of OLT profiles.
#ifndef TARN_MODULE_CONFIG_OLT_CONFIG_H
#define TARN_MODULE_CONFIG_OLT_CONFIG_H

#include <cstdint>

#include "module/common/exports.h"

// The slot's 9,510-byte record with its hold flag (olt_config::hold) after it; while the flag is not 0 the
// record is not refreshed. Null without a database.
TARN_EXPORT std::uint8_t *get_olt_cfg(int slot);
// Sends the record as it is cached. 0 or -1.
TARN_EXPORT int set_olt_cfg(int slot);

// 32 records of 7,454 or of 294 bytes (see olt_profile); null without the profiles database.
TARN_EXPORT std::uint8_t *get_olt_address_table_profiles(void);
TARN_EXPORT std::uint8_t *get_olt_vlan_profiles(void);

#endif
