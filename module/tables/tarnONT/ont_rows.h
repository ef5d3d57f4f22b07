// What the tables that are indexed by ONT serial share.
#ifndef TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H

#include <iterator>

#include "module/operations/ont_queries.h"
#include "module/store/ont_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/ont.h"

// Non-zero for a record of the ONT list that holds a working ONT.
TARN_EXPORT int is_ont_state_valid_unsafe(const std::uint8_t *list_record);

namespace tarn {

// The slot's database with a fresh ONT list; null for a slot without link or database. For walks.
OntSections *walked_onts(int slot);

// The ONT with the row's serial, its list record in row.record. No ONT has the all-zero serial.
bool find_ont(Row &row);

// The ONTs of a slot's list in the order of their serials.
struct ListedOnts {
    static bool may_walk(const Row &row) { return check_slot_link(row.slot) != 0; }
    static OntSections *read(const Row &row) {
        return get_all_ont_list(row.slot) != nullptr ? slot_sections<OntSections>(row.slot) : nullptr;
    }
    static std::int64_t count(const OntSections * /*db*/) { return max_onts; }
    static bool find(Row &row) { return find_ont(row); }
    static std::int64_t after(const OntSections *db, const Row &row) {
        return max_onts - std::ssize(onts_after(*db, row.serial.data()));
    }
    static bool enter(OntSections *db, Row &row, std::int64_t position) {
        row.record = db->ont_list[db->ont_list_by_serial[static_cast<std::size_t>(position)]].data();
        row.serial = serial_at(row.record);
        return true;
    }
};

// `Count` entries, numbered in row.number[0], of each ONT of the list that has them.
template <std::int64_t Count, bool (*Has)(const std::uint8_t *ont)>
struct EntriesOfListedOnts {
    static bool may_walk(const Row &row) { return ListedOnts::may_walk(row); }
    static OntSections *read(const Row &row) { return ListedOnts::read(row); }
    static std::int64_t count(const OntSections *db) { return ListedOnts::count(db) * Count; }
    static bool find(Row &row) { return find_ont(row) && Has(row.record); }
    // Of a serial that a card lists twice only the first ONT has entries, or the walk would come back to it.
    static std::int64_t after(const OntSections *db, const Row &row) {
        const OntOrder rest = onts_from(*db, row.serial.data());
        const std::uint8_t *ont = rest.empty() ? nullptr : db->ont_list[rest.front()].data();
        const bool listed = ont != nullptr && compare_serials(ont, row.serial.data()) == 0;
        if (listed && Has(ont) && row.number[0] + 1 < Count) {
            return (max_onts - std::ssize(rest)) * Count + row.number[0] + 1;
        }
        return (max_onts - std::ssize(onts_after(*db, row.serial.data()))) * Count;
    }
    static bool enter(OntSections *db, Row &row, std::int64_t position) {
        ListedOnts::enter(db, row, position / Count);
        row.number[0] = position % Count;
        return Has(row.record);
    }
};

}  // namespace tarn

#endif
