// The configuration of a card's PON channels.
#ifndef TARN_MODULE_CONFIG_OLT_CHANNEL_CONFIG_H
#define TARN_MODULE_CONFIG_OLT_CHANNEL_CONFIG_H

#include <cstdint>

#include "module/common/exports.h"

// The channel's 97-byte record (see olt_channel_config) in the slot database; null for a slot without a
// database or a channel outside 0-7. Without an answer the old record is returned and the next call asks
// again.
TARN_EXPORT std::uint8_t *get_olt_channel_config(int slot, int channel);
// Sends the record as it stands in the slot database. 0, or -1 without an answer.
TARN_EXPORT int set_olt_channel_config(int slot, int channel);

#endif
