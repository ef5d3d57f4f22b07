#include "host/tables/table_set.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

constexpr char list_name[] = "tarn_set";

// What a request of a SET is about, from RESERVE1 to its end.
struct SetTarget {
    Table &table;
    Instance instance{};
    std::shared_ptr<const RowIndex> rows{};
    bool creates_row = false;
    bool acted = false;   // its action was called
    bool hidden = false;  // the row cannot be read, nor does the SET say what becomes of it
};

void delete_target(void *target) {
    delete static_cast<SetTarget *>(target);
}

SetTarget *target_of(const netsnmp_request_info *request) {
    return static_cast<SetTarget *>(netsnmp_get_list_data(request->parent_data, list_name));
}

// Whether the variable creates its row when that is not there. A row that is destroyed goes when the manager
// says.
bool creates_row(const Table &table, const netsnmp_variable_list *binding) {
    const Column *column = table.column_of({binding->name, binding->name_length});
    return column != nullptr && column->row_status && binding->type == ASN_INTEGER &&
           *binding->val.integer != RS_DESTROY;
}

// Requests that are not resolved never reach the module, in no phase.
SetTarget *resolve(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request) {
    const netsnmp_variable_list *binding = request->requestvb;
    auto target = std::make_unique<SetTarget>(SetTarget{table});
    if (table.parse({binding->name, binding->name_length}, target->instance) != NameForm::row) {
        return nullptr;
    }
    if (table.is_iterator()) {
        // A row that does not exist stays null: the table may create it.
        target->rows = table.rows(target->instance.slot, reqinfo->asp->pdu->transid, true);
        const std::size_t row = target->rows->find(target->instance.suffix);
        target->instance.row = row < target->rows->size() ? target->rows->data(row) : nullptr;
    }
    target->creates_row = creates_row(table, binding);
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

// Whether the MIB lets managers write the variable at all. A column that it does not know the module may have
// an error of its own for.
bool mib_lets_write(const Table &table, const netsnmp_variable_list *binding) {
    const Column *column = table.column_of({binding->name, binding->name_length});
    return column != nullptr ? column->writable : table.schema().writable();
}

// What the MIB has against a value that the module lets pass: the error-status, 0 when it is nothing. The
// module is heard first, since it knows its rows: one that does not exist, or a rule of its own, has an error
// that managers know.
int mib_error(const Table &table, const netsnmp_variable_list *binding) {
    const Column *column = table.column_of({binding->name, binding->name_length});
    if (column == nullptr) {
        return SNMP_ERR_NOTWRITABLE;
    }
    if (binding->type != column->type) {
        return SNMP_ERR_WRONGTYPE;
    }
    const bool number = binding->type == ASN_INTEGER || binding->type == ASN_UNSIGNED;
    const auto measured =
        number ? std::int64_t{*binding->val.integer} : static_cast<std::int64_t>(binding->val_len);
    const bool admitted =
        column->admitted.empty() || std::ranges::any_of(column->admitted, [measured](const auto &range) {
            return measured >= range.first && measured <= range.second;
        });
    if (admitted) {
        return SNMP_ERR_NOERROR;
    }
    return number ? SNMP_ERR_WRONGVALUE : SNMP_ERR_WRONGLENGTH;
}

std::span<const oid> row_of(const Table &table, const netsnmp_request_info *request) {
    const std::span<const oid> name(request->requestvb->name, request->requestvb->name_length);
    return name.subspan(std::min(table.schema().prefix_length(), name.size()));
}

// SNMP leaves the order of a SET's variables open; the module must learn of a new row before it is given the
// row's other columns. Otherwise the manager's order stays.
std::vector<netsnmp_request_info *> in_module_order(const Table &table, netsnmp_request_info *requests) {
    std::vector<netsnmp_request_info *> ordered;
    for (auto *request = requests; request != nullptr; request = request->next) {
        auto place = ordered.end();
        if (creates_row(table, request->requestvb)) {
            place = std::ranges::find_if(ordered, [&](const netsnmp_request_info *earlier) {
                return std::ranges::equal(row_of(table, earlier), row_of(table, request));
            });
        }
        ordered.insert(place, request);
    }
    return ordered;
}

void act(netsnmp_agent_request_info *reqinfo, netsnmp_request_info *request, SetTarget &target) {
    target.acted = true;
    const int code = target.table.call(MODE_SET_ACTION, reqinfo, request, target.instance);
    if (code != SNMP_ERR_NOERROR) {
        (void)netsnmp_set_request_error(reqinfo, request, set_error(MODE_SET_ACTION, code));
    }
}

// Once an action failed, in whatever table, no further one is started.
bool any_failed(netsnmp_agent_request_info *reqinfo) {
    return netsnmp_check_all_requests_error(reqinfo->asp, 0) != SNMP_ERR_NOERROR;
}

// net-snmp goes table by table, in the order of their first variables; rows that are created may stand in a
// later one. An ONT comes before what belongs to it: its index is shorter.
void create_rows(netsnmp_agent_request_info *reqinfo) {
    std::vector<netsnmp_request_info *> creating;
    for (int i = 0; i < reqinfo->asp->vbcount; ++i) {
        netsnmp_request_info *request = &reqinfo->asp->requests[i];
        if (const SetTarget *target = target_of(request);
            target != nullptr && target->creates_row && !target->acted) {
            creating.push_back(request);
        }
    }
    std::ranges::stable_sort(creating, {}, [](const netsnmp_request_info *request) {
        return target_of(request)->instance.suffix.size();
    });
    for (netsnmp_request_info *request : creating) {
        if (any_failed(reqinfo)) {
            return;
        }
        act(reqinfo, request, *target_of(request));
    }
}

// Whether a row's RowStatus can be read.
bool is_visible(Table &table, netsnmp_agent_request_info *reqinfo, const netsnmp_request_info *request,
                Instance row) {
    row.column = table.schema().row_status()->number;
    std::vector<oid> name(request->requestvb->name,
                          request->requestvb->name + request->requestvb->name_length);
    name[table.schema().prefix_length() - 1] = row.column;
    netsnmp_request_info probe = *request;
    probe.requestvb = nullptr;
    (void)snmp_varlist_add_variable(&probe.requestvb, name.data(), name.size(), ASN_NULL, nullptr, 0);
    const bool visible = table.call(MODE_GET, reqinfo, &probe, row) == SNMP_ERR_NOERROR &&
                         probe.requestvb->type == ASN_INTEGER;
    snmp_free_varbind(probe.requestvb);
    return visible;
}

// An OID-exact table may take a SET of a row that was destroyed, and change what no manager can read: notes
// the rows that are not visible before the SET, and tells of one that is not afterwards. Looking at a row has
// the module fetch it, which a SET that destroys the row needs, too: the module keeps what it fetched.
void note_hidden_rows(Table &table, netsnmp_agent_request_info *reqinfo,
                      std::span<netsnmp_request_info *const> requests) {
    for (netsnmp_request_info *request : requests) {
        const bool told = std::ranges::any_of(requests, [&](const netsnmp_request_info *other) {
            const Column *column = table.column_of({other->requestvb->name, other->requestvb->name_length});
            return column != nullptr && column->row_status &&
                   std::ranges::equal(row_of(table, other), row_of(table, request));
        });
        if (SetTarget *target = target_of(request); target != nullptr) {
            const bool visible = is_visible(table, reqinfo, request, target->instance);
            target->hidden = !visible && !told;
        }
    }
}

void tell_of_hidden_row(Table &table, netsnmp_agent_request_info *reqinfo,
                        std::span<netsnmp_request_info *const> requests) {
    const auto hidden = std::ranges::find_if(requests, [&](const netsnmp_request_info *request) {
        const SetTarget *target = target_of(request);
        return target != nullptr && target->hidden && request->status == SNMP_ERR_NOERROR &&
               !is_visible(table, reqinfo, request, target->instance);
    });
    if (hidden == requests.end()) {
        return;
    }
    std::string row;
    for (const oid subid : row_of(table, *hidden)) {
        row += "." + std::to_string(subid);
    }
    log_add(log_level::warning, "%s: a SET changed the row %s, which does not exist for managers\n",
            table.schema().name.c_str(), row.c_str() + 1);
}

}  // namespace

