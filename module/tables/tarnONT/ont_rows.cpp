#include "module/tables/tarnONT/ont_rows.h"
#include "module/store/ont_sections.h"

#include <algorithm>
#include <climits>

#include "module/operations/ont_queries.h"
#include "wire/records/ont.h"

namespace tarn {

OntSections *walked_onts(int slot) {
    return check_slot_link(slot) != 0 && get_all_ont_list(slot) != nullptr ? slot_sections<OntSections>(slot)
                                                                           : nullptr;
}

bool find_ont(Row &row) {
    if (is_zero_serial(row.serial.data())) {
        return false;
    }
    row.record = get_all_ont_state_list_by_serial(row.slot, row.serial.data());
    return row.record != nullptr;
}

bool next_ont(Row &row) {
    OntSections *db = walked_onts(row.slot);
    if (db == nullptr) {
        return false;
    }
    const OntOrder rest = onts_after(*db, row.serial.data());
    if (rest.empty()) {
        return false;
    }
    row.record = db->ont_list[rest.front()].data();
    row.serial = serial_at(row.record);
    return true;
}

void serial_from_oid(const oid *name, std::size_t length, std::size_t position, std::uint8_t *serial) {
    for (std::size_t i = 0; i < serial_size; ++i) {
        serial[i] = position + i < length ? static_cast<std::uint8_t>(name[position + i]) : std::uint8_t{0};
    }
}

int ordinal_from_oid(const oid *name, std::size_t length, std::size_t position) {
    const oid sub_id = position < length ? name[position] : 0;
    return static_cast<int>(std::min<oid>(sub_id, INT_MAX)) - 1;
}

}  // namespace tarn
