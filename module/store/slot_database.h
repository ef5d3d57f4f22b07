// The slot management database: per line card the last answer of every kind of query with its stamp, and the
// profiles database with what exists once in the chassis. Their contents are in sections.h.
#ifndef TARN_MODULE_STORE_SLOT_DATABASE_H
#define TARN_MODULE_STORE_SLOT_DATABASE_H

#include "module/common/exports.h"

TARN_EXPORT void initialize_mandb(void);
// 0, or -1 without memory or for a slot outside 0-15. An existing database keeps its contents.
TARN_EXPORT int allocate_slot_mandb(int slot);
TARN_EXPORT void cleanup_mandb(int slot);
TARN_EXPORT int allocate_profiles_mandb(void);
TARN_EXPORT void cleanup_profiles_mandb(void);
TARN_EXPORT void age_slot_mandb(void);
// Null for a slot outside 0-15 or without a database.
TARN_EXPORT void *get_slot_mandb(int slot);
TARN_EXPORT void *get_profiles_mandb(void);

#endif
