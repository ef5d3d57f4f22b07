// A scalar as data, and the code that registers and serves it.
//
// A scalar's source is a line of data a scalar and the few functions that are its own; MODULE_SCALAR then
// defines its handler and its registration, which init_..._manual and deinit_..._manual put up and take down.
#ifndef TARN_MODULE_TABLES_FRAME_SCALAR_H
#define TARN_MODULE_TABLES_FRAME_SCALAR_H

#include <array>

#include "module/common/exports.h"
#include "module/tables/frame/column.h"
#include "module/tables/frame/registry.h"
#include "module/tables/frame/well_formed.h"
#include "tarn/module_api.h"

namespace tarn {

struct Scalar {
    const char *name;
    std::array<oid, 4> arcs;             // of its identifier below the module's root, ended by 0
    std::uint8_t type;                   // of its value
    int (*get)(const Reply &reply);      // writes the value; 0 or an SNMP error
    Check check;                         // of a value to SET, in the first phase
    int (*set)(const Binding &value);    // in the action phase; 0 or an SNMP error
    Check second_check = not_checked;    // in the second phase
    int unknown_mode = SNMP_ERR_GENERR;  // the handler's result in a mode that it does not know
};

using ScalarRegistration = netsnmp_handler_registration *;

// Registers the scalar anew, read-write. `registration` is null where that failed.
void register_scalar(const Scalar &scalar, Netsnmp_Node_Handler *handler, ScalarRegistration &registration);
void unregister_scalar(ScalarRegistration &registration);

// The body of a scalar's handler.
int handle_scalar(const Scalar &scalar, const netsnmp_agent_request_info *reqinfo,
                  netsnmp_request_info *requests);

}  // namespace tarn

// Defines handle_X and X_registration, which is null while X is not registered.
#define MODULE_SCALAR(X, scalar)                                                                          \
    TARN_WELL_FORMED((scalar).name == std::string_view(#X), "a scalar has the name of its handler");      \
    TARN_WELL_FORMED((scalar).get != nullptr && (scalar).set != nullptr, "a scalar is read and written"); \
    static const tarn::Registered<tarn::Scalar> X##_registered(scalar);                                   \
    TARN_EXPORT_DATA tarn::ScalarRegistration X##_registration;                                           \
    TARN_EXPORT int handle_##X(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*of*/,  \
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {     \
        return tarn::handle_scalar(scalar, reqinfo, requests);                                            \
    }

#endif
