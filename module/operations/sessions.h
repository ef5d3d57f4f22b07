// PPPoE sessions and IGMP statistics of a card.
#ifndef TARN_MODULE_OPERATIONS_SESSIONS_H
#define TARN_MODULE_OPERATIONS_SESSIONS_H

#include <cstdint>

#include "module/common/exports.h"

// The sessions of 31 bytes, as the card sends them; null for none. Without an answer the old ones stay.
TARN_EXPORT std::uint8_t *get_pppoe_sessions(int slot);
TARN_EXPORT void cleanup_pppoe_sessions(int slot);
// The card is asked, but its statistics are not kept: the list is always empty, null.
TARN_EXPORT std::uint8_t *get_igmp_stats(int slot);
TARN_EXPORT void cleanup_igmp_stats(int slot);

#endif
