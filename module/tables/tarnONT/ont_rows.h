// What the tables that are indexed by ONT serial share.
#ifndef TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_ONT_ROWS_H

#include "module/store/ont_sections.h"
#include "module/tables/frame/table.h"

namespace tarn {

// The slot's database with a fresh ONT list; null for a slot without link or database. For walks.
OntSections *walked_onts(int slot);

// The ONT with the row's serial, its list record in row.record. No ONT has the all-zero serial.
bool find_ont(Row &row);
// The first ONT in serial order behind the row's serial.
bool next_ont(Row &row);

// Readers of identifiers. A serial byte beyond the end reads as 0; an index number counts from 0, and one
// that is absent or 0 reads as -1.
void serial_from_oid(const oid *name, std::size_t length, std::size_t position, std::uint8_t *serial);
int ordinal_from_oid(const oid *name, std::size_t length, std::size_t position);

}  // namespace tarn

#endif
