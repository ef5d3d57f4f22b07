// What the three tables that edit a card's QoS configuration share: the cached section is edited in the
// action phase and sent, for the slots that were edited, in the commit phase. Each table has its own slots to
// commit.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_QOS_COMMIT_H
#define TARN_MODULE_TABLES_TARNSWITCH_QOS_COMMIT_H

#include "module/store/commit_set.h"
#include "module/store/switch_sections.h"
#include "module/switch/switch_operations.h"
#include "module/tables/frame/table.h"
#include "wire/protocol.h"

namespace tarn {

inline std::uint8_t *qos_section(Row &row) {
    return get_switch_qos_cfg(row.slot);
}

inline Stamp *qos_stamp(const Row &row) {
    SwitchSections *db = slot_sections<SwitchSections>(row.slot);
    return db != nullptr ? &db->switch_qos.stamp : nullptr;
}

// The slots that a SET edits. They stay edited, so that each variable of a SET sends them.
using EditedSlots = Transaction<CommitSet<chassis_slot::line_cards>>;

template <EditedSlots &Edited>
int commit_qos(Row & /*row*/) {
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (Edited.state.contains(slot) && set_switch_qos_cfg(slot) != 0) {
            return SNMP_ERR_COMMITFAILED;
        }
    }
    return SNMP_ERR_NOERROR;
}

template <EditedSlots &Edited>
inline constexpr Writes edits_qos = edits_section<Edited, qos_stamp, commit_qos<Edited>, item_of_slot>;

}  // namespace tarn

#endif
