// SET of a table: the phases, delivered to the module variable by variable.
#ifndef TARN_HOST_TABLES_TABLE_SET_H
#define TARN_HOST_TABLES_TABLE_SET_H

#include "host/tables/table.h"

namespace tarn::host {

// Serves one phase. Rows are resolved once, in RESERVE1, and kept with the request: in the later phases the
// module must not be asked to enumerate, since that could fetch over what the earlier phases staged.
void set_table(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests);

}  // namespace tarn::host

#endif
