// A table as data, and the code that serves it in either style.
//
// A table's source is its column list, its walk and the few functions that are its own; MODULE_ITERATOR_TABLE
// or MODULE_NEXTGEN_TABLE then defines the callbacks that the host looks up by name.
#ifndef TARN_MODULE_TABLES_FRAME_TABLE_H
#define TARN_MODULE_TABLES_FRAME_TABLE_H

#include "module/common/cache.h"
#include "module/common/exports.h"
#include "module/tables/frame/column.h"
#include "module/tables/frame/index.h"
#include "module/tables/frame/registry.h"
#include "module/tables/frame/well_formed.h"

namespace tarn {

struct Table {
    const char *name;
    Index index;
    std::span<const Column> columns;  // in ascending order

    // ---- Rows ----
    // The row that the index names, with row.record set; false when there is none. Null: every index in range
    // is a row.
    bool (*find)(Row &row) = nullptr;
    // Iterator style: the first row at or behind *cursor, which it moves behind that row; false at the end. A
    // walk begins with 0.
    bool (*next)(std::int64_t &cursor, Row &row) = nullptr;
    // The loop context of a walk is the record instead of the cursor.
    bool record_is_loop_context = false;
    // Nextgen style: turns the row that parse_partial_index made of a request into the next one; false at the
    // end.
    bool (*successor)(Row &row) = nullptr;
    // Nextgen style: told of every GET, whatever it asks for.
    void (*asked)(int slot) = nullptr;
    // The name under which a lack of memory for a new identifier is logged.
    const char *index_builder = nullptr;
    // Sub-identifiers of the table's own OID.
    std::size_t prefix = 11;

    // ---- Errors ----
    int missing_row = SNMP_NOSUCHINSTANCE;
    // Iterator style: of a GET without row data, and whether it is the handler's result instead of the
    // request's error.
    int no_row_data = SNMP_NOSUCHINSTANCE;
    bool no_row_data_is_result = false;
    // Of a SET without row data; 0: a valid index will do. In the action phase, where it differs.
    int set_without_row_data = 0;
    int act_without_row_data = set_without_row_data;
    int unknown_column = SNMP_NOSUCHOBJECT;
    // Whether a GET or the first phase of a SET of an unknown column in a missing row reports the row.
    bool row_before_column = false;
    // Of a SET of a column that is not there or read-only.
    int refused_column = SNMP_ERR_NOTWRITABLE;
    // The same in the action phase.
    int refused_in_action = SNMP_ERR_NOTWRITABLE;
    // Whether the genErr of a failed action is the handler's result too.
    bool failure_is_result = false;

    // ---- SET ----
    // Whether a SET needs the row that the index names; if not, stage decides, and an index that is no row's
    // reads as zeros.
    bool set_needs_row = true;
    // A table that leaves every mode but GET alone.
    bool ignores_set = false;
    // The row that a SET works on, with row.record set where columns are stored there; null: as find.
    bool (*find_for_set)(Row &row) = nullptr;
    // False: only the action phase looks for the row.
    bool reserve_needs_row = true;
    // The error when it is not there; 0: missing_row.
    int set_missing_row = 0;
    void (*reserve1)() = nullptr;
    void (*reserve2)() = nullptr;
    // Told of every variable that passes the first phase, so that the action phase knows what the others do.
    void (*foresee)(const Row &row, const Column &column, const Binding &value) = nullptr;
    // In the action phase, before a column is written; 0 or an error.
    int (*stage)(Row &row, const Column &column, const Binding &value) = nullptr;
    // The record that columns without an action of their own are stored in; null: the column's own, or the
    // row's.
    RecordOf edited = nullptr;
    // The stamp of the cached section that a SET edits in place, or null. A section that does not show what
    // the card has is not edited. From the first edit to the end of the commit it is not read again; after a
    // failed SET the next read fetches what the card holds.
    Stamp *(*edited_stamp)(const Row &row) = nullptr;
    // Sends what was staged; 0 or an error.
    int (*commit)(Row &row) = nullptr;
    // The request failed: forget what was staged.
    void (*drop)() = nullptr;
};

// The walk of an iterator table with one row a slot.
inline bool next_only_row(std::int64_t &cursor, Row & /*row*/) {
    return cursor++ == 0;
}

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

// What the compiler refuses in both styles, and the registration.
#define MODULE_TABLE(T, table)                                                                               \
    static_assert((table).name == std::string_view(#T), "a table has the name of its callbacks");            \
    static_assert(tarn::well_formed::index_fits((table).index), "a table has as many index parts as a row"); \
    static_assert(tarn::well_formed::ascending((table).columns), "columns ascend without repetition");       \
    static_assert(tarn::well_formed::types_fit((table).columns),                                             \
                  "a column's type fits its field and its check");                                           \
    static_assert(tarn::well_formed::writes_somewhere((table).columns),                                      \
                  "a writable column has an action or a field");                                             \
    static_assert(!(table).ignores_set || !tarn::well_formed::any_writable((table).columns),                 \
                  "a table that leaves SETs alone has no writable column");                                  \
    static_assert((table).find != nullptr || !tarn::well_formed::reads_own_record((table).columns),          \
                  "a table whose columns lie in its rows' records finds them");                              \
    static const tarn::Registered<tarn::Table> T##_registered(table)

#define MODULE_ITERATOR_TABLE(T, table)                                                           \
    static_assert((table).next != nullptr && (table).successor == nullptr,                        \
                  "an iterator table walks by next");                                             \
    TARN_EXPORT netsnmp_variable_list *T##_next_index(void **loop_context, void **data_context,   \
                                                      netsnmp_variable_list *indexes, int slot) { \
        static std::int64_t cursor = 0;                                                           \
        return tarn::next_index(table, cursor, loop_context, data_context, indexes, slot);        \
    }                                                                                             \
    MODULE_ITERATOR_HANDLER(T, table)

// Without the walk.
#define MODULE_ITERATOR_HANDLER(T, table)                                                                  \
    MODULE_TABLE(T, table);                                                                                \
    TARN_EXPORT void init_##T##_handlers(void) {}                                                          \
    TARN_EXPORT int T##_module_handler(netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo, \
                                       void *row, netsnmp_table_request_info *table_info) {                \
        return tarn::handle_iterator(table, request, reqinfo, row, table_info);                            \
    }

#define MODULE_NEXTGEN_TABLE(T, table)                                                                 \
    MODULE_TABLE(T, table);                                                                            \
    static_assert((table).successor != nullptr && (table).next == nullptr,                             \
                  "a nextgen table walks by successor");                                               \
    static_assert((table).index_builder != nullptr, "a nextgen table names its index builder");        \
    static_assert(!tarn::well_formed::has_part((table).index, tarn::IndexPart::Kind::text),            \
                  "a text index is an iterator table's");                                              \
    TARN_EXPORT void init_##T##_handlers(void) {}                                                      \
    TARN_EXPORT void T##_get_next_entry(table_entry *result, int slot, const oid *name, size_t length, \
                                        int column) {                                                  \
        tarn::get_next_entry(table, result, slot, name, length, column, __FILE__, __LINE__);           \
    }                                                                                                  \
    TARN_EXPORT int T##_table_handler_nextgen(int mode, netsnmp_request_info *request, int slot,       \
                                              void * /*row*/) {                                        \
        return tarn::handle_nextgen(table, mode, request, slot);                                       \
    }

#endif
