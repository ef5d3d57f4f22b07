// Fixed sample data for the address table and the session lists, for trying a manager without a card. Nothing
// in the module calls these.
#ifndef TARN_MODULE_COMMON_OPERATIONS_SAMPLE_DATA_H
#define TARN_MODULE_COMMON_OPERATIONS_SAMPLE_DATA_H

#include "module/exports.h"

// 14 entries.
TARN_EXPORT void fake_global_ont_address_table(int slot);
// 10 sessions.
TARN_EXPORT void fake_pppoe_sessions(int slot);
// None.
TARN_EXPORT void fake_igmp_stats(int slot);

#endif
