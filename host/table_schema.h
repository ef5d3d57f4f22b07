// A table as the MIB describes it.
#ifndef TARN_HOST_TABLE_SCHEMA_H
#define TARN_HOST_TABLE_SCHEMA_H

#include <cstdint>
#include <string>
#include <vector>

#include "tarn/module_api.h"

namespace tarn::host {

struct Column {
    oid number;
    unsigned char type;  // net-snmp's ASN type
    bool writable;
};

struct IndexPart {
    unsigned char type;  // net-snmp's ASN type
    bool is_slot = false;
    // Of an octet string: its number of octets, and whether it stands in front of them in an instance.
    std::uint32_t minimum_length = 0;
    std::uint32_t maximum_length = 0;
    bool length_prefixed = false;
};

struct TableSchema {
    std::string name;
    std::vector<oid> root;        // the table's own OID; the entry is its child 1
    std::vector<Column> columns;  // those that can be read, ascending
    std::vector<IndexPart> index;

    // Rows belong to line cards; a table of any other kind is chassis-wide.
    [[nodiscard]] bool per_slot() const { return !index.empty() && index.front().is_slot; }
    // Sub-identifiers in front of a row's index: the table's OID, the entry and the column.
    [[nodiscard]] std::size_t prefix_length() const { return root.size() + 2; }
};

}  // namespace tarn::host

#endif
