// The log of an ONT's recent connections, kept for the ONT asked for last.
#ifndef TARN_MODULE_OPERATIONS_ONT_CONNECTIONS_H
#define TARN_MODULE_OPERATIONS_ONT_CONNECTIONS_H

#include <cstdint>

#include "module/common/exports.h"

// The 990-byte block (see ont_connections); how many entries it has stands in the slot database. Null, with a
// log line, for an ONT that is not configured. A failed request leaves the entries that the ONT had.
TARN_EXPORT std::uint8_t *get_ont_connections(int slot, const std::uint8_t *serial);

#endif
