#include "host/tables/table_registration.h"

#include <exception>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

int serve(netsnmp_mib_handler *handler, netsnmp_handler_registration * /*registration*/,
          netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    auto &table = *static_cast<Table *>(handler->myvoid);
    try {
        table.serve(reqinfo, requests);
        return SNMP_ERR_NOERROR;
    } catch (const std::exception &error) {  // only memory can be missing; net-snmp knows no exceptions
        log_add(log_level::error, "%s: %s\n", table.schema().name.c_str(), error.what());
        return SNMP_ERR_GENERR;
    }
}

}  // namespace

netsnmp_handler_registration *register_table(Table &table) {
    const TableSchema &schema = table.schema();
    // Read-only tables too take SETs: what is not writable is for the module to say.
    netsnmp_handler_registration *registration =
        netsnmp_create_handler_registration(schema.name.c_str(), serve, schema.root.data(),
                                            schema.root.size(), HANDLER_CAN_RWRITE | HANDLER_CAN_GETBULK);
    if (registration == nullptr) {
        return nullptr;
    }
    registration->handler->myvoid = &table;
    // On failure net-snmp frees the registration.
    return netsnmp_register_handler(registration) == MIB_REGISTERED_OK ? registration : nullptr;
}

void unregister_table(netsnmp_handler_registration *registration) {
    (void)netsnmp_unregister_handler(registration);
}

}  // namespace tarn::host
