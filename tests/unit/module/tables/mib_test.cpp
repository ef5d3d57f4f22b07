// TARN-MIB against the tables and scalars that the module describes, both ways.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "module/tables/frame/scalar.h"  // and with it net-snmp, before its mib_api.h
#include "module/tables/frame/table.h"

#include <net-snmp/mib_api.h>

namespace tarn {
namespace {

using testing::UnorderedElementsAreArray;

// A number's, or a string's size.
struct Range {
    std::int64_t low = 0;
    std::int64_t high = 0;
    bool operator==(const Range &) const = default;
};

// What a manager is told of a column or scalar, by the MIB or by the module.
struct Object {
    int type = 0;  // 0: it cannot be read
    bool writable = false;
    std::optional<Range> range;
};

std::string shown(const std::optional<Range> &range) {
    return range ? std::to_string(range->low) + ".." + std::to_string(range->high) : "any";
}

// ---- What the MIB says ----

int asn_type(int syntax) {
    switch (syntax) {
        case TYPE_INTEGER:
        case TYPE_INTEGER32:
            return ASN_INTEGER;
        case TYPE_UNSIGNED32:
        case TYPE_GAUGE:
            return ASN_UNSIGNED;
        case TYPE_COUNTER64:
            return ASN_COUNTER64;
        case TYPE_IPADDR:
            return ASN_IPADDRESS;
        case TYPE_OCTETSTR:
            return ASN_OCTET_STR;
        default:
            return 0;
    }
}

std::optional<Range> range_of(const tree *node) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    Range range{most, -most};
    const auto widen = [&range](std::int64_t low, std::int64_t high) {
        range = {std::min(range.low, low), std::max(range.high, high)};
    };
    for (const enum_list *item = node->enums; item != nullptr; item = item->next) {
        widen(item->value, item->value);
    }
    for (const range_list *item = node->ranges; item != nullptr; item = item->next) {
        // The parser holds a number from 2^31 on in an int.
        const bool wrapped = item->low >= 0 && item->high < item->low;
        widen(item->low,
              wrapped ? std::int64_t{static_cast<std::uint32_t>(item->high)} : std::int64_t{item->high});
    }
    return range.high < range.low ? std::nullopt : std::optional(range);
}

Object read_object(const tree *node) {
    const bool writable = node->access == MIB_ACCESS_READWRITE || node->access == MIB_ACCESS_CREATE;
    return {asn_type(node->type), writable, range_of(node)};
}

std::string name_of(const tree *table, oid column) {
    return std::string(table->label) + "." + std::to_string(column);
}

// ---- What the module says ----

std::optional<Range> range_of(const Check &check) {
    switch (check.kind) {
        case Check::Kind::signed_integer:
        case Check::Kind::unsigned_integer:
            return check.code != 0 ? std::optional(Range{check.low, check.high}) : std::nullopt;
        case Check::Kind::integer_range:
            return Range{check.low, check.high};
        case Check::Kind::truth_value:
            return Range{1, 2};
        case Check::Kind::octets_at_most:
            return check.high != any_octets.high ? std::optional(Range{0, check.high}) : std::nullopt;
        case Check::Kind::octets_exactly:
            return Range{check.high, check.high};
        default:
            return std::nullopt;
    }
}

std::optional<Range> range_of(const Check &first, const Check &second) {
    const std::optional<Range> range = range_of(second);
    return range ? range : range_of(first);
}

Object described(const Column &column) {
    return {is_readable(column) ? column.type : 0, is_writable(column),
            range_of(column.check, column.second_check)};
}

// Numbers as their ranges, octets as one word; a MAC address as its six octets.
using Index = std::vector<std::optional<Range>>;

Index described(tarn::Index index) {
    Index parts;
    for (const IndexPart &part : index) {
        if (part.kind == IndexPart::Kind::serial || part.kind == IndexPart::Kind::text) {
            parts.emplace_back();
            continue;
        }
        const std::int64_t first = part.kind == IndexPart::Kind::number ? 0 : 1;
        const std::int64_t limit = part.checked && part.limit < any_unsigned ? part.limit : 0;
        parts.emplace_back(Range{first, first + limit - 1});
    }
    return parts;
}

// The MIB may leave room: objects of an index serve several tables.
bool holds(const Index &mib, const Index &module) {
    return std::ranges::equal(mib, module, [](const auto &said, const auto &done) {
        return said.has_value() == done.has_value() &&
               (!said || (said->low == done->low && said->high >= done->high));
    });
}

std::string shown(const Index &index) {
    std::string text;
    for (const std::optional<Range> &part : index) {
        text += part ? "[" + shown(part) + "]" : "[octets]";
    }
    return text;
}

// ---- The comparison ----

class Mib : public testing::Test {
  protected:
    Mib() {
        (void)setenv("MIBS", "", 1);
        (void)setenv("MIBDIRS", "", 1);
        netsnmp_init_mib();
        (void)add_mibdir(TARN_MIBS "/base");
        (void)add_mibdir(TARN_MIBS);
        (void)netsnmp_read_module("TARN-MIB");
        module_ = which_module("TARN-MIB");
    }
    ~Mib() override { shutdown_mib(); }

    void differ(const std::string &name, const std::string &mib, const std::string &module) {
        differences_.push_back(name + ": MIB " + mib + ", module " + module);
    }

