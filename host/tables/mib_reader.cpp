#include "host/tables/mib_reader.h"

#include <net-snmp/mib_api.h>

#include <algorithm>
#include <optional>
#include <string_view>

namespace tarn::host {
namespace {

constexpr std::string_view slot_convention = "TarnSlot";
constexpr std::string_view row_status_convention = "RowStatus";

bool has_convention(const struct tree *node, std::string_view name) {
    const char *convention = node->tc_index >= 0 ? get_tc_descriptor(node->tc_index) : nullptr;
    return convention != nullptr && convention == name;
}

// The ASN type of a MIB syntax; 0 for one that no column can have.
unsigned char asn_type(int mib_type) {
    switch (mib_type) {
        case TYPE_INTEGER:
        case TYPE_INTEGER32:
            return ASN_INTEGER;
        case TYPE_UNSIGNED32:
        case TYPE_UINTEGER:
        case TYPE_GAUGE:
            return ASN_UNSIGNED;
        case TYPE_COUNTER:
            return ASN_COUNTER;
        case TYPE_COUNTER64:
            return ASN_COUNTER64;
        case TYPE_TIMETICKS:
            return ASN_TIMETICKS;
        case TYPE_IPADDR:
        case TYPE_NETADDR:
            return ASN_IPADDRESS;
        case TYPE_OCTETSTR:
        case TYPE_OPAQUE:
        case TYPE_BITSTRING:
            return ASN_OCTET_STR;
        case TYPE_OBJID:
            return ASN_OBJECT_ID;
        default:
            return 0;
    }
}

// A syntax with the sizes 0 and n has its length in front of its octets and is always n octets long.
void set_lengths(IndexPart &part, const struct range_list *ranges, bool implied) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> sizes;
    for (const auto *range = ranges; range != nullptr; range = range->next) {
        sizes.emplace_back(static_cast<std::uint32_t>(range->low), static_cast<std::uint32_t>(range->high));
    }
    std::sort(sizes.begin(), sizes.end());
    part.maximum_length = sizes.empty() ? MAX_OID_LEN : sizes.back().second;
    part.minimum_length = sizes.empty() ? 0 : sizes.front().first;
    part.length_prefixed = !implied && part.minimum_length != part.maximum_length;
    if (sizes.size() == 2 && sizes[0].second == 0 && sizes[1].first == sizes[1].second) {
        part.minimum_length = part.maximum_length;
    }
}

// What the syntax admits of the numbers of a type, or of the numbers of octets.
std::vector<std::pair<std::int64_t, std::int64_t>> admitted_by(const struct tree *node, unsigned char type) {
    // The parser keeps each bound in a signed int.
    const auto bound = [type](int parsed) -> std::int64_t {
        return type == ASN_INTEGER ? parsed : std::int64_t{static_cast<std::uint32_t>(parsed)};
    };
    std::vector<std::pair<std::int64_t, std::int64_t>> admitted;
    for (const auto *range = node->ranges; range != nullptr; range = range->next) {
        admitted.emplace_back(bound(range->low), bound(range->high));
    }
    for (const auto *value = node->enums; value != nullptr; value = value->next) {
        admitted.emplace_back(value->value, value->value);
    }
    return admitted;
}

std::vector<struct tree *> children_in_order(const struct tree *node) {
    std::vector<struct tree *> children;
    for (struct tree *child = node->child_list; child != nullptr; child = child->next_peer) {
        children.push_back(child);
    }
    std::sort(children.begin(), children.end(),
              [](const auto *a, const auto *b) { return a->subid < b->subid; });
    return children;
}

std::optional<IndexPart> read_index_part(const struct index_list *entry, int module_id) {
    const struct tree *node = find_tree_node(entry->ilabel, module_id);
    if (node == nullptr) {
        node = find_tree_node(entry->ilabel, -1);
    }
    if (node == nullptr || asn_type(node->type) == 0) {
        return std::nullopt;
    }
    IndexPart part{.type = asn_type(node->type)};
    part.is_slot = has_convention(node, slot_convention);
    if (part.type == ASN_OCTET_STR) {
        set_lengths(part, node->ranges, entry->isimplied != 0);
    }
    return part;
}

std::vector<oid> oid_of(const struct tree *node) {
    std::vector<oid> name;
    for (; node != nullptr; node = node->parent) {
        name.push_back(node->subid);
    }
    std::reverse(name.begin(), name.end());
    return name;
}

std::optional<TableSchema> read_table(const struct tree *table, int module_id, std::string &error) {
    TableSchema schema;
    schema.name = table->label;
    schema.root = oid_of(table);
    const std::vector<struct tree *> entries = children_in_order(table);
    if (entries.size() != 1 || entries.front()->subid != 1) {
        error = schema.name + ": a table needs one entry, its child 1";
        return std::nullopt;
    }
    const struct tree *entry = entries.front();
    for (const struct index_list *index = entry->indexes; index != nullptr; index = index->next) {
        const std::optional<IndexPart> part = read_index_part(index, module_id);
        if (!part) {
            error = schema.name + ": the index object " + index->ilabel + " is not defined or has no type";
            return std::nullopt;
        }
        schema.index.push_back(*part);
    }
    for (const struct tree *node : children_in_order(entry)) {
        const unsigned char type = asn_type(node->type);
        if (type == 0) {
            error = schema.name + ": the column " + node->label + " has no type";
            return std::nullopt;
        }
        if (node->access == MIB_ACCESS_READONLY || node->access == MIB_ACCESS_READWRITE ||
            node->access == MIB_ACCESS_CREATE) {
            schema.columns.push_back({node->subid, type, node->access != MIB_ACCESS_READONLY,
                                      has_convention(node, row_status_convention), admitted_by(node, type)});
        }
    }
    if (schema.index.empty() || schema.columns.empty()) {
        error = schema.name + ": a table needs an INDEX and a column that can be read";
        return std::nullopt;
    }
    return schema;
}

bool read_subtree(const struct tree *node, int module_id, std::vector<TableSchema> &tables,
                  std::string &error) {
    constexpr std::string_view table_suffix = "Table";
    for (const struct tree *child : children_in_order(node)) {
        if (child->modid == module_id && std::string_view(child->label).ends_with(table_suffix)) {
            std::optional<TableSchema> schema = read_table(child, module_id, error);
            if (!schema) {
                return false;
            }
            tables.push_back(*std::move(schema));
        } else if (!read_subtree(child, module_id, tables, error)) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::vector<TableSchema> read_mib_tables(const std::vector<std::string> &directories,
                                         const std::string &module, std::string &error) {
    for (const std::string &directory : directories) {
        if (add_mibdir(directory.c_str()) < 0) {
            error = directory + ": not a directory of MIB files";
            return {};
        }
    }
    const struct tree *root = netsnmp_read_module(module.c_str());
    const int module_id = which_module(module.c_str());
    if (root == nullptr || module_id < 0) {
        error = "the MIB " + module + " is in none of the MIB directories";
        return {};
    }
    std::vector<TableSchema> tables;
    for (const struct tree *top = get_tree_head(); top != nullptr; top = top->next_peer) {
        if (!read_subtree(top, module_id, tables, error)) {
            return {};
        }
    }
    if (tables.empty()) {
        error = "the MIB " + module + " has no tables";
    }
    return tables;
}

}  // namespace tarn::host
