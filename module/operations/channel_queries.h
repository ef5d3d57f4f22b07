// Queries of the state of a card's PON channels and of the card as a whole. Each returns a place in the slot
// database, refreshed where its stamp had expired, or null for a slot without a database.
#ifndef TARN_MODULE_OPERATIONS_CHANNEL_QUERIES_H
#define TARN_MODULE_OPERATIONS_CHANNEL_QUERIES_H

#include <cstdint>

#include "module/common/exports.h"

// The channel's 69-byte record (see channel_state), at most 20 s old. Null also for a channel outside 0-7.
TARN_EXPORT std::uint8_t *get_olt_channel_state(int slot, int channel);
// The eight records one after the other, with bytes 3-4 and 7-10 of each at most 20 s old.
TARN_EXPORT std::uint8_t *get_olt_channels_state_lite(int slot);
// The 32-byte record (see olt_state).
TARN_EXPORT std::uint8_t *get_olt_state(int slot);
// Identity texts of 32 bytes and version texts of 16 bytes each.
TARN_EXPORT std::uint8_t *get_hardware_information(int slot);
TARN_EXPORT std::uint8_t *get_version_information(int slot);

#endif
