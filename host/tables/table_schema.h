// A table as the MIB describes it.
#ifndef TARN_HOST_TABLES_TABLE_SCHEMA_H
#define TARN_HOST_TABLES_TABLE_SCHEMA_H

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tarn/module_api.h"

namespace tarn::host {

struct Column {
    oid number;
    unsigned char type;  // net-snmp's ASN type
    bool writable;
    bool row_status = false;  // creates and destroys its row
    // The numbers that the syntax admits, or the numbers of octets, as lowest and highest; empty: all.
    std::vector<std::pair<std::int64_t, std::int64_t>> admitted{};
};

struct IndexPart {
    unsigned char type;  // net-snmp's ASN type
    bool is_slot = false;
    // Of an octet string: its number of octets, and whether it stands in front of them in an instance.
    std::uint32_t minimum_length = 0;
    std::uint32_t maximum_length = 0;
    bool length_prefixed = false;

    // The fewest sub-identifiers that it takes.
    [[nodiscard]] std::size_t shortest() const {
        if (type == ASN_IPADDRESS) {
            return 4;
        }
        return type == ASN_OCTET_STR ? minimum_length + (length_prefixed ? 1U : 0U) : 1U;
    }
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
    // The column that creates and destroys rows; null where managers do neither.
    [[nodiscard]] const Column *row_status() const {
        const auto found = std::ranges::find(columns, true, &Column::row_status);
        return found == columns.end() ? nullptr : &*found;
    }
    // False where managers can write to nothing.
    [[nodiscard]] bool writable() const {
        return std::ranges::find(columns, true, &Column::writable) != columns.end();
    }
    // The fewest sub-identifiers of a row's index.
    [[nodiscard]] std::size_t shortest_index() const {
        std::size_t length = 0;
        for (const IndexPart &part : index) {
            length += part.shortest();
        }
        return length;
    }
};

}  // namespace tarn::host

#endif
