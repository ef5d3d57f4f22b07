// Tables without a module: callbacks that serve scripted rows and record how they are called.
#ifndef TARN_TEST_FAKE_TABLE_H
#define TARN_TEST_FAKE_TABLE_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/tables/table.h"
#include "tarn/host_services.h"

namespace tarn::host::test {

inline const std::vector<oid> table_root = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 9, 1};

// The OID of an instance: the root, the entry, the column, the index.
inline std::vector<oid> instance(oid column, const std::vector<oid> &suffix) {
    std::vector<oid> name = table_root;
    name.push_back(1);
    name.push_back(column);
    name.insert(name.end(), suffix.begin(), suffix.end());
    return name;
}

// Columns 3 and 5 can be read and written; the index is the slot and one number.
inline TableSchema slot_table_schema() {
    return {"tarnTestTable",
            table_root,
            {{3, ASN_INTEGER, true}, {5, ASN_INTEGER, true}},
            {{.type = ASN_UNSIGNED, .is_slot = true}, {.type = ASN_UNSIGNED}}};
}

// What the callbacks do; tests fill it in. One table at a time.
struct FakeModule {
    // Iterator style: the second index part of each row of a slot, in the module's order.
    std::map<int, std::vector<int>> rows;
    // OID-exact style: the successor of each OID; a row that has none is the slot's last.
    std::map<std::vector<oid>, std::vector<oid>> successors;
    // The answer of a handler in a mode; unset: 100 times the column plus the row's number on GET.
    std::function<int(int mode, netsnmp_request_info *request)> handle;
    std::vector<std::string> calls;  // "MODE OID row" of each handler call, "enumerate SLOT" of each walk
    int cursor = 0;
    std::vector<int> row_data;
};

inline FakeModule fake;

inline std::string text_of(const oid *name, std::size_t length) {
    std::string text;
    for (std::size_t i = table_root.size() + 1; i < length; ++i) {
        text += (text.empty() ? "" : ".") + std::to_string(name[i]);
    }
    return text;
}

inline std::string mode_name(int mode) {
    switch (mode) {
        case MODE_GET:
            return "get";
        case MODE_SET_RESERVE1:
            return "reserve1";
        case MODE_SET_RESERVE2:
            return "reserve2";
        case MODE_SET_ACTION:
            return "action";
        case MODE_SET_COMMIT:
            return "commit";
        case MODE_SET_FREE:
            return "free";
        case MODE_SET_UNDO:
            return "undo";
        default:
            return "mode " + std::to_string(mode);
    }
}

inline int record_and_handle(int mode, netsnmp_request_info *request, bool has_row) {
    const netsnmp_variable_list *binding = request->requestvb;
    fake.calls.push_back(mode_name(mode) + " " + text_of(binding->name, binding->name_length) +
                         (has_row ? " row" : " no row") + (request->next == nullptr ? "" : " and more"));
    if (fake.handle) {
        return fake.handle(mode, request);
    }
    if (mode == MODE_GET) {
        const auto column = static_cast<long>(binding->name[12]);
        const auto number = static_cast<long>(binding->name[binding->name_length - 1]);
        (void)snmp_set_var_typed_integer(request->requestvb, ASN_INTEGER, 100 * column + number);
    }
    return 0;
}

inline netsnmp_variable_list *fake_next_index(void **loop_context, void **data_context,
                                              netsnmp_variable_list *indexes, int slot) {
    if (*loop_context == nullptr) {
        fake.cursor = 0;
        fake.calls.push_back("enumerate " + std::to_string(slot));
    }
    const std::vector<int> &rows = fake.rows[slot];
    if (fake.cursor >= static_cast<int>(rows.size())) {
        return nullptr;
    }
    (void)snmp_set_var_typed_integer(indexes, ASN_UNSIGNED, slot + 1);
    (void)snmp_set_var_typed_integer(indexes->next_variable, ASN_UNSIGNED,
                                     rows[static_cast<std::size_t>(fake.cursor)]);
    *data_context = &fake.rows[slot][static_cast<std::size_t>(fake.cursor)];
    *loop_context = &fake.cursor;
    ++fake.cursor;
    return indexes;
}

inline int fake_module_handler(netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo, void *row,
                               netsnmp_table_request_info *table_info) {
    const auto *extracted = netsnmp_extract_table_info(request);
    const bool consistent =
        extracted == table_info && table_info->colnum == request->requestvb->name[12] &&
        *table_info->indexes->val.integer == static_cast<long>(request->requestvb->name[13]);
    return consistent ? record_and_handle(reqinfo->mode, request, row != nullptr) : SNMP_ERR_GENERR;
}

inline void fake_get_next_entry(table_entry *result, int slot, const oid *name, std::size_t length,
                                int column) {
    if (length == table_root.size()) {
        fake.calls.push_back("enumerate " + std::to_string(slot));
    }
    const auto next = fake.successors.find({name, name + length});
    if (next == fake.successors.end() || column != 3) {
        return;
    }
    const std::size_t size = next->second.size() * sizeof(oid);
    result->name = static_cast<oid *>(balloc(__FILE__, __LINE__, size));
    memcpy(result->name, next->second.data(), size);
    result->length = next->second.size();
    result->row = &fake;
}

inline int fake_table_handler_nextgen(int mode, netsnmp_request_info *request, int /*slot*/, void *row) {
    return record_and_handle(mode, request, row != nullptr);
}

inline constexpr TableCallbacks iterator_callbacks{.next_index = fake_next_index,
                                                   .module_handler = fake_module_handler};
inline constexpr TableCallbacks nextgen_callbacks{.get_next_entry = fake_get_next_entry,
                                                  .table_handler_nextgen = fake_table_handler_nextgen};

// Chains the rows, given by their indices, in this order after the bare table OID.
inline void set_successors(const std::vector<std::vector<oid>> &suffixes) {
    std::vector<oid> previous = table_root;
    for (const std::vector<oid> &suffix : suffixes) {
        fake.successors[previous] = instance(3, suffix);
        previous = instance(3, suffix);
    }
}

}  // namespace tarn::host::test

#endif
