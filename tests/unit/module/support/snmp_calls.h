// Calls of a table's callbacks as the host makes them, one variable at a time.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_SNMP_CALLS_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_SNMP_CALLS_H

#include <functional>
#include <string>
#include <vector>

#include "tarn/module_api.h"

using Oid = std::vector<oid>;

// What a call left on the variable. `error` is the request's error, `result` the handler's return value.
struct Outcome {
    int result = 0;
    int error = 0;
    int type = ASN_NULL;
    long integer = 0;
    std::string octets;
    struct counter64 counter {};
};

// A value to SET.
struct Value {
    u_char type;
    long integer = 0;
    std::string octets;
};
Value integer_value(long value);
Value unsigned_value(long value);
Value octets_value(std::string octets);
Value address_value(std::string four_octets);

// What reading a column must give: a value, of a type where one is stated, or an error.
struct Reading {
    int column;
    int type;  // 0: any
    long integer = 0;
    std::string octets;
    int error = 0;
};
Reading is_integer(int column, long value);
Reading is_unsigned(int column, long value);
Reading is_number(int column, long value);  // of either type
Reading is_octets(int column, std::string octets);
Reading is_missing(int column, int error = SNMP_NOSUCHOBJECT);

void expect_reading(const Outcome &out, const Reading &expected);
// Reads each of these columns; `get` takes the column as an int or as an oid.
template <typename Get, typename... Readings>
void expect_readings(const Get &get, const Readings &...readings) {
    struct Column {
        int number;
        operator int() const { return number; }                    // NOLINT: stands for an argument
        operator oid() const { return static_cast<oid>(number); }  // NOLINT
    };
    (expect_reading(get(Column{readings.column}), readings), ...);
}

// One index value of an iterator table: a number or octets.
struct IndexValue {
    long number = 0;
    std::string octets;
    bool is_octets = false;

    IndexValue(int n) : number(n) {}  // NOLINT: reads as the index does
    IndexValue(std::string text) : octets(std::move(text)), is_octets(true) {}  // NOLINT
    IndexValue(const char *text) : octets(text), is_octets(true) {}             // NOLINT
    bool operator==(const IndexValue &) const = default;
};
using IndexValues = std::vector<IndexValue>;

// A call of an iterator table's handler. `row` null: without row data.
Outcome call_iterator(module_handler_function *handler, int mode, int column, const IndexValues &index,
                      void *row, const Value *value = nullptr);
// A call of a nextgen table's handler with a full identifier.
Outcome call_nextgen(table_handler_nextgen_function *handler, int mode, int slot, const Oid &name,
                     const Value *value = nullptr);

// A call of a scalar's handler.
Outcome call_scalar(Netsnmp_Node_Handler *handler, int mode, const Value *value = nullptr);

// Every row of a slot, in the table's own order. An index part that is a string stands for octets.
struct WalkedRow {
    IndexValues index;
    void *row;
};
std::vector<WalkedRow> walk_iterator(next_index_function *next_index, int slot, const IndexValues &shape);
// The indices alone.
std::vector<IndexValues> indices_of(next_index_function *next_index, int slot, const IndexValues &shape);

// The identifiers of a slot's rows in the finder's order, from the bare table OID; at most `limit`.
std::vector<Oid> walk_nextgen(get_next_entry_function *next, int slot, const Oid &table, int column,
                              std::size_t limit = 100000);
Oid next_of(get_next_entry_function *next, int slot, const Oid &name, int column);

// A whole SET of one variable: the phases in order, FREE or UNDO after an error. The first error, else 0.
int set_iterator(module_handler_function *handler, int column, const IndexValues &index, void *row,
                 const Value &value);
// One SET of several variables, each a call in a mode: every phase goes to all of them before the next.
int set_together(const std::vector<std::function<Outcome(int mode)>> &variables);
int set_nextgen(table_handler_nextgen_function *handler, int slot, const Oid &name, const Value &value);
int set_scalar(Netsnmp_Node_Handler *handler, const Value &value);

#endif
