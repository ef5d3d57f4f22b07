#include "support/column_cases.h"

#include <algorithm>
#include <cstring>

Bytes pattern(std::size_t size, unsigned seed) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(1 + (i * 37 + seed) % 251);
    }
    return bytes;
}

namespace {

long stored_number(const Bytes &record, const ColumnCase &column) {
    unsigned long number = 0;
    for (std::size_t i = column.size; i-- > 0;) {
        number = number << 8 | record[column.offset + i];
    }
    if (column.kind == ColumnCase::signed_number) {
        return static_cast<std::int16_t>(number);
    }
    return static_cast<long>(number);
}

void expect_read(const Outcome &out, const Bytes &record, const ColumnCase &column) {
    EXPECT_EQ(out.error, 0);
    EXPECT_EQ(out.type, column.type);
    const char *field = reinterpret_cast<const char *>(&record[column.offset]);
    switch (column.kind) {
        case ColumnCase::unsigned_number:
        case ColumnCase::signed_number:
            EXPECT_EQ(out.integer, stored_number(record, column));
            break;
        case ColumnCase::truth:
            EXPECT_EQ(out.integer, stored_number(record, column) == 1 ? 1 : 2);
            break;
        case ColumnCase::truth_if_nonzero:
            EXPECT_EQ(out.integer, stored_number(record, column) != 0 ? 1 : 2);
            break;
        case ColumnCase::text:
            EXPECT_EQ(out.octets, std::string(field, strnlen(field, column.size)));
            break;
        case ColumnCase::octets:
            EXPECT_EQ(out.octets, std::string(field, column.size));
            break;
    }
}

void store_expected(Bytes &record, const ColumnCase &column) {
    const auto field = record.begin() + static_cast<std::ptrdiff_t>(column.offset);
    std::fill_n(field, column.size, std::uint8_t{0});
    switch (column.kind) {
        case ColumnCase::text:
            std::copy_n("xyz", 3, field);
            break;
        case ColumnCase::octets:
            std::fill_n(field, column.size, std::uint8_t{0x5A});
            break;
        case ColumnCase::truth:
        case ColumnCase::truth_if_nonzero:
            *field = 1;
            break;
        default:
            for (std::size_t i = 0; i < column.size; ++i) {
                field[static_cast<std::ptrdiff_t>(i)] =
                    static_cast<std::uint8_t>(static_cast<unsigned long>(column.value) >> (8 * i));
            }
    }
}

}  // namespace

Value value_to_set(const ColumnCase &column) {
    switch (column.kind) {
        case ColumnCase::text:
            return octets_value("xyz");
        case ColumnCase::octets: {
            const std::string octets(column.size, '\x5A');
            return column.type == ASN_IPADDRESS ? address_value(octets) : octets_value(octets);
        }
        case ColumnCase::truth:
        case ColumnCase::truth_if_nonzero:
            return integer_value(1);
        default:
            return column.type == ASN_INTEGER ? integer_value(column.value) : unsigned_value(column.value);
    }
}

void expect_reads(const std::vector<ColumnCase> &columns, const Bytes &record,
                  const std::function<Outcome(int)> &get) {
    for (const ColumnCase &column : columns) {
        SCOPED_TRACE("column " + std::to_string(column.column));
        expect_read(get(column.column), record, column);
    }
}

void expect_writes(const std::vector<ColumnCase> &columns, const Bytes &record,
                   const std::function<int(int, const Value &)> &set, const std::function<Bytes()> &sent) {
    for (const ColumnCase &column : columns) {
        SCOPED_TRACE("column " + std::to_string(column.column));
        board.sent.clear();
        EXPECT_EQ(set(column.column, value_to_set(column)), 0);
        Bytes expected = record;
        store_expected(expected, column);
        EXPECT_EQ(sent(), expected);
    }
}
