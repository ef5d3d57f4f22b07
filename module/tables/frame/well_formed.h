// What the compiler refuses in the description of a table or a scalar. Each of these names one kind of slip;
// the frame's macros assert them all.
#ifndef TARN_MODULE_TABLES_FRAME_WELL_FORMED_H
#define TARN_MODULE_TABLES_FRAME_WELL_FORMED_H

#include <algorithm>
#include <string_view>

#include "module/tables/frame/column.h"
#include "module/tables/frame/index.h"

// g++ compares a function's address with null at run time when it looks for undefined behaviour; the builds
// without sanitizers check the descriptions.
#ifdef __SANITIZE_ADDRESS__
#define TARN_WELL_FORMED(condition, complaint) static_assert(true, complaint)
#else
#define TARN_WELL_FORMED(condition, complaint) static_assert(condition, complaint)
#endif

namespace tarn::well_formed {

using Columns = std::span<const Column>;

constexpr bool ascending(Columns columns) {
    return !columns.empty() && columns.front().number > 0 &&
           std::ranges::adjacent_find(columns, std::ranges::greater_equal{}, &Column::number) ==
               columns.end();
}

constexpr bool is_number(std::uint8_t type) {
    return type == integer || type == unsigned32 || type == counter_64;
}

constexpr bool field_fits(std::uint8_t type, const Field &field) {
    switch (field.encoding) {
        case Encoding::text:
        case Encoding::octets:
            return type == octet_string || (type == ip_address && field.size == 4);
        case Encoding::u64:
            return type == counter_64;
        case Encoding::u8:
        case Encoding::u16:
        case Encoding::s16:
        case Encoding::u32:
        case Encoding::s32:
            return is_number(type);
        case Encoding::f64:
            break;  // a named function makes a number of it
    }
    return false;
}

constexpr bool value_fits(const Column &column) {
    switch (column.source.kind) {
        case Source::Kind::slot:
        case Source::Kind::number:
        case Source::Kind::constant:
        case Source::Kind::computed:
            return is_number(column.type);
        case Source::Kind::serial:
            return column.type == octet_string;
        case Source::Kind::field:
            return field_fits(column.type, column.source.field);
        case Source::Kind::function:
            break;
    }
    return true;
}

// A value that a SET stores as it is must be no longer than its field, unless any length will do and is cut.
constexpr bool octets_fit(const Column &column) {
    const bool stored = column.action == nullptr && column.source.kind == Source::Kind::field;
    return !stored || column.check.high == any_octets.high || column.check.high <= column.source.field.size;
}

constexpr bool check_fits(const Column &column) {
    switch (column.check.kind) {
        case Check::Kind::signed_integer:
        case Check::Kind::unsigned_integer:
        case Check::Kind::integer_range:
        case Check::Kind::truth_value:
            return is_number(column.type);
        case Check::Kind::octets_at_most:
        case Check::Kind::octets_exactly:
            return column.type == octet_string && octets_fit(column);
        case Check::Kind::address_at_most:
        case Check::Kind::address_exactly:
            return column.type == ip_address && octets_fit(column);
        case Check::Kind::none:
            return column.action != nullptr;
        case Check::Kind::read_only:
        case Check::Kind::custom:
            break;
    }
    return true;
}

constexpr bool types_fit(Columns columns) {
    return std::ranges::all_of(columns, value_fits) && std::ranges::all_of(columns, check_fits);
}

constexpr bool any_writable(Columns columns) {
    return std::ranges::any_of(columns, is_writable);
}

constexpr bool writes_somewhere(Columns columns) {
    return std::ranges::all_of(columns, [](const Column &column) {
        return !is_writable(column) || column.action != nullptr || column.source.kind == Source::Kind::field;
    });
}

// Whether two columns that read the same record have fields of the same kind of record.
constexpr bool agree(const Source &one, const Source &other) {
    return one.kind != Source::Kind::field || other.kind != Source::Kind::field ||
           one.record != other.record || one.field.record == nullptr || other.field.record == nullptr ||
           one.field.record == other.field.record;
}

constexpr bool fields_of_one_record(Columns columns) {
    return std::ranges::all_of(columns, [columns](const Column &one) {
        return std::ranges::all_of(columns,
                                   [&one](const Column &other) { return agree(one.source, other.source); });
    });
}

// A column of the row's own record, which somebody must find.
constexpr bool reads_own_record(Columns columns) {
    return std::ranges::any_of(columns, [](const Column &column) {
        return column.source.record == nullptr &&
               (column.source.kind == Source::Kind::field || column.source.kind == Source::Kind::computed);
    });
}

constexpr bool has_part(Index index, IndexPart::Kind kind) {
    return std::ranges::find(index, kind, &IndexPart::kind) != index.end();
}

// What a row has room for.
constexpr bool index_fits(Index index) {
    const auto numbers = std::ranges::count_if(index, [](const IndexPart &part) {
        return part.kind == IndexPart::Kind::ordinal || part.kind == IndexPart::Kind::number;
    });
    return !index.empty() && numbers <= Row::max_numbers;
}

}  // namespace tarn::well_formed

#endif
