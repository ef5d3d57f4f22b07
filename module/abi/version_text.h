// What the module offers and has no use for itself.
#ifndef TARN_MODULE_ABI_VERSION_TEXT_H
#define TARN_MODULE_ABI_VERSION_TEXT_H

#include "module/common/exports.h"

// A 64-byte text that the module never writes.
TARN_EXPORT char *get_sm_version(void);
TARN_EXPORT void init_common(void);

#endif
