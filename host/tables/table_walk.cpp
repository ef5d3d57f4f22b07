#include "host/tables/table_walk.h"

#include <net-snmp/agent/bulk_to_next.h>

#include <algorithm>
#include <array>
#include <optional>

#include "host/board/pass.h"
#include "host/tables/answer_size.h"

namespace tarn::host {
namespace {

// Whether the manager's view holds an OID's whole subtree, nothing of it, or parts.
enum class Visibility { whole, none, parts };

Visibility subtree_visibility(netsnmp_pdu *pdu, oid *name, std::size_t length) {
    switch (netsnmp_acm_check_subtree(pdu, name, length)) {
        case VACM_SUCCESS:
            return Visibility::whole;
        case VACM_SUBTREE_UNKNOWN:
            return Visibility::parts;
        default:
            return Visibility::none;
    }
}

bool wants_answer(const netsnmp_request_info *request) {
    return request->processed == 0 &&
           (request->requestvb->type == ASN_NULL || request->requestvb->type == ASN_PRIV_RETRY);
}

bool is_value(const netsnmp_variable_list *binding) {
    switch (binding->type) {
        case ASN_NULL:
        case ASN_PRIV_RETRY:
        case SNMP_NOSUCHOBJECT:
        case SNMP_NOSUCHINSTANCE:
        case SNMP_ENDOFMIBVIEW:
            return false;
        default:
            return true;
    }
}

int omissions_of_pass() {
    return Pass::current() != nullptr ? Pass::current()->omissions() : 0;
}

// A place in the table: instances go column by column, slot by slot, row by row.
struct Cursor {
    std::size_t column = 0;
    std::size_t slot = 0;  // position in the table's slots
    std::size_t row = 0;
    std::shared_ptr<const RowIndex> rows{};  // of the slot; null: not looked at yet
    bool at_end = false;
};

class Walk {
  public:
    Walk(Table &table, netsnmp_agent_request_info *reqinfo)
        : table_(table),
          schema_(table.schema()),
          slots_(table.slots()),
          reqinfo_(reqinfo),
          pdu_(reqinfo->asp->pdu),
          transaction_(reqinfo->asp->pdu->transid),
          column_visibility_(schema_.columns.size(), Visibility::whole) {
        std::copy(schema_.root.begin(), schema_.root.end(), name_.begin());
        const std::size_t root_length = schema_.root.size();
        visibility_ = subtree_visibility(pdu_, name_.data(), root_length);
        name_[root_length] = 1;
        if (visibility_ == Visibility::parts) {
            for (std::size_t i = 0; i < schema_.columns.size(); ++i) {
                name_[root_length + 1] = schema_.columns[i].number;
                column_visibility_[i] = subtree_visibility(pdu_, name_.data(), schema_.prefix_length());
            }
        }
    }

    [[nodiscard]] bool sees_nothing() const { return visibility_ == Visibility::none; }

    // The place of the first instance after the OID, or at it when `inclusive`.
    Cursor find(std::span<const oid> name, bool inclusive);

    // Whether a slot's rows are still on their way: there is nothing to answer with beyond.
    [[nodiscard]] bool is_stuck() const { return stuck_; }

    // Answers with the first value at or after the cursor and moves the cursor after it. False, and the
    // request as it was, when there is none.
    bool answer(netsnmp_request_info *request, Cursor &cursor);

  private:
    bool settle(Cursor &cursor);
    void look_up_rows(Cursor &cursor);

