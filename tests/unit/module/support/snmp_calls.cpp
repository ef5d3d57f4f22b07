#include "support/snmp_calls.h"

#include <cstring>

#include "support/scripted_board.h"
#include "tarn/host_services.h"

namespace {

// The request of one variable and what hangs on it.
struct Call {
    netsnmp_agent_request_info reqinfo{};
    netsnmp_request_info request{};
    netsnmp_variable_list binding{};

    Call(int mode, const Oid &name, const Value *value) {
        reqinfo.mode = mode;
        request.requestvb = &binding;
        request.agent_req_info = &reqinfo;
        snmp_set_var_objid(&binding, name.data(), name.size());
        binding.type = ASN_NULL;
        if (value == nullptr) {
            return;
        }
        if (value->type == ASN_OCTET_STR || value->type == ASN_IPADDRESS) {
            snmp_set_var_typed_value(&binding, value->type, value->octets.data(), value->octets.size());
        } else {
            snmp_set_var_typed_integer(&binding, value->type, value->integer);
        }
    }
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;
    ~Call() { snmp_reset_var_buffers(&binding); }

    Outcome outcome(int result) const {
        Outcome out;
        out.result = result;
        out.error = request.status;
        out.type = binding.type;
        if (binding.type == SNMP_NOSUCHOBJECT || binding.type == SNMP_NOSUCHINSTANCE) {
            out.error = binding.type;
        } else if (binding.type == ASN_OCTET_STR || binding.type == ASN_IPADDRESS) {
            out.octets.assign(reinterpret_cast<const char *>(binding.val.string), binding.val_len);
        } else if (binding.type == ASN_COUNTER64) {
            out.counter = *binding.val.counter64;
        } else if (binding.val.integer != nullptr && binding.type != ASN_NULL) {
            out.integer = *binding.val.integer;
        }
        return out;
    }
};

// A host's index list for these values.
struct IndexList {
    netsnmp_variable_list *list = nullptr;

    explicit IndexList(const IndexValues &values) {
        for (const IndexValue &value : values) {
            if (value.is_octets) {
                snmp_varlist_add_variable(&list, nullptr, 0, ASN_OCTET_STR, value.octets.data(),
                                          value.octets.size());
            } else {
                const auto number = static_cast<u_long>(value.number);
                snmp_varlist_add_variable(&list, nullptr, 0, ASN_UNSIGNED, &number, sizeof number);
            }
        }
    }
    IndexList(const IndexList &) = delete;
    IndexList &operator=(const IndexList &) = delete;
    ~IndexList() { snmp_free_varbind(list); }
};

IndexValues read_list(const netsnmp_variable_list *list) {
    IndexValues values;
    for (; list != nullptr; list = list->next_variable) {
        if (list->type == ASN_OCTET_STR) {
            values.emplace_back(std::string(reinterpret_cast<const char *>(list->val.string), list->val_len));
        } else {
            values.emplace_back(static_cast<int>(*list->val.integer));
        }
    }
    return values;
}

}  // namespace

Value integer_value(long value) {
    return {ASN_INTEGER, value, {}};
}
Value unsigned_value(long value) {
    return {ASN_UNSIGNED, value, {}};
}
Value octets_value(std::string octets) {
    return {ASN_OCTET_STR, 0, std::move(octets)};
}
Value address_value(std::string four_octets) {
    return {ASN_IPADDRESS, 0, std::move(four_octets)};
}

Reading is_integer(int column, long value) {
    return {column, ASN_INTEGER, value, {}};
}
Reading is_unsigned(int column, long value) {
    return {column, ASN_UNSIGNED, value, {}};
}
Reading is_number(int column, long value) {
    return {column, 0, value, {}};
}
Reading is_octets(int column, std::string octets) {
    return {column, ASN_OCTET_STR, 0, std::move(octets)};
}
Reading is_missing(int column, int error) {
    return {column, 0, 0, {}, error};
}

