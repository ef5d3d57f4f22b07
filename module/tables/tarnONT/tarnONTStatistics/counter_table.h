// The tables of ONT performance monitoring: one row a counter, indexed by ONT, a key (an Ethernet port, a GEM
// port or a cross-connect) and the counter's position. They are one table, described eleven times.
#ifndef TARN_MODULE_TABLES_TARNONT_TARNONTSTATISTICS_COUNTER_TABLE_H
#define TARN_MODULE_TABLES_TARNONT_TARNONTSTATISTICS_COUNTER_TABLE_H

#include <span>

#include "module/statistics/GStatisticsCommon.h"
#include "module/store/counter_sections.h"
#include "module/tables/tarnONT/ont_rows.h"
#include "wire/serial.h"

namespace tarn {

// A run of counter positions: `count` counters of a counter module, from its counter `first` on.
struct CounterBlock {
    int module;
    int first;
    int count;
};

// A table's cache in a slot database, whatever its dimensions.
struct CounterCache {
    std::array<std::uint8_t, serial_size> *serial;
    Stamp *stamp;
    std::span<std::uint32_t> values;
};

struct CounterTable {
    int keys;
    int positions;
    // Up or down, or no direction, whose requests have none and whose counters are those of the uplink.
    GTrafficDirection_enum direction;
    std::span<const CounterBlock> blocks;  // together `positions` counters
    CounterCache (*cache)(CounterSections &db);
};

// Describes a table whose cache is a section of the slot database, with the section's dimensions.
template <auto Section, std::size_t Blocks>
constexpr CounterTable counter_table(GTrafficDirection_enum direction, const CounterBlock (&blocks)[Blocks]) {
    using Cached = std::remove_reference_t<decltype(std::declval<CounterSections &>().*Section)>;
    return {Cached::keys, Cached::positions, direction, blocks, [](CounterSections &db) -> CounterCache {
                auto &section = db.*Section;
                return {&section.serial, &section.stamp, section.values};
            }};
}

// The values of a key's counters, fetched with those of all other keys unless the cache holds this ONT's.
// Null without a database or for a key outside the table's. The record is the ONT's in the list.
std::uint32_t *get_counters(const CounterTable &counters, int slot, const std::uint8_t *ont_entry,
                            int channel, int ont_id, int key);
// The name of a counter, empty where the catalogue has none.
const char *counter_name(const CounterTable &counters, int position);

// ---- Rows: number[0] is the key, number[1] the position ----

bool next_counter(Row &row, const CounterTable &counters);
int answer_counter_name(const Row &row, const Reply &reply, const CounterTable &counters);
int answer_counter_value(const Row &row, const Reply &reply, const CounterTable &counters);

// The identifiers are one sub-identifier longer than other tables'.
inline constexpr std::size_t counter_table_prefix = 12;

template <const CounterTable &Counters>
struct CounterTableParts {
    static constexpr IndexPart row_index[] = {slot_part, serial_part, ordinal_part(Counters.keys),
                                              ordinal_part(Counters.positions)};
    static int name(Row &row, const Reply &reply) { return answer_counter_name(row, reply, Counters); }
    static int value(Row &row, const Reply &reply) { return answer_counter_value(row, reply, Counters); }
    static bool next(Row &row) { return next_counter(row, Counters); }
    static constexpr Column columns[] = {
        {1, unsigned32, slot_plus(1)},        {2, octet_string, row_serial},
        {3, unsigned32, index_number(0, 1)},  {4, unsigned32, index_number(1, 1)},
        {5, octet_string, answered_by(name)}, {6, unsigned32, answered_by(value)},
    };
    static constexpr Table table(const char *index_builder) {
        return {
            .index = row_index,
            .columns = columns,
            .rows = {.find = find_ont,
                     .successor = next,
                     .index_builder = index_builder,
                     .prefix = counter_table_prefix},
            .answers = usual.with(reading, no_column, SNMP_NOSUCHINSTANCE),
        };
    }
};

}  // namespace tarn

// The exported function that returns a key's values.
#define MODULE_COUNTERS_FUNCTION(function, counters)                                                      \
    TARN_EXPORT std::uint32_t *function(int slot, const std::uint8_t *ont_entry, int channel, int ont_id, \
                                        int key) {                                                        \
        return tarn::get_counters(counters, slot, ont_entry, channel, ont_id, key);                       \
    }

// The callbacks of the table T.
#define MODULE_COUNTER_TABLE(T, counters) \
    MODULE_NEXTGEN_TABLE(T, tarn::CounterTableParts<counters>::table("append_index_" #T))

#endif
