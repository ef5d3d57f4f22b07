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

inline bool find_qos_section(Row &row) {
    row.record = qos_section(row);
    return row.record != nullptr;
}

// `Tag` is any type of the table's own.
template <class Tag>
struct QosCommit {
    static inline Transaction<CommitSet<chassis_slot::line_cards>> edited;

    static int stage(Row &row, const Column & /*column*/, const Binding & /*value*/) {
        edited.state.add(row.slot);
        return SNMP_ERR_NOERROR;
    }

    static std::uint8_t *found_record(Row &row) { return row.record; }

    static Stamp *edited_stamp(const Row &row) {
        SwitchSections *db = slot_sections<SwitchSections>(row.slot);
        return db != nullptr ? &db->switch_qos.stamp : nullptr;
    }

    static int commit(Row & /*row*/) {
        for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
            if (edited.state.contains(slot) && set_switch_qos_cfg(slot) != 0) {
                return SNMP_ERR_COMMITFAILED;
            }
        }
        return SNMP_ERR_NOERROR;
    }

    static constexpr Writes writes{.find = find_qos_section,
                                   .transaction = transaction_of<edited>,
                                   .stage = stage,
                                   .record = found_record,
                                   .section = edited_stamp,
                                   .commit = commit};
};

}  // namespace tarn

#endif