void expect_reading(const Outcome &out, const Reading &expected) {
    SCOPED_TRACE("column " + std::to_string(expected.column));
    EXPECT_EQ(out.error, expected.error);
    EXPECT_EQ(out.integer, expected.integer);
    EXPECT_EQ(out.octets, expected.octets);
    if (expected.type != 0) {
        EXPECT_EQ(out.type, expected.type);
    } else if (expected.error == 0) {
        EXPECT_TRUE(out.type == ASN_INTEGER || out.type == ASN_UNSIGNED) << out.type;
    }
}

Outcome call_iterator(module_handler_function *handler, int mode, int column, const IndexValues &index,
                      void *row, const Value *value) {
    Call call(mode, {1, 3, 6, 1}, value);
    const IndexList list(index);
    netsnmp_table_request_info info{};
    info.colnum = static_cast<unsigned>(column);
    info.indexes = list.list;
    return call.outcome(handler(&call.request, &call.reqinfo, row, &info));
}

Outcome call_nextgen(table_handler_nextgen_function *handler, int mode, int slot, const Oid &name,
                     const Value *value) {
    Call call(mode, name, value);
    return call.outcome(handler(mode, &call.request, slot, nullptr));
}

Outcome call_scalar(Netsnmp_Node_Handler *handler, int mode, const Value *value) {
    Call call(mode, {1, 3, 6, 1, 0}, value);
    return call.outcome(handler(nullptr, nullptr, &call.reqinfo, &call.request));
}

std::vector<WalkedRow> walk_iterator(next_index_function *next_index, int slot, const IndexValues &shape) {
    std::vector<WalkedRow> rows;
    const IndexList list(shape);
    void *loop_context = nullptr;
    void *row = nullptr;
    while (next_index(&loop_context, &row, list.list, slot) != nullptr) {
        rows.push_back({read_list(list.list), row});
        EXPECT_NE(loop_context, nullptr);
    }
    return rows;
}

std::vector<IndexValues> indices_of(next_index_function *next_index, int slot, const IndexValues &shape) {
    std::vector<IndexValues> indices;
    for (const WalkedRow &row : walk_iterator(next_index, slot, shape)) {
        indices.push_back(row.index);
    }
    return indices;
}

Oid next_of(get_next_entry_function *next, int slot, const Oid &name, int column) {
    table_entry entry{};
    next(&entry, slot, name.data(), name.size(), column);
    Oid found(entry.name, entry.name + entry.length);
    if (entry.name != nullptr) {
        bfree(__FILE__, __LINE__, entry.name);
    }
    return found;
}

std::vector<Oid> walk_nextgen(get_next_entry_function *next, int slot, const Oid &table, int column,
                              std::size_t limit) {
    std::vector<Oid> rows;
    for (Oid name = next_of(next, slot, table, column); !name.empty() && rows.size() < limit;
         name = next_of(next, slot, name, column)) {
        rows.push_back(name);
    }
    return rows;
}

int set_iterator(module_handler_function *handler, int column, const IndexValues &index, void *row,
                 const Value &value) {
    return set_together({[&](int mode) { return call_iterator(handler, mode, column, index, row, &value); }});
}

int set_together(const std::vector<std::function<Outcome(int mode)>> &variables) {
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT}) {
        int error = 0;
        for (const auto &variable : variables) {
            const Outcome out = variable(mode);
            error = error != 0 ? error : out.error != 0 ? out.error : out.result;
        }
        if (error != 0) {
            const int end = mode == MODE_SET_ACTION ? MODE_SET_UNDO : MODE_SET_FREE;
            for (std::size_t i = 0; mode != MODE_SET_COMMIT && i < variables.size(); ++i) {
                variables[i](end);
            }
            return error;
        }
    }
    return 0;
}

int set_nextgen(table_handler_nextgen_function *handler, int slot, const Oid &name, const Value &value) {
    return set_together({[&](int mode) { return call_nextgen(handler, mode, slot, name, &value); }});
}

int set_scalar(Netsnmp_Node_Handler *handler, const Value &value) {
    return set_together({[&](int mode) { return call_scalar(handler, mode, &value); }});
}
