// Columns of a table whose values lie in a record, and what reading and writing them must do to its bytes.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_COLUMN_CASES_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_COLUMN_CASES_H

#include <functional>

#include "support/scripted_board.h"
#include "support/snmp_calls.h"

struct ColumnCase {
    enum Kind { unsigned_number, signed_number, truth, truth_if_nonzero, text, octets };
    int column;
    int type;  // of the value read
    std::size_t offset;
    std::size_t size;
    Kind kind;
    long value = 0x11223344;  // to SET, of a number; its low bytes are stored
};

// Shorthands: a number of `size` bytes read as INTEGER and as Unsigned32.
constexpr ColumnCase number(int column, std::size_t offset, std::size_t size, long value = 0x11223344) {
    return {column, ASN_INTEGER, offset, size, ColumnCase::unsigned_number, value};
}
constexpr ColumnCase unsigned_number(int column, std::size_t offset, std::size_t size,
                                     long value = 0x11223344) {
    return {column, ASN_UNSIGNED, offset, size, ColumnCase::unsigned_number, value};
}
constexpr ColumnCase signed_number(int column, std::size_t offset) {
    return {column, ASN_INTEGER, offset, 2, ColumnCase::signed_number, -2};
}
constexpr ColumnCase truth(int column, std::size_t offset) {
    return {column, ASN_INTEGER, offset, 2, ColumnCase::truth};
}
constexpr ColumnCase truth_if_nonzero(int column, std::size_t offset) {
    return {column, ASN_INTEGER, offset, 2, ColumnCase::truth_if_nonzero};
}
constexpr ColumnCase text(int column, std::size_t offset, std::size_t size) {
    return {column, ASN_OCTET_STR, offset, size, ColumnCase::text};
}
constexpr ColumnCase octets(int column, std::size_t offset, std::size_t size, int type = ASN_OCTET_STR) {
    return {column, type, offset, size, ColumnCase::octets};
}

template <typename... Cases>
std::vector<ColumnCase> columns_of(const Cases &...cases) {
    return {cases...};
}

// `size` bytes that are all different over a stretch of 251 and never 0.
Bytes pattern(std::size_t size, unsigned seed = 0);

// A value that the column takes.
Value value_to_set(const ColumnCase &column);

// Reads every column and compares it with the record's bytes.
void expect_reads(const std::vector<ColumnCase> &columns, const Bytes &record,
                  const std::function<Outcome(int column)> &get);
// Writes every column by itself and compares what was sent with the record, changed in that field alone.
void expect_writes(const std::vector<ColumnCase> &columns, const Bytes &record,
                   const std::function<int(int column, const Value &)> &set,
                   const std::function<Bytes()> &sent);

#endif
