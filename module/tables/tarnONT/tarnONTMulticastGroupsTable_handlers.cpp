// Multicast groups of the ONTs. Cards do not report any: the table keeps its place in the MIB without rows.
#include "module/common/exports.h"
#include "tarn/module_api.h"

TARN_EXPORT void init_tarnONTMulticastGroupsTable_handlers(void) {}

TARN_EXPORT netsnmp_variable_list *tarnONTMulticastGroupsTable_next_index(void ** /*loop_context*/,
                                                                          void ** /*data_context*/,
                                                                          netsnmp_variable_list * /*indexes*/,
                                                                          int /*slot*/) {
    return nullptr;
}

TARN_EXPORT int tarnONTMulticastGroupsTable_module_handler(netsnmp_request_info * /*request*/,
                                                           netsnmp_agent_request_info * /*reqinfo*/,
                                                           void * /*row*/,
                                                           netsnmp_table_request_info * /*table_info*/) {
    return SNMP_ERR_NOERROR;
}
