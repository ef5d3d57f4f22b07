// The tables in net-snmp's registry.
#ifndef TARN_HOST_TABLES_TABLE_REGISTRATION_H
#define TARN_HOST_TABLES_TABLE_REGISTRATION_H

#include "host/tables/table.h"

namespace tarn::host {

// Has net-snmp call the table for its subtree, GETBULK included. Null when net-snmp refuses, otherwise the
// registration for unregister_table. The table must outlive the registration.
netsnmp_handler_registration *register_table(Table &table);
void unregister_table(netsnmp_handler_registration *registration);

}  // namespace tarn::host

#endif
