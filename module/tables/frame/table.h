// A table as data, and the code that serves it in either style.
//
// A table's source is its column list, its rows, writes and answers and the few functions that are its own;
// MODULE_ITERATOR_TABLE or MODULE_NEXTGEN_TABLE then gives it its name and defines the callbacks that the
// host looks up by name.
#ifndef TARN_MODULE_TABLES_FRAME_TABLE_H
#define TARN_MODULE_TABLES_FRAME_TABLE_H

#include "module/common/exports.h"
#include "module/tables/frame/answers.h"
#include "module/tables/frame/column.h"
#include "module/tables/frame/index.h"
#include "module/tables/frame/registry.h"
#include "module/tables/frame/rows.h"
#include "module/tables/frame/well_formed.h"
#include "module/tables/frame/writes.h"

namespace tarn {

struct Table {
    Index index;
    std::span<const Column> columns;  // in ascending order

    Rows rows{};
    Writes writes{};
    Answers answers{};

    const char *name = "";  // by the macro that defines its callbacks
};

constexpr Table named(const char *name, Table table) {
    table.name = name;
    return table;
}

// The table of this name; null for another.
const Table *find_table(std::string_view name);

// The callbacks' bodies.
Binding *next_index(const Table &table, std::int64_t &cursor, void **loop_context, void **data_context,
                    Binding *indexes, int slot);
int handle_iterator(const Table &table, netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo,
                    void *row_data, netsnmp_table_request_info *table_info);
void get_next_entry(const Table &table, table_entry *result, int slot, const oid *name, std::size_t length,
                    int column, const char *file, int line);
int handle_nextgen(const Table &table, int mode, netsnmp_request_info *request, int slot);

// Builds the identifier of a row below the table's OID, which is taken from the request's. Result is empty
// when the request's identifier ends before the table's, and on a lack of memory (logged).
void append_index(const Table &table, table_entry *result, const oid *name, std::size_t length,
                  const Row &row, int column, const char *file, int line);

}  // namespace tarn

// Both styles: the described table under its name, what the compiler refuses, and the registration. The
// description may hold commas.
#define MODULE_TABLE(T, ...)                                                                                \
    static constexpr tarn::Table T##_table = tarn::named(#T, __VA_ARGS__);                                  \
    TARN_WELL_FORMED(tarn::well_formed::index_fits(T##_table.index),                                        \
                     "a table has as many index parts as a row");                                           \
    TARN_WELL_FORMED(tarn::well_formed::ascending(T##_table.columns), "columns ascend without repetition"); \
    TARN_WELL_FORMED(tarn::well_formed::types_fit(T##_table.columns),                                       \
                     "a column's type fits its field and its check");                                       \
    TARN_WELL_FORMED(tarn::well_formed::fields_of_one_record(T##_table.columns),                            \
                     "a record has its own fields");                                                        \
    TARN_WELL_FORMED(tarn::well_formed::writes_somewhere(T##_table.columns),                                \
                     "a writable column has an action or a field");                                         \
    TARN_WELL_FORMED(!T##_table.answers.ignores_set || !tarn::well_formed::any_writable(T##_table.columns), \
                     "a table that leaves SETs alone has no writable column");                              \
    TARN_WELL_FORMED(                                                                                       \
        T##_table.rows.find != nullptr || !tarn::well_formed::reads_own_record(T##_table.columns),          \
        "a table whose columns lie in its rows' records finds them");                                       \
    static const tarn::Registered<tarn::Table> T##_registered(T##_table)

#define MODULE_ITERATOR_TABLE(T, ...)                                                             \
    MODULE_ITERATOR_HANDLER(T, __VA_ARGS__)                                                       \
    TARN_WELL_FORMED(T##_table.rows.next != nullptr && T##_table.rows.successor == nullptr,       \
                     "an iterator table walks by next");                                          \
    TARN_EXPORT netsnmp_variable_list *T##_next_index(void **loop_context, void **data_context,   \
                                                      netsnmp_variable_list *indexes, int slot) { \
        static std::int64_t cursor = 0;                                                           \
        return tarn::next_index(T##_table, cursor, loop_context, data_context, indexes, slot);    \
    }

// Without the walk.
#define MODULE_ITERATOR_HANDLER(T, ...)                                                                    \
    MODULE_TABLE(T, __VA_ARGS__);                                                                          \
    TARN_EXPORT void init_##T##_handlers(void) {}                                                          \
    TARN_EXPORT int T##_module_handler(netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo, \
                                       void *row, netsnmp_table_request_info *table_info) {                \
        return tarn::handle_iterator(T##_table, request, reqinfo, row, table_info);                        \
    }

#define MODULE_NEXTGEN_TABLE(T, ...)                                                                      \
    MODULE_TABLE(T, __VA_ARGS__);                                                                         \
    TARN_WELL_FORMED(T##_table.rows.successor != nullptr && T##_table.rows.next == nullptr,               \
                     "a nextgen table walks by successor");                                               \
    TARN_WELL_FORMED(T##_table.rows.index_builder != nullptr, "a nextgen table names its index builder"); \
    TARN_WELL_FORMED(!tarn::well_formed::has_part(T##_table.index, tarn::IndexPart::Kind::text),          \
                     "a text index is an iterator table's");                                              \
    TARN_EXPORT void init_##T##_handlers(void) {}                                                         \
    TARN_EXPORT void T##_get_next_entry(table_entry *result, int slot, const oid *name, size_t length,    \
                                        int column) {                                                     \
        tarn::get_next_entry(T##_table, result, slot, name, length, column, __FILE__, __LINE__);          \
    }                                                                                                     \
    TARN_EXPORT int T##_table_handler_nextgen(int mode, netsnmp_request_info *request, int slot,          \
                                              void * /*row*/) {                                           \
        return tarn::handle_nextgen(T##_table, mode, request, slot);                                      \
    }

#endif
