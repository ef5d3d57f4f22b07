// What a new record holds: listed fields, the other bytes 0.
#ifndef TARN_WIRE_DEFAULTS_H
#define TARN_WIRE_DEFAULTS_H

#include <span>

#include "wire/record.h"

namespace tarn {

// `value` in a field and in the same field of the entries after it, `count` in all, `stride` bytes apart.
struct Default {
    Field field;
    std::int64_t value;
    int count = 1;
    int stride = 0;
};

// Writes the listed fields and nothing else.
constexpr void write_defaults(std::uint8_t *record, std::span<const Default> defaults) {
    for (const Default &entry : defaults) {
        for (int i = 0; i < entry.count; ++i) {
            store_integer(record, entry.field.at(i, entry.stride), entry.value);
        }
    }
}

}  // namespace tarn

#endif
