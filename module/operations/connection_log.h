// A printable log of an ONT's recent connections.
#ifndef TARN_MODULE_OPERATIONS_CONNECTION_LOG_H
#define TARN_MODULE_OPERATIONS_CONNECTION_LOG_H

#include <cstdint>
#include <string_view>

#include "module/common/exports.h"

// Four upper-case letters and eight hexadecimal digits (the buffer needs 13 bytes), or sixteen digits where
// the serial does not begin with letters (17 bytes). Null and an empty text when the buffer has less.
TARN_EXPORT char *SnToString(const std::uint8_t *serial, char *buffer, int size);

// The log of an ONT, NUL-terminated, valid until the next call. Empty, with a log line, for an ONT that is
// not configured.
TARN_EXPORT char *generate_ont_connections(int slot, const std::uint8_t *serial);

namespace tarn {

// The same with its length.
std::string_view ont_connection_log(int slot, const std::uint8_t *serial);

}  // namespace tarn

#endif
