// Updates of the firmware of a line card and of its ONTs. Each returns 0 when the card took the order.
#ifndef TARN_MODULE_OPERATIONS_FIRMWARE_UPDATE_H
#define TARN_MODULE_OPERATIONS_FIRMWARE_UPDATE_H

#include <cstdint>

#include "module/common/exports.h"

// 0 or -1.
TARN_EXPORT int update_olt_firmware(int slot);
// Sends nothing; 0.
TARN_EXPORT int mass_update_ont_firmware(int slot);
// The card chooses the image. 0 or -1; the serial is 8 bytes.
TARN_EXPORT int update_ont_firmware(int slot, const std::uint8_t *serial);
// With an image of the TFTP directory's firmware folder, whose size and CRC-32 go along. 0; -1 for an unknown
// ONT or an image that cannot be read; otherwise the negative transport result or the card's error status.
TARN_EXPORT int update_ont_firmware_via_OMCI(int slot, const std::uint8_t *serial, const char *file_name);

#endif
