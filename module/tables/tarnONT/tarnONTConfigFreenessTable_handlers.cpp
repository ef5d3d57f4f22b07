// Which places, PON channel and ONT id, are taken, and by whom. The table answers this and nothing else: a
// request for another column is left as it is.
#include "module/tables/tarnONT/ont_config_rows.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

// The records go on behind the eighth channel, so places of a ninth can be taken.
constexpr int channels =
    (ont_config::count + ont_config::onts_per_channel - 1) / ont_config::onts_per_channel;
constexpr IndexPart row_index[] = {slot_part, number_part(channels),
                                   number_part(ont_config::onts_per_channel)};
constexpr std::size_t channel = 0;
constexpr std::size_t ont_id = 1;

constexpr Column columns[] = {
    {4, octet_string, field(ont_config::serial)},
};

bool take(Row &row, std::int64_t index) {
    OntConfigSections *db = slot_sections<OntConfigSections>(row.slot);
    if (db == nullptr || get_all_ont_config(row.slot) == nullptr || index >= ont_config::count) {
        return false;
    }
    row.record = ont_config_at(*db, static_cast<int>(index));
    return ont_in_use(row.record);
}

bool find_place(Row &row) {
    return take(row, row.number[channel] * ont_config::onts_per_channel + row.number[ont_id]);
}

bool next_place(Row &row) {
    const std::int64_t first_channel = std::max<std::int64_t>(row.number[channel], 0);
    for (std::int64_t index = first_channel * ont_config::onts_per_channel + row.number[ont_id] + 1;
         index < ont_config::count; ++index) {
        if (take(row, index)) {
            row.number[channel] = index / ont_config::onts_per_channel;
            row.number[ont_id] = index % ont_config::onts_per_channel;
            return true;
        }
    }
    return false;
}

constexpr Table table{
    .name = "tarnONTConfigFreenessTable",
    .index = row_index,
    .columns = columns,
    .rows = {.find = find_place,
             .successor = next_place,
             .index_builder = "tarnONTConfigFreenessTable_get_next_entry"},
    .answers = {.unknown_column = accepted, .ignores_set = true},
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnONTConfigFreenessTable, table)
