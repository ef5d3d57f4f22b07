// Building and reading the index of a row, in both of its forms.
#ifndef TARN_MODULE_TABLES_FRAME_INDEX_H
#define TARN_MODULE_TABLES_FRAME_INDEX_H

#include "module/tables/frame/row.h"
#include "tarn/module_api.h"

namespace tarn {

using Index = std::span<const IndexPart>;

// The number of sub-identifiers of an index without text parts.
std::size_t index_length(Index index);

// Writes the row's index to `to`, which has room for index_length sub-identifiers.
void build_index(Index index, const Row &row, oid *to);

// Reads an index that must be whole and in range; anything else gives false. The slot is not taken from it.
bool parse_exact_index(Index index, const oid *from, std::size_t length, Row &row);

// Reads what there is of an index in order to find its successor: a missing number reads as -1, before the
// first, a missing serial byte as 0; a value above its range reads as the last one with everything after it
// at its end.
void parse_partial_index(Index index, const oid *from, std::size_t length, Row &row);

// The index list of an iterator table: writes the row into the host's list, and reads it back.
// Reading gives false where a value is out of range or the list too short.
void fill_index_list(Index index, const Row &row, netsnmp_variable_list *list);
bool parse_index_list(Index index, const netsnmp_variable_list *list, Row &row);

}  // namespace tarn

#endif