    Table &table_;
    const TableSchema &schema_;
    const std::vector<int> &slots_;
    netsnmp_agent_request_info *reqinfo_;
    netsnmp_pdu *pdu_;
    long transaction_;
    Visibility visibility_ = Visibility::whole;
    std::vector<Visibility> column_visibility_;
    std::array<oid, MAX_OID_LEN> name_{};
    Instance instance_;
    bool stuck_ = false;
    std::vector<oid> asked_;  // the OID of the request that is being answered
};

Cursor Walk::find(std::span<const oid> name, bool inclusive) {
    Cursor cursor;
    const std::size_t root_length = schema_.root.size();
    const std::span<const oid> root(schema_.root);
    const auto common = std::min(name.size(), root_length);
    const int order = snmp_oid_compare(name.data(), common, root.data(), common);
    if (order < 0 || name.size() <= root_length) {
        cursor.at_end = order > 0;
        return cursor;
    }
    if (order > 0 || name[root_length] > 1) {
        cursor.at_end = true;
        return cursor;
    }
    if (name[root_length] < 1 || name.size() < schema_.prefix_length()) {
        return cursor;
    }
    const oid number = name[root_length + 1];
    const auto column = std::lower_bound(schema_.columns.begin(), schema_.columns.end(), number,
                                         [](const Column &a, oid b) { return a.number < b; });
    cursor.column = static_cast<std::size_t>(column - schema_.columns.begin());
    const std::span<const oid> suffix = name.subspan(schema_.prefix_length());
    if (column == schema_.columns.end() || column->number != number || suffix.empty()) {
        return cursor;
    }
    if (schema_.per_slot()) {
        // Rows of a slot begin with the slot's number, which counts from 1.
        const auto slot = std::lower_bound(slots_.begin(), slots_.end(), suffix.front(),
                                           [](int a, oid b) { return static_cast<oid>(a) + 1 < b; });
        cursor.slot = static_cast<std::size_t>(slot - slots_.begin());
        if (slot == slots_.end() || static_cast<oid>(*slot) + 1 != suffix.front()) {
            return cursor;
        }
    }
    look_up_rows(cursor);
    cursor.row = inclusive ? cursor.rows->lower_bound(suffix) : cursor.rows->upper_bound(suffix);
    return cursor;
}

void Walk::look_up_rows(Cursor &cursor) {
    cursor.rows = table_.rows(slots_[cursor.slot], transaction_);
    if (cursor.rows->origin == RowIndex::Origin::nothing) {
        stuck_ = true;
        cursor.at_end = true;
    }
}

// Moves the cursor to an instance that exists; false at the table's end.
bool Walk::settle(Cursor &cursor) {
    while (!cursor.at_end) {
        if (cursor.column == schema_.columns.size()) {
            cursor.at_end = true;
        } else if (cursor.slot == slots_.size() || column_visibility_[cursor.column] == Visibility::none) {
            cursor = Cursor{.column = cursor.column + 1};
        } else {
            if (cursor.rows == nullptr) {
                look_up_rows(cursor);
                continue;
            }
            if (cursor.row < cursor.rows->size()) {
                return true;
            }
            cursor = Cursor{.column = cursor.column, .slot = cursor.slot + 1};
        }
    }
    return false;
}

bool Walk::answer(netsnmp_request_info *request, Cursor &cursor) {
    netsnmp_variable_list *binding = request->requestvb;
    asked_.assign(binding->name, binding->name + binding->name_length);
    const unsigned char asked_type = binding->type;
    while (settle(cursor)) {
        const auto suffix = cursor.rows->suffix(cursor.row);
        instance_.column = schema_.columns[cursor.column].number;
        instance_.slot = slots_[cursor.slot];
        instance_.row = cursor.rows->data(cursor.row);
        instance_.suffix.assign(suffix.begin(), suffix.end());
        ++cursor.row;
        const std::size_t prefix = schema_.prefix_length();
        name_[prefix - 1] = instance_.column;
        std::copy(suffix.begin(), suffix.end(), name_.begin() + static_cast<std::ptrdiff_t>(prefix));
        std::size_t length = prefix + suffix.size();
        if (column_visibility_[cursor.column] == Visibility::parts &&
            in_a_view(name_.data(), &length, pdu_, ASN_NULL) != VACM_SUCCESS) {
            continue;
        }
        (void)snmp_set_var_objid(binding, name_.data(), length);
        if (binding->type != ASN_NULL) {
            (void)snmp_set_var_typed_value(binding, ASN_NULL, nullptr, 0);
        }
        const int omissions = omissions_of_pass();
        const int code = table_.call(MODE_GET, reqinfo_, request, instance_);
        if (omissions_of_pass() != omissions) {
            // Stands for the value that is on its way, so that the walk asks for the following ones too.
            (void)snmp_set_var_typed_integer(binding, ASN_INTEGER, 0);
            return true;
        }
        // A row without a value, or whose value cannot be had, is no reason to end the walk.
        if (code == SNMP_ERR_NOERROR && is_value(binding)) {
            return true;
        }
    }
    (void)snmp_set_var_objid(binding, asked_.data(), asked_.size());
    (void)snmp_set_var_typed_value(binding, asked_type, nullptr, 0);
    return false;
}

}  // namespace

void walk_table(Table &table, netsnmp_agent_request_info *reqinfo, netsnmp_request_info *requests) {
    Walk walk(table, reqinfo);
    if (walk.sees_nothing()) {
        return;
    }
    std::vector<Cursor> cursors;
    for (const auto *request = requests; request != nullptr; request = request->next) {
        const netsnmp_variable_list *binding = request->requestvb;
        cursors.push_back(wants_answer(request)
                              ? walk.find({binding->name, binding->name_length}, request->inclusive != 0)
                              : Cursor{.at_end = true});
    }
    const bool bulk = reqinfo->mode == MODE_GETBULK;
    std::optional<AnswerSize> size;
    if (bulk) {
        size.emplace(reqinfo->asp);
    }
    for (bool more = true; more;) {
        more = false;
        std::size_t i = 0;
        for (auto *request = requests; request != nullptr; request = request->next, ++i) {
            if (!wants_answer(request)) {
                continue;
            }
            if (cursors[i].at_end || !walk.answer(request, cursors[i])) {
                if (walk.is_stuck()) {
                    // Ends the pass, or net-snmp would look for an answer in the next table.
                    (void)netsnmp_set_request_error(reqinfo, request, SNMP_ERR_GENERR);
                    return;
                }
                continue;
            }
            if (bulk && !size->add(request)) {
                end_answer(requests, request);
                return;
            }
            more |= bulk && request->repeat > 0;
        }
        if (more) {
            netsnmp_bulk_to_next_fix_requests(requests);
        }
    }
}

}  // namespace tarn::host
