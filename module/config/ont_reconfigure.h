// Makes a card apply an ONT's stored configuration again.
#ifndef TARN_MODULE_CONFIG_ONT_RECONFIGURE_H
#define TARN_MODULE_CONFIG_ONT_RECONFIGURE_H

#include <cstdint>

#include "module/common/exports.h"

// 0 when the card answered, -1 otherwise; the serial is 8 bytes.
TARN_EXPORT int reconfigure_ont(int slot, const std::uint8_t *serial);

#endif
