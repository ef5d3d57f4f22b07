// Which places, PON channel and ONT id, are taken, and by whom. The table answers this and nothing else: a
// request for another column is left as it is.
#include "module/tables/tarnONT/ont_config_rows.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

// The records go on after the eighth channel, so places of a ninth can be taken.
constexpr int channels =
    (ont_config::count + ont_config::onts_per_channel - 1) / ont_config::onts_per_channel;
constexpr IndexPart row_index[] = {slot_part, number_part(channels),
                                   number_part(ont_config::onts_per_channel)};
constexpr std::size_t channel = 0;
constexpr std::size_t ont_id = 1;

constexpr Column columns[] = {
    {4, octet_string, field(ont_config::serial)},
};

struct TakenPlaces {
    static OntConfigSections *read(const Row &row) { return ont_configs_of(row); }
    static std::int64_t count(const OntConfigSections * /*db*/) { return ont_config::count; }
    static std::int64_t position(const OntConfigSections * /*db*/, const Row &row) {
        return row.number[channel] * ont_config::onts_per_channel + row.number[ont_id];
    }
    static std::int64_t after(const OntConfigSections * /*db*/, const Row &row) {
        const std::int64_t from_channel = std::max<std::int64_t>(row.number[channel], 0);
        return from_channel * ont_config::onts_per_channel + row.number[ont_id] + 1;
    }
    static bool enter(OntConfigSections *db, Row &row, std::int64_t position) {
        row.number = {position / ont_config::onts_per_channel, position % ont_config::onts_per_channel};
        row.record = ont_config_at(*db, static_cast<int>(position));
        return ont_in_use(row.record);
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<TakenPlaces>("tarnONTConfigFreenessTable_get_next_entry"),
    .answers = deaf_to_sets.with(reading, no_column, accepted),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTConfigFreenessTable, table)
