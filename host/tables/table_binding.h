// Which callbacks of the module serve which table of the MIB.
#ifndef TARN_HOST_TABLES_TABLE_BINDING_H
#define TARN_HOST_TABLES_TABLE_BINDING_H

#include <vector>

#include "host/loader/module_loader.h"
#include "host/tables/table_callbacks.h"
#include "host/tables/table_schema.h"

namespace tarn::host {

struct BoundTable {
    TableSchema schema;
    TableCallbacks callbacks;
};

// The tables that the MIB describes and the module serves. Logs each table that only one of them knows.
std::vector<BoundTable> bind_tables(std::vector<TableSchema> schemas, const Module &module);

}  // namespace tarn::host

#endif
