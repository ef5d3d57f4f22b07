// GETNEXT and GETBULK of a table, from its sorted rows.
#ifndef TARN_HOST_TABLES_TABLE_WALK_H
#define TARN_HOST_TABLES_TABLE_WALK_H

#include "host/tables/table.h"

namespace tarn::host {

// Answers each request with the first instance after its OID that has a value and that the manager may see;
// a GETBULK's repetitions all at once. Requests after the last instance are left for the next table.
void walk_table(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

}  // namespace tarn::host

#endif
