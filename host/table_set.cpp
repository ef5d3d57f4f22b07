#include "host/table_set.h"

namespace tarn::host {
namespace {

constexpr char list_name[] = "tarn_set";

// What a request of a SET is about, from RESERVE1 to its end.
struct SetTarget {
    Instance instance;
    std::shared_ptr<const RowIndex> rows;
};

void delete_target(void *target) {
    delete static_cast<SetTarget *>(target);
}

SetTarget *target_of(netsnmp_request_info *request) {
    return static_cast<SetTarget *>(netsnmp_request_get_list_data(request, list_name));
}

// Requests that are not resolved never reach the module, in no phase.
SetTarget *resolve(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request) {
    const netsnmp_variable_list *binding = request->requestvb;
    auto target = std::make_unique<SetTarget>();
    if (!table.parse({binding->name, binding->name_length}, target->instance)) {
        return nullptr;
    }
    if (table.is_iterator()) {
        // A row that does not exist stays null: the table may create it.
        target->rows = table.rows(target->instance.slot, reqinfo->asp->pdu->transid, true);
        const std::size_t row = target->rows->find(target->instance.suffix);
        target->instance.row = row < target->rows->size() ? target->rows->data(row) : nullptr;
    }
    SetTarget *result = target.release();
    netsnmp_request_add_list_data(request, netsnmp_create_data_list(list_name, result, delete_target));
    return result;
}

// The error-status that reaches the manager. The exceptions of a GET have no meaning in a SET, and what
// net-snmp makes of them after RESERVE1 is not allowed in SNMPv2; a COMMIT can only fail.
int set_error(int mode, int code) {
    if (mode == MODE_SET_COMMIT) {
        return SNMP_ERR_COMMITFAILED;
    }
    if (code == SNMP_NOSUCHOBJECT || code == SNMP_NOSUCHINSTANCE || code == SNMP_ERR_NOSUCHNAME) {
        return SNMP_ERR_NOCREATION;
    }
    return code < 0 || code > SNMP_ERR_INCONSISTENTNAME ? SNMP_ERR_GENERR : code;
}

bool undoes(int mode) {
    return mode == MODE_SET_FREE || mode == MODE_SET_UNDO;
}

}  // namespace

void set_table(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const int mode = reqinfo->mode;
    for (auto *request = requests; request != nullptr; request = request->next) {
        SetTarget *target = mode == MODE_SET_RESERVE1 ? resolve(table, reqinfo, request) : target_of(request);
        if (target == nullptr) {
            if (mode == MODE_SET_RESERVE1) {
                (void)netsnmp_set_request_error(reqinfo, request, SNMP_ERR_NOCREATION);
            }
            continue;
        }
        // Once an action failed, also in another table, no further one is started.
        if (mode == MODE_SET_ACTION &&
            netsnmp_check_all_requests_error(reqinfo->asp, 0) != SNMP_ERR_NOERROR) {
            return;
        }
        const int code = table.call(mode, reqinfo, request, target->instance);
        // What FREE and UNDO return must not hide the error that led to them.
        if (code != SNMP_ERR_NOERROR && !undoes(mode)) {
            (void)netsnmp_set_request_error(reqinfo, request, set_error(mode, code));
        }
    }
}

}  // namespace tarn::host
