// The one buffer into which a card's configuration image is inflated.
#ifndef TARN_MODULE_CONFIG_CONFIG_BUFFER_H
#define TARN_MODULE_CONFIG_CONFIG_BUFFER_H

#include "module/exports.h"

// Allocates the buffer (1,821,429 bytes) unless it is there.
TARN_EXPORT void init_config_buffer(void);
// Frees it: whichever slot stops first takes the buffer from all, until the next slot starts.
TARN_EXPORT void deinit_config_buffer(void);

#endif
