// The chassis-wide ONT templates: 32 records (see ont_template), edited in the cache and sent one by one.
#ifndef TARN_MODULE_CONFIG_ONT_TEMPLATES_H
#define TARN_MODULE_CONFIG_ONT_TEMPLATES_H

#include <cstdint>

#include "module/common/exports.h"

// The templates, refreshed from the profile store's image when they have expired; null without the profiles
// database.
TARN_EXPORT std::uint8_t *get_ont_templates(void);
// Sends one template (473 bytes). 0 or -1.
TARN_EXPORT int set_ont_template(int index, const std::uint8_t *template_record);
// The templates that a SET has edited: forget all, note one, send all in ascending order (-1 at the first
// failure, which leaves the later ones noted).
TARN_EXPORT void cleanup_templates_commit_needs(void);
TARN_EXPORT void add_template_to_commit(int index);
TARN_EXPORT int commit_ont_templates(void);

#endif
