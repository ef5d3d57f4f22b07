// An option of the switch's general configuration as a table with one row a slot. A SET sends the section at
// once.
#ifndef TARN_MODULE_TABLES_TARNSWITCH_GENERAL_OPTION_H
#define TARN_MODULE_TABLES_TARNSWITCH_GENERAL_OPTION_H

#include "module/common/truth_value.h"
#include "module/store/cached_query.h"
#include "module/store/switch_sections.h"
#include "module/switch/switch_operations.h"
#include "module/tables/frame/table.h"

namespace tarn {

inline std::uint8_t *general_section(Row &row) {
    return get_switch_general_cfg(row.slot);
}

// `Failure` is the error of a card that does not answer.
template <Field Flag, int Failure>
struct GeneralOption {
    static int set(Row &row, const Binding &value) {
        std::uint8_t *section = general_section(row);
        if (section == nullptr) {
            return SNMP_NOSUCHINSTANCE;
        }
        Stamp &stamp = slot_sections<SwitchSections>(row.slot)->switch_general.stamp;
        if (!may_edit(stamp, "set_switch_general_cfg", row.slot)) {
            return SNMP_ERR_GENERR;
        }
        store_integer(section, Flag, set_truth_value(static_cast<int>(*value.val.integer)));
        if (set_switch_general_cfg(row.slot) != 0) {
            stamp.drop();
            return Failure;
        }
        return SNMP_ERR_NOERROR;
    }

    static constexpr Column columns[] = {
        {1, unsigned32, slot_plus(1)},
        {.number = 2,
         .type = integer,
         .source = field_of(general_section, Flag, nonzero_conversion),
         .check = any_integer,
         .action = set,
         .second_check = integer_within(1, 2, SNMP_ERR_WRONGVALUE)},
    };

    static constexpr Table table() {
        return {
            .index = slot_index,
            .columns = columns,
            .rows = record_of_slot<general_section>,
        };
    }
};

}  // namespace tarn

#endif
