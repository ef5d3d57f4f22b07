// A printable log of the recent connections of every configured ONT.
#include "module/config/ont_config_store.h"
#include "module/operations/connection_log.h"
#include "module/store/ont_config_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

int answer_log(Row &row, const Reply &reply) {
    return reply.text(ont_connection_log(row.slot, row.serial.data()));
}

constexpr Column columns[] = {
    {3, octet_string, answered_by(answer_log)},
};

// The configured ONTs in store order, deleted ones included.
bool next_configured_ont(std::int64_t &cursor, Row &row) {
    if (get_all_ont_config(row.slot) == nullptr) {
        return false;
    }
    OntConfigSections &db = *slot_sections<OntConfigSections>(row.slot);
    for (; cursor >= 0 && cursor < ont_config::count; ++cursor) {
        std::uint8_t *record = db.ont_configs[static_cast<std::size_t>(cursor)].data();
        const std::uint8_t *serial = record + ont_config::serial.offset;
        if (!is_zero_serial(serial)) {
            ++cursor;
            row.record = record;
            row.serial = serial_at(serial);
            return true;
        }
    }
    return false;
}

constexpr Table table{
    .index = ont_index,
    .columns = columns,
    .rows = {.next = next_configured_ont},
    .answers = deaf_to_sets,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTConnectionLogTable, table)
