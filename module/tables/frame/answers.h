// How a table answers what it cannot do: SNMP errors, and when they are looked for. Most tables are `usual`;
// what one table does otherwise reads as a sentence: usual.with(reserving, no_row, accepted).
#ifndef TARN_MODULE_TABLES_FRAME_ANSWERS_H
#define TARN_MODULE_TABLES_FRAME_ANSWERS_H

#include <array>

#include "tarn/module_api.h"

namespace tarn {

// The phases in which something can be missing; reserving are all phases of a SET but the action.
enum Phase : unsigned { reading = 1, reserving = 2, acting = 4, setting = reserving | acting, always = 7 };
inline constexpr unsigned phases = 3;

// What a request may lack: the row data that the host hands to an iterator table, the row that its index
// names, a column of that number (or, in a SET, one that can be written).
enum Lack : unsigned { no_row_data, no_row, no_column };

// A phase lets pass what it cannot do. What is accepted to be missing is not looked for.
inline constexpr int accepted = SNMP_ERR_NOERROR;

struct Answers {
    // By phase and by what is missing.
    std::array<std::array<int, 3>, phases> errors{{
        {SNMP_NOSUCHINSTANCE, SNMP_NOSUCHINSTANCE, SNMP_NOSUCHOBJECT},
        {accepted, SNMP_NOSUCHINSTANCE, SNMP_ERR_NOTWRITABLE},
        {accepted, SNMP_NOSUCHINSTANCE, SNMP_ERR_NOTWRITABLE},
    }};
    // An unknown column in a missing row reports the row.
    bool row_before_column = false;
    // Every mode but GET is left alone.
    bool ignores_set = false;
    // Of a GET without row data, and of an action that failed with genErr: the handler returns the error,
    // too.
    bool returns_errors = false;

    constexpr Answers with(Phase when, Lack missing, int error) const {
        Answers answers = *this;
        for (unsigned phase = 0; phase < phases; ++phase) {
            if ((when & 1U << phase) != 0) {
                answers.errors[phase][missing] = error;
            }
        }
        return answers;
    }
    constexpr Answers with(bool Answers::*habit) const {
        Answers answers = *this;
        answers.*habit = true;
        return answers;
    }

    [[nodiscard]] constexpr int in(int mode, Lack missing) const {
        return errors[mode == MODE_GET ? 0 : mode == MODE_SET_ACTION ? 2 : 1][missing];
    }
};

inline constexpr Answers usual{};
inline constexpr Answers row_first = usual.with(&Answers::row_before_column);
inline constexpr Answers deaf_to_sets = usual.with(&Answers::ignores_set);
// Only the action looks for the row.
inline constexpr Answers row_when_acting = usual.with(reserving, no_row, accepted);
// Without a row there is no object.
inline constexpr Answers no_row_no_object = usual.with(always, no_row, SNMP_NOSUCHOBJECT);
// A trigger in every slot: the same without row data, and a column that does nothing may be set.
inline constexpr Answers trigger_answers =
    no_row_no_object.with(always, no_row_data, SNMP_NOSUCHOBJECT).with(acting, no_column, accepted);

}  // namespace tarn

#endif
