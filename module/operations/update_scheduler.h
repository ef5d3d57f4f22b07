// The ONT firmware updates that a line card has scheduled.
#ifndef TARN_MODULE_OPERATIONS_UPDATE_SCHEDULER_H
#define TARN_MODULE_OPERATIONS_UPDATE_SCHEDULER_H

#include <cstdint>

#include "module/common/exports.h"

// The number of tasks, fetched from the card when that is due.
TARN_EXPORT int get_update_ont_scheduler(int slot);
// 0 or -1. A serial is 8 bytes, a channel 0-7; the ONT is named by its serial when use_serial is not 0,
// otherwise by channel and ONT id.
TARN_EXPORT int add_update_ont_scheduler(int slot, const std::uint8_t *serial, const char *file_name,
                                         int channel, int ont_id, int use_serial);
TARN_EXPORT int delete_update_ont_scheduler(int slot, const std::uint8_t *serial, int channel, int ont_id,
                                            int use_serial);

#endif
