// The addresses learnt behind a card's ONTs: in the card's order, by serial, and as one compact text.
#ifndef TARN_MODULE_OPERATIONS_ADDRESS_TABLE_H
#define TARN_MODULE_OPERATIONS_ADDRESS_TABLE_H

#include <cstdint>

#include "module/common/exports.h"
#include "module/store/address_sections.h"

// The entries of 37 bytes (see ont_address) in the card's order, as many as address_entries says; null for a
// slot without a database.
TARN_EXPORT std::uint8_t *get_global_ont_address_table(int slot);
// Rebuilds the order by serial; equal serials keep the card's order.
TARN_EXPORT void insert_sort_global_ont_address_table(int slot);
// "v1" and 56 characters an entry, NUL-terminated; null before the first success.
TARN_EXPORT char *get_global_ont_address_table_raw(int slot);

namespace tarn {

// The number of entries that are there: the count that the card stated may exceed what memory could be had
// for.
std::size_t address_entries(const AddressSections &db);
// The length of the order by serial; shorter than the table when memory was short.
std::size_t sorted_address_entries(const AddressSections &db);
// The entry at a position of the order by serial; null beyond the end.
const std::uint8_t *address_by_serial(const AddressSections &db, std::size_t position);

}  // namespace tarn

#endif
