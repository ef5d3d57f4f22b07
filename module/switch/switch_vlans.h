// The VLANs of a card's switch: configured ones, which are edited in the slot database and sent, and the ones
// that the switch runs.
#ifndef TARN_MODULE_SWITCH_SWITCH_VLANS_H
#define TARN_MODULE_SWITCH_SWITCH_VLANS_H

#include <cstdint>

#include "module/common/exports.h"

// The lists (see vlan_list) in the slot database; null for a slot without one. The configured list holds
// board VLAN numbers, identifiers minus 1; the operational one is presented as it stands.
TARN_EXPORT std::uint8_t *get_switch_vlan_list(int slot);
TARN_EXPORT std::uint8_t *get_switch_vlan_list_operational(int slot);
// All configured VLANs: the array of 4094 records (see vlan_record) by board VLAN number, null where there is
// none. A record that is cached already is not refreshed.
TARN_EXPORT std::uint8_t **get_switch_vlans_block(int slot);
// The place of one VLAN, refreshed, in that array. `index` is the identifier, 1-4094. Null without memory.
TARN_EXPORT std::uint8_t **get_switch_vlan(int slot, int index);
// The record of a VLAN as the operational list carries it, or null.
TARN_EXPORT std::uint8_t *get_switch_vlan_operational(int slot, int vlan);
// Creates the VLAN in the slot database, or resets it there. 0, or -1 without memory or for no identifier.
TARN_EXPORT int init_switch_vlan(int slot, int index);
// Sends the VLAN as it stands in the slot database. 0, or -1 without an answer or a record.
TARN_EXPORT int set_switch_vlan(int slot, int index);

namespace tarn {

// The VLANs of a list, counted no further than the list goes.
int vlans_listed(const std::uint8_t *list);

// Notes that a VLAN (its identifier) is edited in the slot database.
void note_unsent_vlan(int slot, int index);
// Forgets the VLANs of all slots that were edited and not sent since: the next block read fetches the card's.
void drop_unsent_vlans();

}  // namespace tarn

#endif
