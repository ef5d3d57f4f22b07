#include "bench/plain_handler.h"

#include <algorithm>
#include <stdexcept>

namespace tarn::bench {
namespace {

int serve(netsnmp_mib_handler *handler, netsnmp_handler_registration * /*registration*/,
          netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const auto &varbinds = *static_cast<const std::vector<Varbind> *>(handler->myvoid);
    for (auto *request = requests; request != nullptr; request = request->next) {
        netsnmp_variable_list *binding = request->requestvb;
        const auto found =
            std::lower_bound(varbinds.begin(), varbinds.end(), binding,
                             [reqinfo](const Varbind &varbind, const netsnmp_variable_list *wanted) {
                                 const int order = snmp_oid_compare(varbind.name.data(), varbind.name.size(),
                                                                    wanted->name, wanted->name_length);
                                 return reqinfo->mode == MODE_GETNEXT ? order <= 0 : order < 0;
                             });
        if (found == varbinds.end()) {
            continue;
        }
        (void)snmp_set_var_objid(binding, found->name.data(), found->name.size());
        (void)snmp_set_var_typed_value(binding, found->type, found->value.data(), found->value.size());
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace

PlainHandler::PlainHandler(const std::vector<oid> &root, const std::vector<Varbind> &varbinds)
    : registration_(
          netsnmp_create_handler_registration("plain", serve, root.data(), root.size(), HANDLER_CAN_RWRITE)) {
    registration_->handler->myvoid = const_cast<std::vector<Varbind> *>(&varbinds);
    if (netsnmp_register_handler(registration_) != MIB_REGISTERED_OK) {
        throw std::runtime_error("the plain handler cannot be registered");
    }
}

PlainHandler::~PlainHandler() {
    (void)netsnmp_unregister_handler(registration_);
}

}  // namespace tarn::bench
