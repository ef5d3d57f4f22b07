#include "module/tables/frame/scalar.h"

#include <algorithm>
#include <iterator>

namespace tarn {

namespace {

// 32473 is the enterprise number that is set aside for documentation.
constexpr oid module_root[] = {1, 3, 6, 1, 4, 1, 32473, 1, 22};

// Serves one request in a mode; false for a mode that a scalar does not know.
bool serve(const Scalar &scalar, int mode, Binding *binding, int &error) {
    error = SNMP_ERR_NOERROR;
    switch (mode) {
        case MODE_GET:
            error = scalar.get({binding, scalar.type});
            return true;
        case MODE_SET_RESERVE1:
            error = check_value(scalar.check, binding);
            return true;
        case MODE_SET_RESERVE2:
            error = check_value(scalar.second_check, binding);
            return true;
        case MODE_SET_ACTION:
            error = scalar.set(*binding);
            return true;
        case MODE_SET_COMMIT:
        case MODE_SET_FREE:
        case MODE_SET_UNDO:
            return true;
        default:
            return false;
    }
}

}  // namespace

void register_scalar(const Scalar &scalar, Netsnmp_Node_Handler *handler, ScalarRegistration &registration) {
    // A second registration of an identifier fails and frees what it was given.
    unregister_scalar(registration);
    std::array<oid, std::size(module_root) + std::tuple_size_v<decltype(scalar.arcs)>> name{};
    const auto arcs = std::copy(std::begin(module_root), std::end(module_root), name.begin());
    const auto end =
        std::copy(scalar.arcs.begin(), std::find(scalar.arcs.begin(), scalar.arcs.end(), oid{0}), arcs);
    ScalarRegistration created = netsnmp_create_handler_registration(
        scalar.name, handler, name.data(), static_cast<std::size_t>(end - name.begin()), HANDLER_CAN_RWRITE);
    if (created != nullptr && netsnmp_register_scalar(created) == 0) {
        registration = created;
    }
}

void unregister_scalar(ScalarRegistration &registration) {
    if (registration != nullptr) {
        netsnmp_unregister_handler(registration);
        registration = nullptr;
    }
}

int handle_scalar(const Scalar &scalar, const netsnmp_agent_request_info *reqinfo,
                  netsnmp_request_info *requests) {
    for (netsnmp_request_info *request = requests; request != nullptr; request = request->next) {
        int error = SNMP_ERR_NOERROR;
        if (!serve(scalar, reqinfo->mode, request->requestvb, error)) {
            snmp_log(LOG_ERR, "unknown mode (%d) in handle_%s\n", reqinfo->mode, scalar.name);
            return scalar.unknown_mode;
        }
        if (error != SNMP_ERR_NOERROR) {
            netsnmp_request_set_error(request, error);
        }
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace tarn
