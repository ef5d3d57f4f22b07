// A scalar as data, and the code that registers and serves it.
//
// A scalar's source is a line of data a scalar and the few functions that are its own; where it stands in the
// MIB is in tarn/mib_objects.h. MODULE_SCALAR defines its handler and its registration, MODULE_SCALARS for a
// group of them init_..._manual and deinit_..._manual, which put them up and take them down.
#ifndef TARN_MODULE_TABLES_FRAME_SCALAR_H
#define TARN_MODULE_TABLES_FRAME_SCALAR_H

#include <span>

#include "module/common/exports.h"
#include "module/tables/frame/column.h"
#include "module/tables/frame/registry.h"
#include "module/tables/frame/well_formed.h"
#include "tarn/mib_objects.h"
#include "tarn/module_api.h"

namespace tarn {

struct Scalar {
    const char *name;
    std::uint8_t type;                   // of its value
    int (*get)(const Reply &reply);      // writes the value; 0 or an SNMP error
    Check check;                         // of a value to SET, in the first phase
    int (*set)(const Binding &value);    // in the action phase; 0 or an SNMP error
    Check second_check = not_checked;    // in the second phase
    int unknown_mode = SNMP_ERR_GENERR;  // the handler's result in a mode that it does not know
};

using ScalarRegistration = netsnmp_handler_registration *;

// A scalar with what net-snmp has of it; the registration is null while it has none.
struct ScalarEntry {
    const Scalar &scalar;
    Netsnmp_Node_Handler *handler;
    ScalarRegistration &registration;
};
// Registers the scalars anew, read-write.
void register_scalars(std::span<const ScalarEntry> entries);
void unregister_scalars(std::span<const ScalarEntry> entries);

// Of a group without a state.
inline void reset_nothing() {}

// The body of a scalar's handler.
int handle_scalar(const Scalar &scalar, const netsnmp_agent_request_info *reqinfo,
                  netsnmp_request_info *requests);

}  // namespace tarn

// Defines handle_X, X_registration and the X_entry of both.
#define MODULE_SCALAR(X, scalar)                                                                          \
    TARN_WELL_FORMED((scalar).name == std::string_view(#X), "a scalar has the name of its handler");      \
    TARN_WELL_FORMED(tarn::find_mib_object(#X).length != 0, "a scalar stands in the MIB");                \
    TARN_WELL_FORMED((scalar).get != nullptr && (scalar).set != nullptr, "a scalar is read and written"); \
    static const tarn::Registered<tarn::Scalar> X##_registered(scalar);                                   \
    TARN_EXPORT_DATA tarn::ScalarRegistration X##_registration;                                           \
    TARN_EXPORT int handle_##X(netsnmp_mib_handler * /*handler*/, netsnmp_handler_registration * /*of*/,  \
                               netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {     \
        return tarn::handle_scalar(scalar, reqinfo, requests);                                            \
    }                                                                                                     \
    static const tarn::ScalarEntry X##_entry{scalar, handle_##X, X##_registration};

// Defines init_G_manual, which calls `reset` first, and deinit_G_manual for the entries X_entry that follow.
#define MODULE_SCALARS(G, reset, ...)                             \
    static const tarn::ScalarEntry G##_scalars[] = {__VA_ARGS__}; \
    void init_##G##_manual(void) {                                \
        reset();                                                  \
        tarn::register_scalars(G##_scalars);                      \
    }                                                             \
    void deinit_##G##_manual(void) {                              \
        tarn::unregister_scalars(G##_scalars);                    \
    }

#endif
