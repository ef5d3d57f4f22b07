// A card's configuration image: the one buffer into which it is inflated, and the sections cut from it.
#ifndef TARN_MODULE_CONFIG_CONFIG_BUFFER_H
#define TARN_MODULE_CONFIG_CONFIG_BUFFER_H

#include <cstddef>
#include <cstdint>

#include "module/common/cache.h"
#include "module/common/exports.h"

// Allocates the buffer (1,821,429 bytes) unless it is there.
TARN_EXPORT void init_config_buffer(void);
// Frees it: whichever slot stops first takes the buffer from all, until the next slot starts.
TARN_EXPORT void deinit_config_buffer(void);

// Fetches the image of a slot (0-15), of the profile store (16) or of the chassis (18) into the buffer, which
// the next fetch overwrites. Returns the buffer, with its old contents where the card does not answer and
// with what could be inflated where the image is damaged (logged with zlib's code); null without a buffer.
TARN_EXPORT std::uint8_t *get_all_config(int address);

namespace tarn {

// Refreshes `count` bytes that stand at `offset` of the image of `address`, when their stamp has expired.
// True when they were copied: from this address' image only, and where that does not come whole an earlier
// one of it does for bytes that never came. Without a buffer neither they nor the stamp are touched.
bool refresh_from_image(int address, std::size_t offset, std::uint8_t *to, std::size_t count, Stamp &stamp);

}  // namespace tarn

#endif