    void compare(const std::string &name, const Object &mib, const Object &module) {
        if (mib.type != module.type && module.type != 0) {
            differ(name, "type " + std::to_string(mib.type), std::to_string(module.type));
        }
        if (mib.writable != module.writable) {
            differ(name, mib.writable ? "writable" : "read-only", module.writable ? "writable" : "read-only");
        } else if (mib.writable && module.range && mib.range != module.range) {
            differ(name, shown(mib.range), shown(module.range));
        }
    }

    Index read_index(const tree *entry) const {
        Index parts;
        for (const index_list *part = entry->indexes; part != nullptr; part = part->next) {
            const tree *node = find_tree_node(part->ilabel, module_);
            const std::optional<Range> range = range_of(node);
            if (node->type != TYPE_OCTETSTR) {
                parts.emplace_back(range.value_or(Range{0, UINT32_MAX}));
            } else if (range && range->low == range->high) {
                parts.insert(parts.end(), static_cast<std::size_t>(range->low), Range{0, 255});
            } else {
                parts.emplace_back();
            }
        }
        return parts;
    }

    void compare_table(const Table &table) {
        const tree *root = find_tree_node(table.name, module_);
        if (root == nullptr) {
            differ(table.name, "nothing", "a table");
            return;
        }
        const Index index = read_index(root->child_list);
        if (!holds(index, described(table.index))) {
            differ(table.name, shown(index), shown(described(table.index)));
        }
        std::map<int, Object> columns;
        for (const Column &column : table.columns) {
            columns[column.number] = described(column);
        }
        for (const tree *node = root->child_list->child_list; node != nullptr; node = node->next_peer) {
            const auto column = columns.find(static_cast<int>(node->subid));
            if (column == columns.end()) {
                if (node->access != MIB_ACCESS_NOACCESS) {
                    differ(name_of(root, node->subid), "a column", "nothing");
                }
                continue;
            }
            if (node->access == MIB_ACCESS_NOACCESS) {
                differ(name_of(root, node->subid), "not accessible", "a column");
            } else {
                compare(name_of(root, node->subid), read_object(node), column->second);
            }
            columns.erase(column);
        }
        for (const auto &[number, column] : columns) {
            differ(name_of(root, static_cast<oid>(number)), "nothing", "a column");
        }
    }

    // The tables and scalars of the MIB that are accessible, below a node.
    void collect(const tree *node, std::set<std::string> &names) {
        for (const tree *child = node->child_list; child != nullptr; child = child->next_peer) {
            const bool scalar = child->child_list == nullptr && asn_type(child->type) != 0 &&
                                child->access != MIB_ACCESS_NOTIFY;
            if (scalar || std::string_view(child->label).ends_with("Table")) {
                names.insert(child->label);
            } else {
                collect(child, names);
            }
        }
    }

    int module_ = 0;
    std::vector<std::string> differences_;
};

TEST_F(Mib, DescribesWhatTheModuleServes) {
    std::set<std::string> names;
    collect(find_tree_node("tarn", module_), names);
    for (const auto *table = Registered<Table>::first; table != nullptr; table = table->next) {
        compare_table(table->description);
        names.erase(table->description.name);
    }
    for (const auto *entry = Registered<Scalar>::first; entry != nullptr; entry = entry->next) {
        const Scalar &scalar = entry->description;
        const tree *node = find_tree_node(scalar.name, module_);
        ASSERT_NE(node, nullptr) << scalar.name;
        compare(scalar.name, read_object(node),
                {scalar.type, true, range_of(scalar.check, scalar.second_check)});
        names.erase(scalar.name);
    }
    for (const std::string &name : names) {
        differ(name, "an object", "nothing");
    }
    const std::vector<std::string> intended{
        // It has no rows, so nothing describes its column.
        "tarnONTMulticastGroupsTable: MIB an object, module nothing",
        // Chunk 0 can be asked for and is none; so is VLAN 0, and a card's list may hold any 16-bit number.
        "tarnRawMacTable: MIB [1..16][1..4294967295], module [1..16][0..-1]",
        "tarnRawSwitchMacTable: MIB [1..16][1..4294967295], module [1..16][0..-1]",
        "tarnSwitchVLANTable: MIB [1..16][1..4094], module [1..16][0..65536]",
        // What can be read is more than what can be written.
        "tarnONTAutoUpdateTable.5: MIB 0..255, module 0..3",
        "tarnONTFirmwaresVersionPriorityFile: MIB 0..16384, module 0..16383",
        "tarnONTFWUpdateSchedulerTable.5: MIB 0..128, module 0..127",
        "tarnONTPortsProfileTable.31: MIB 0..2, module 1..2",
        "tarnONTTemplateValuesTable.6: MIB 0..11, module 0..10",
        "tarnOntConfigUniPortTable.4: MIB 1..6, module 4..6",
        // A SET is accepted, or refused late, and changes nothing.
        "tarnONTConfigTable.34: MIB nothing, module a column",
        "tarnONTConfigTable.36: MIB nothing, module a column",
        "tarnONTShapingProfileUpstreamTable.1: MIB read-only, module writable",
    };
    EXPECT_THAT(differences_, UnorderedElementsAreArray(intended));
}

}  // namespace
}  // namespace tarn
