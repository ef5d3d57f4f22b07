// Network settings of slots and of the chassis, and the terminal VLANs that the chassis spreads to its slots.
// Blocks are as network_config describes them; the getters return the cached one, which callers edit in place
// before they call the setter; whether it was read (Stamp::filled) is for them to look at.
#ifndef TARN_MODULE_CONFIG_NETWORK_CONFIG_H
#define TARN_MODULE_CONFIG_NETWORK_CONFIG_H

#include <cstdint>

#include "module/common/exports.h"

// The slot's block; null without a database.
TARN_EXPORT std::uint8_t *get_gpon_network_cfg(int slot);
// 0, also (with a log line) for a slot without a database; -1 without an answer.
TARN_EXPORT int set_gpon_network_cfg(int slot);
// The chassis' block; null without the profiles database.
TARN_EXPORT std::uint8_t *get_common_network_cfg(void);
// Sends the chassis' block, then brings the terminal VLANs of every configured slot in line with it, up to
// the first that fails. 0 or -1.
TARN_EXPORT int set_common_network_cfg(void);
// Frees the terminal VLANs of a slot that the chassis does not have and takes over the chassis' names. 0 or
// -1.
TARN_EXPORT int update_slots_terminal_vlans(int slot);

#endif
