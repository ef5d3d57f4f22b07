// What the three tables that edit a card's QoS configuration share: the cached section is edited in the
// action phase and sent, for the slots that were edited, in the commit phase. Each table has its own slots to
// commit.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_QOS_COMMIT_H
#define TARN_MODULE_TABLES_TARNSWITCH_QOS_COMMIT_H

#include <array>

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
    static inline std::array<bool, chassis_slot::line_cards> slots_to_commit;

    static void clear() { slots_to_commit.fill(false); }

    static int stage(Row &row, const Column & /*column*/, const Binding & /*value*/) {
        slots_to_commit[static_cast<std::size_t>(row.slot)] = true;
        return SNMP_ERR_NOERROR;
    }

    static std::uint8_t *edited(Row &row) { return row.record; }

    static Stamp *edited_stamp(const Row &row) {
        SwitchSections *db = slot_sections<SwitchSections>(row.slot);
        return db != nullptr ? &db->switch_qos.stamp : nullptr;
    }

    static int commit(Row & /*row*/) {
        for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
            if (slots_to_commit[static_cast<std::size_t>(slot)] && set_switch_qos_cfg(slot) != 0) {
                return SNMP_ERR_COMMITFAILED;
            }
        }
        return SNMP_ERR_NOERROR;
    }

    static constexpr Writes writes{.find = find_qos_section,
                                   .reserve2 = clear,
                                   .stage = stage,
                                   .record = edited,
                                   .section = edited_stamp,
                                   .commit = commit,
                                   .drop = clear};
};

}  // namespace tarn

#endif
