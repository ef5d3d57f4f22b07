// The staging copy: the one ONT record that the columns of a SET are written into before it goes to the card.
#ifndef TARN_MODULE_CONFIG_ONT_CONFIG_STAGING_H
#define TARN_MODULE_CONFIG_ONT_CONFIG_STAGING_H

#include <cstdint>

#include "module/common/exports.h"

// Stages the record with this serial, or with `create` non-zero a new one where there is none. 0 also when it
// is staged already; -1 when there is no such record or another ONT (of another slot, too) is staged, for the
// all-zero serial and, with a log line, where the card's own records have not come since the last write.
TARN_EXPORT int init_ont_config_buffer(int slot, const std::uint8_t *serial, int create);
// The staged record.
TARN_EXPORT std::uint8_t *get_ont_cb(void);
// Where commit_ont_config writes it: ONT id 0-63 and channel 0-7; -1: not given.
TARN_EXPORT void set_ont_cb_id(int id);
TARN_EXPORT void set_ont_cb_tree(int channel);
// Moves the identifiers of each of the staged record's tunnel lists to its front, in their order.
TARN_EXPORT void reorganize_ont_selective_tunnel_vids(void);
// Writes the staged record, if there is one, to its place in `slot`; nothing is staged after it. 0 or -1.
TARN_EXPORT int commit_ont_config(int slot);
// Drops a staged record.
TARN_EXPORT void invalidate_config_buffer(void);

namespace tarn {

// Whether this ONT of this slot is what is staged.
bool is_staged(int slot, const std::uint8_t *serial);

}  // namespace tarn

#endif
