// The tables of the MIB, read with net-snmp's own parser.
#ifndef TARN_HOST_TABLES_MIB_READER_H
#define TARN_HOST_TABLES_MIB_READER_H

#include <string>
#include <vector>

#include "host/tables/table_schema.h"

namespace tarn::host {

// Reads the MIB module from the first of the directories that has it, with the modules that it imports from
// any of them, and returns its tables in OID order. Empty, and the reason in `error`, when a module is not
// found or a table is not whole: an index object that does not resolve, a column without a type.
std::vector<TableSchema> read_mib_tables(const std::vector<std::string> &directories,
                                         const std::string &module, std::string &error);

}  // namespace tarn::host

#endif
