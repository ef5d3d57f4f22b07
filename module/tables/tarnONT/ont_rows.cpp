#include "module/tables/tarnONT/ont_rows.h"

#include "module/operations/ont_queries.h"
#include "wire/records/ont.h"

using namespace tarn;

int is_ont_state_valid_unsafe(const std::uint8_t *list_record) {
    return !is_zero_serial(list_record) &&
                   load_integer(list_record, ont_list::state_code) == ont_list::state_working
               ? 1
               : 0;
}

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

}  // namespace tarn