void set_table(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    const int mode = reqinfo->mode;
    const std::vector<netsnmp_request_info *> ordered = in_module_order(table, requests);
    const bool creates_rows = !table.is_iterator() && table.schema().row_status() != nullptr;
    if (mode == MODE_SET_ACTION) {
        create_rows(reqinfo);
    }
    for (netsnmp_request_info *request : ordered) {
        SetTarget *target = mode == MODE_SET_RESERVE1 ? resolve(table, reqinfo, request) : target_of(request);
        if (target == nullptr) {
            if (mode == MODE_SET_RESERVE1) {
                (void)netsnmp_set_request_error(reqinfo, request, SNMP_ERR_NOCREATION);
            }
            continue;
        }
        if (mode == MODE_SET_ACTION) {
            if (!target->acted && !any_failed(reqinfo)) {
                act(reqinfo, request, *target);
            }
            continue;
        }
        const bool reserves = mode == MODE_SET_RESERVE1;
        int code = reserves && !mib_lets_write(table, request->requestvb)
                       ? SNMP_ERR_NOTWRITABLE
                       : table.call(mode, reqinfo, request, target->instance);
        if (code == SNMP_ERR_NOERROR && reserves) {
            code = mib_error(table, request->requestvb);
        }
        // What FREE and UNDO return must not hide the error that led to them.
        if (code != SNMP_ERR_NOERROR && !undoes(mode)) {
            (void)netsnmp_set_request_error(reqinfo, request, set_error(mode, code));
        }
    }
    if (creates_rows && mode == MODE_SET_RESERVE2) {
        note_hidden_rows(table, reqinfo, ordered);
    } else if (creates_rows && mode == MODE_SET_COMMIT) {
        tell_of_hidden_row(table, reqinfo, ordered);
    }
}

}  // namespace tarn::host
