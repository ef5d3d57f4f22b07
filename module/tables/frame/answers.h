// How a table answers what it cannot do: SNMP errors, and when they are looked for. Most tables are `usual`;
// what one table does otherwise stands in its description by name.
#ifndef TARN_MODULE_TABLES_FRAME_ANSWERS_H
#define TARN_MODULE_TABLES_FRAME_ANSWERS_H

#include "tarn/module_api.h"

namespace tarn {

// Of a phase that lets pass what it cannot do.
inline constexpr int accepted = SNMP_ERR_NOERROR;

struct Answers {
    int missing_row = SNMP_NOSUCHINSTANCE;
    // Iterator style: of a GET without row data, and whether it is the handler's result instead of the
    // request's error.
    int no_row_data = SNMP_NOSUCHINSTANCE;
    bool no_row_data_is_result = false;
    // Of a SET without row data; 0: a valid index will do. In the action phase, where it differs.
    int set_without_row_data = 0;
    int act_without_row_data = set_without_row_data;
    int unknown_column = SNMP_NOSUCHOBJECT;
    // Whether a GET or the first phase of a SET of an unknown column in a missing row reports the row.
    bool row_before_column = false;
    // Of a SET of a column that is not there or read-only.
    int refused_column = SNMP_ERR_NOTWRITABLE;
    // The same in the action phase.
    int refused_in_action = SNMP_ERR_NOTWRITABLE;
    // Whether the genErr of a failed action is the handler's result too.
    bool failure_is_result = false;
    // A table that leaves every mode but GET alone.
    bool ignores_set = false;
    // False: only the action phase looks for the row.
    bool reserve_needs_row = true;
    // The error when it is not there; 0: missing_row.
    int set_missing_row = 0;
};

inline constexpr Answers usual{};
inline constexpr Answers row_first{.row_before_column = true};
inline constexpr Answers deaf_to_sets{.ignores_set = true};
inline constexpr Answers row_when_acting{.reserve_needs_row = false};
// A trigger in every slot: without a row there is no object, and a column that does nothing may be set.
inline constexpr Answers trigger_answers{.missing_row = SNMP_NOSUCHOBJECT,
                                         .no_row_data = SNMP_NOSUCHOBJECT,
                                         .set_without_row_data = SNMP_NOSUCHOBJECT,
                                         .refused_in_action = accepted};

}  // namespace tarn

#endif
