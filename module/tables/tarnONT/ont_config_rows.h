// What the tables over the ONT configuration records share: their rows, and a SET that stages the record of
// one ONT, edits the staged copy and sends it once.
#ifndef TARN_MODULE_TABLES_TARNONT_ONT_CONFIG_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_ONT_CONFIG_ROWS_H

#include "module/config/ont_config_staging.h"
#include "module/config/ont_config_store.h"
#include "module/config/profiles.h"
#include "module/tables/frame/table.h"
#include "wire/records/ont_config.h"

namespace tarn {

// A 16-bit profile index; 65535 is none on both sides.
inline constexpr Conversion profile_conversion{
    [](std::int64_t stored) -> std::int64_t {
        return profile_pon_to_snmp(static_cast<std::uint16_t>(stored));
    },
    [](std::int64_t value) -> std::int64_t {
        return profile_snmp_to_pon(static_cast<std::uint32_t>(value));
    }};
constexpr Source profile(Field field) {
    return field_of(nullptr, field, profile_conversion);
}

// ---- Rows ----

// The ONT that is in use under the row's serial.
inline bool find_ont_config(Row &row) {
    row.record = get_all_ont_config_by_serial(row.slot, row.serial.data(), nullptr);
    return row.record != nullptr;
}

// A SET works on the staged copy, so every row that can be named will do.
inline bool any_row(Row & /*row*/) {
    return true;
}

inline bool has_serial(const std::uint8_t *ont) {
    return !is_zero_serial(ont + ont_config::serial.offset);
}

// Entry row.number[0] of an ONT, `Stride` bytes behind the ONT's entry 0, is the row's record.
template <int Stride>
bool find_ont_entry(Row &row) {
    if (!find_ont_config(row)) {
        return false;
    }
    row.record += row.number[0] * Stride;
    return true;
}

// The ONTs in use in store order, each with those of its `Entries` entries that are shown. `Shown` looks at
// the record from the entry's place, so that the fields of entry 0 are the entry's.
template <int Entries, int Stride, bool (*ShownOnt)(const std::uint8_t *ont),
          bool (*ShownEntry)(const std::uint8_t *entry)>
bool next_ont_entry(std::int64_t &cursor, Row &row) {
    OntConfigSections *db = slot_sections<OntConfigSections>(row.slot);
    if (db == nullptr || get_all_ont_config(row.slot) == nullptr) {
        return false;
    }
    while (cursor < std::int64_t{ont_config::count} * Entries) {
        std::uint8_t *ont = ont_config_at(*db, static_cast<int>(cursor / Entries));
        if (!ont_in_use(ont) || !ShownOnt(ont)) {
            cursor = (cursor / Entries + 1) * Entries;
            continue;
        }
        row.number[0] = cursor++ % Entries;
        row.record = ont + row.number[0] * Stride;
        if (ShownEntry(row.record)) {
            row.serial = serial_at(ont + ont_config::serial.offset);
            return true;
        }
    }
    return false;
}
inline bool always(const std::uint8_t * /*record*/) {
    return true;
}

// ---- SET ----

inline int stage_ont(Row &row, const Column & /*column*/, const Binding & /*value*/) {
    return init_ont_config_buffer(row.slot, row.serial.data(), 0) == 0 ? SNMP_ERR_NOERROR
                                                                       : SNMP_ERR_INCONSISTENTNAME;
}

template <int Stride>
std::uint8_t *staged_entry(Row &row) {
    return get_ont_cb() + row.number[0] * Stride;
}

inline int commit_ont(Row &row) {
    return commit_ont_config(row.slot) == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
}

// A SET that stages the record of one ONT, edits the copy at `Record` and sends it once.
template <RecordOf Record, int (*Commit)(Row &row) = commit_ont, bool (*Find)(Row &row) = any_row>
inline constexpr Writes stages_one_ont{
    .find = Find, .stage = stage_ont, .record = Record, .commit = Commit, .undo = invalidate_config_buffer};

// A walk of slots that are configured only.
template <bool (*Next)(std::int64_t &cursor, Row &row)>
bool next_in_configured_slot(std::int64_t &cursor, Row &row) {
    return slot_isconfigured(row.slot) != 0 && Next(cursor, row);
}

// The ONTs in use that have a serial, each with all of its entries.
template <int Entries, int Stride>
inline constexpr auto next_entry_of_ont = next_ont_entry<Entries, Stride, has_serial, always>;

// A table of entries in each ONT, `Stride` bytes apart.
template <int Stride, bool (*Next)(std::int64_t &cursor, Row &row)>
constexpr Table ont_entries_table(const char *name, Index index, std::span<const Column> columns) {
    return {
        .name = name,
        .index = index,
        .columns = columns,
        .rows = {.find = find_ont_entry<Stride>, .next = Next},
        .writes = stages_one_ont<staged_entry<Stride>>,
    };
}

}  // namespace tarn

#endif
