#include "module/tables/frame/scalar.h"

namespace tarn {

namespace {

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

void unregister_scalar(ScalarRegistration &registration) {
    if (registration != nullptr) {
        netsnmp_unregister_handler(registration);
        registration = nullptr;
    }
}

void register_scalar(const ScalarEntry &entry) {
    // A second registration of an identifier fails and frees what it was given.
    unregister_scalar(entry.registration);
    const MibObject object = find_mib_object(entry.scalar.name);
    ScalarRegistration created = netsnmp_create_handler_registration(
        entry.scalar.name, entry.handler, object.identifier.data(), object.length, HANDLER_CAN_RWRITE);
    if (created != nullptr && netsnmp_register_scalar(created) == 0) {
        entry.registration = created;
    }
}

}  // namespace

void register_scalars(std::span<const ScalarEntry> entries) {
    for (const ScalarEntry &entry : entries) {
        register_scalar(entry);
    }
}

void unregister_scalars(std::span<const ScalarEntry> entries) {
    for (const ScalarEntry &entry : entries) {
        unregister_scalar(entry.registration);
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
