// Fixed sample data for the address table, the session lists, the VLAN list and the table of MAC addresses,
// for trying a manager without a card. Nothing in the module calls these.
#ifndef TARN_MODULE_ABI_SAMPLE_DATA_H
#define TARN_MODULE_ABI_SAMPLE_DATA_H

#include <cstdint>

#include "module/common/exports.h"

// 14 entries.
TARN_EXPORT void fake_global_ont_address_table(int slot);
// 10 sessions.
TARN_EXPORT void fake_pppoe_sessions(int slot);
// None.
TARN_EXPORT void fake_igmp_stats(int slot);
// A list of the VLANs 1 to 3000.
TARN_EXPORT std::uint8_t *fake_vlan_list(void);

// 10,240 and 16,384 entries.
TARN_EXPORT void emulate_mac_table(int slot);
TARN_EXPORT void fake_switch_mac_table(int slot);

#endif
