// Which callbacks of the module serve which table of the MIB.
#ifndef TARN_HOST_TABLES_TABLE_BINDING_H
#define TARN_HOST_TABLES_TABLE_BINDING_H

#include <span>
#include <string>
#include <vector>

#include "host/loader/module_loader.h"
#include "host/tables/table_callbacks.h"
#include "host/tables/table_schema.h"

namespace tarn::host {

struct BoundTable {
    TableSchema schema;
    TableCallbacks callbacks;
};

// Where the columns of the MIB and the module's first differ in a way that a manager would be misled by: one
// is missing, has another type or cannot be written. Empty: they do not.
std::string column_difference(const TableSchema &schema, std::span<const column_description> columns);

// The tables that the MIB describes and the module serves. Logs each table that only one of them knows or
// whose columns differ.
std::vector<BoundTable> bind_tables(std::vector<TableSchema> schemas, const Module &module);

}  // namespace tarn::host

#endif
