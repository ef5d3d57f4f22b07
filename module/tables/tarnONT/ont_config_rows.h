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

inline bool has_serial(const std::uint8_t *ont) {
    return !is_zero_serial(ont + ont_config::serial.offset);
}

inline bool any_record(const std::uint8_t * /*record*/) {
    return true;
}

// The slot's refreshed records; null without a database.
inline OntConfigSections *ont_configs_of(const Row &row) {
    return get_all_ont_config(row.slot) != nullptr ? slot_sections<OntConfigSections>(row.slot) : nullptr;
}

// The ONTs in use in store order, each with those of its `Entries` entries that are shown: number 0 of a row.
// Entry 0 is where the record's fields say, the others follow `Stride` bytes apart; `Shown` looks at an entry
// through the fields of entry 0.
template <int Entries, int Stride, bool ConfiguredSlots = false,
          bool (*ShownOnt)(const std::uint8_t *ont) = has_serial,
          bool (*Shown)(const std::uint8_t *entry) = any_record>
struct OntEntries {
    static bool may_walk(const Row &row) { return !ConfiguredSlots || slot_isconfigured(row.slot) != 0; }
    static OntConfigSections *read(const Row &row) { return ont_configs_of(row); }
    static std::int64_t count(const OntConfigSections * /*db*/) {
        return std::int64_t{ont_config::count} * Entries;
    }
    static bool enter(OntConfigSections *db, Row &row, std::int64_t position) {
        std::uint8_t *ont = ont_config_at(*db, static_cast<int>(position / Entries));
        row.serial = serial_at(ont + ont_config::serial.offset);
        row.number[0] = position % Entries;
        row.record = ont + row.number[0] * Stride;
        return ont_in_use(ont) && ShownOnt(ont) && Shown(row.record);
    }
    static bool find(Row &row) {
        if (!find_ont_config(row)) {
            return false;
        }
        row.record += row.number[0] * Stride;
        return Shown(row.record);
    }
};

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

// Any row that can be named will do: the SET works on a staged copy.
inline bool any_row(Row & /*row*/) {
    return true;
}
// Stages the record of one ONT and edits the copy at `Record`.
template <RecordOf Record, int (*Commit)(Row &row) = commit_ont>
inline constexpr Writes stages_one_ont =
    stages_one<stage_ont, Record, Commit, invalidate_config_buffer>.found_by(any_row);

// A table of entries in each ONT, `Stride` bytes apart.
template <int Entries, int Stride, bool ConfiguredSlots = false>
constexpr Table ont_entries_table(Index index, std::span<const Column> columns) {
    return {
        .index = index,
        .columns = columns,
        .rows = rows_of<OntEntries<Entries, Stride, ConfiguredSlots>>,
        .writes = stages_one_ont<staged_entry<Stride>>,
    };
}

}  // namespace tarn

#endif
