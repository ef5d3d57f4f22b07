// What the tables that are indexed by ONT serial share.
#ifndef TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H

#include "module/store/ont_sections.h"
#include "module/tables/frame/table.h"

// Non-zero for a record of the ONT list that holds a working ONT.
TARN_EXPORT int is_ont_state_valid_unsafe(const std::uint8_t *list_record);

namespace tarn {

// The slot's database with a fresh ONT list; null for a slot without link or database. For walks.
OntSections *walked_onts(int slot);

// The ONT with the row's serial, its list record in row.record. No ONT has the all-zero serial.
bool find_ont(Row &row);
// The first ONT in serial order after the row's serial.
bool next_ont(Row &row);

}  // namespace tarn

#endif
