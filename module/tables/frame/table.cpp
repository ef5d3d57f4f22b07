#include "module/tables/frame/table.h"

#include <algorithm>
#include <optional>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/tables/frame/row_status.h"

namespace tarn {

namespace {

const Column *find_column(const Table &table, long number) {
    const auto found = std::lower_bound(table.columns.begin(), table.columns.end(), number,
                                        [](const Column &column, long n) { return column.number < n; });
    return found != table.columns.end() && found->number == number ? &*found : nullptr;
}

// A request's column and row, and whether they are there.
struct Target {
    const Column *column = nullptr;
    Row row;
    bool index_valid = false;
    bool has_row_data = true;
};

bool find_row(bool (*find)(Row &row), Target &target) {
    return target.index_valid && (find == nullptr || find(target.row));
}

int answer_get(const Table &table, Target &target, Binding *binding) {
    const auto lacks = [&table](Lack missing) { return table.answers.in(MODE_GET, missing); };
    if (target.column == nullptr && !table.answers.row_before_column) {
        return lacks(no_column);
    }
    if (!target.has_row_data) {
        return lacks(no_row_data);
    }
    if (!find_row(table.rows.find, target)) {
        return lacks(no_row);
    }
    return target.column != nullptr ? read_column(*target.column, target.row, binding, lacks(no_row))
                                    : lacks(no_column);
}

bool writable(const Column *column) {
    return column != nullptr && is_writable(*column);
}

// The row that a SET works on. A column that creates rows does with a valid index.
int locate_for_set(const Table &table, Target &target, int mode) {
    const int missing = table.answers.in(mode, no_row);
    if (!table.writes.set_needs_row || missing == accepted) {
        return SNMP_ERR_NOERROR;
    }
    const bool found = find_row(table.writes.find != nullptr ? table.writes.find : table.rows.find, target);
    const bool created = target.column != nullptr && target.column->creates && target.index_valid;
    return found || created ? SNMP_ERR_NOERROR : missing;
}

int check_target(const Table &table, Target &target, const Binding *value) {
    if (table.answers.row_before_column) {
        if (const int error = locate_for_set(table, target, MODE_SET_RESERVE1); error != SNMP_ERR_NOERROR) {
            return error;
        }
    }
    if (!writable(target.column)) {
        return table.answers.in(MODE_SET_RESERVE1, no_column);
    }
    const int error = locate_for_set(table, target, MODE_SET_RESERVE1);
    return error != SNMP_ERR_NOERROR ? error : check_value(target.column->check, value);
}

std::uint8_t *edited_record(const Table &table, Target &target) {
    if (table.writes.record != nullptr) {
        return table.writes.record(target.row);
    }
    const RecordOf own = target.column->source.record;
    return own != nullptr ? own(target.row) : target.row.record;
}

int edit(const Table &table, Target &target, const Binding &value) {
    if (target.column->action != nullptr) {
        return target.column->action(target.row, value);
    }
    std::uint8_t *record = edited_record(table, target);
    if (record == nullptr) {
        return table.answers.in(MODE_SET_ACTION, no_row);
    }
    store_value(*target.column, record, value);
    return SNMP_ERR_NOERROR;
}

// The section that a SET of this target edits in place; null: none.
Stamp *edited_section(const Table &table, const Target &target) {
    return table.writes.section != nullptr && target.index_valid ? table.writes.section(target.row) : nullptr;
}

// The card that such a section is of; what is not a slot's is the chassis'.
int section_owner(const Table &table, const Target &target) {
    const bool of_slot = !table.index.empty() && table.index.front().kind == IndexPart::Kind::slot;
    return of_slot ? target.row.slot : chassis_slot::profiles;
}

void take_back_edits(Stamp *section) {
    if (section != nullptr && section->held) {
        section->drop();
    }
}

int act(const Table &table, Target &target, Binding *value) {
    if (!writable(target.column)) {
        return table.answers.in(MODE_SET_ACTION, no_column);
    }
    int error = locate_for_set(table, target, MODE_SET_ACTION);
    if (error != SNMP_ERR_NOERROR) {
        return error;
    }
    const bool deletes =
        table.writes.deletes_at_once && target.column->creates && *value->val.integer == destroy;
    Stamp *section = deletes ? nullptr : edited_section(table, target);
    if (section != nullptr && !may_edit(*section, table.name, section_owner(table, target))) {
        return SNMP_ERR_GENERR;
    }
    if (table.writes.stage != nullptr) {
        error = table.writes.stage(target.row, *target.column, *value);
    }
    if (error != SNMP_ERR_NOERROR) {
        return error;
    }
    error = edit(table, target, *value);
    if (section != nullptr && error == SNMP_ERR_NOERROR) {
        section->held = true;
    } else {
        take_back_edits(section);
    }
    return error;
}

int commit(const Table &table, Target &target, Binding * /*value*/) {
    const int error = table.writes.commit != nullptr ? table.writes.commit(target.row) : SNMP_ERR_NOERROR;
    Stamp *section = edited_section(table, target);
    if (section != nullptr && error == SNMP_ERR_NOERROR) {
        section->held = false;
    } else if (section != nullptr) {
        section->drop();
    }
    return error;
}

int undo(const Table &table, Target &target, Binding * /*value*/) {
    take_back_edits(edited_section(table, target));
    if (table.writes.undo != nullptr) {
        table.writes.undo();
    }
    if (table.writes.transaction.forget != nullptr) {
        table.writes.transaction.forget();
    }
    return SNMP_ERR_NOERROR;
}

int reserve(const Table &table, Target &target, Binding *value) {
    const int error = check_target(table, target, value);
    if (table.writes.foresee != nullptr && target.index_valid && error == SNMP_ERR_NOERROR) {
        table.writes.foresee(target.row, *target.column, *value);
    }
    return error;
}

int check_again(const Table & /*table*/, Target &target, Binding *value) {
    return target.column != nullptr ? check_value(target.column->second_check, value) : SNMP_ERR_NOERROR;
}

// The answer that no phase needs to be asked for; none: the phase answers.
std::optional<int> answer_outright(const Answers &answers, int mode, const Target &target) {
    if (mode != MODE_GET && answers.ignores_set) {
        return SNMP_ERR_NOERROR;
    }
    const int error = answers.in(mode, no_row_data);
    return mode != MODE_GET && !target.has_row_data && error != accepted ? std::optional(error)
                                                                         : std::nullopt;
}

struct ServedMode {
    int mode;
    int (*serve)(const Table &table, Target &target, Binding *binding);
    bool in_transaction;
};
constexpr ServedMode served_modes[] = {
    {MODE_GET, answer_get, false},          {MODE_SET_RESERVE1, reserve, true},
    {MODE_SET_RESERVE2, check_again, true}, {MODE_SET_ACTION, act, true},
    {MODE_SET_COMMIT, commit, true},        {MODE_SET_FREE, undo, false},  // they end the transaction
    {MODE_SET_UNDO, undo, false},
};

// The error of one mode; none for a mode that the frame does not know.
std::optional<int> serve(const Table &table, int mode, Target &target, Binding *binding) {
    if (const std::optional<int> answer = answer_outright(table.answers, mode, target)) {
        return answer;
    }
    const auto *served = std::ranges::find(served_modes, mode, &ServedMode::mode);
    if (served == std::end(served_modes)) {
        return std::nullopt;
    }
    if (served->in_transaction && table.writes.transaction.enter != nullptr) {
        table.writes.transaction.enter(mode);
    }
    return served->serve(table, target, binding);
}

}  // namespace

Binding *next_index(const Table &table, std::int64_t &cursor, void **loop_context, void **data_context,
                    Binding *indexes, int slot) {
    if (*loop_context == nullptr) {
        cursor = 0;
    }
    Row row;
    row.slot = slot_byte(slot);
    if (!table.rows.next(cursor, row)) {
        return nullptr;
    }
    fill_index_list(table.index, row, indexes);
    *data_context = row.record != nullptr ? static_cast<void *>(row.record) : &cursor;
    *loop_context = table.rows.record_is_loop_context ? *data_context : &cursor;
    return indexes;
}

int handle_iterator(const Table &table, netsnmp_request_info *request, netsnmp_agent_request_info *reqinfo,
                    void *row_data, netsnmp_table_request_info *table_info) {
    if (table.answers.ignores_set && reqinfo->mode != MODE_GET) {
        return SNMP_ERR_NOERROR;
    }
    if (table_info == nullptr) {
        netsnmp_request_set_error(request, SNMP_NOSUCHOBJECT);
        return SNMP_ERR_NOERROR;
    }
    Target target;
    target.column = find_column(table, table_info->colnum);
    target.index_valid = parse_index_list(table.index, table_info->indexes, target.row);
    target.has_row_data = row_data != nullptr;
    const int error = serve(table, reqinfo->mode, target, request->requestvb).value_or(SNMP_ERR_NOERROR);
    if (error == SNMP_ERR_NOERROR) {
        return SNMP_ERR_NOERROR;
    }
    const bool returned = table.answers.returns_errors;
    if (row_data == nullptr && reqinfo->mode == MODE_GET && returned) {
        return error;
    }
    netsnmp_set_request_error(reqinfo, request, error);
    return returned && error == SNMP_ERR_GENERR ? error : SNMP_ERR_NOERROR;
}

void append_index(const Table &table, table_entry *result, const oid *name, std::size_t length,
                  const Row &row, int column, const char *file, int line) {
    *result = {};
    if (length < table.rows.prefix) {
        return;
    }
    const std::size_t built_length = table.rows.prefix + 2 + index_length(table.index);
    auto *built = static_cast<oid *>(balloc(file, line, built_length * sizeof(oid)));
    if (built == nullptr) {
        // The size in the card software's units: four bytes a sub-identifier.
        log_add(log_error, "%s : memory allocation error. Tried to allocate %d bytes\n",
                table.rows.index_builder, static_cast<int>(4 * built_length));
        return;
    }
    std::copy_n(name, table.rows.prefix, built);
    built[table.rows.prefix] = 1;
    built[table.rows.prefix + 1] = static_cast<oid>(column);
    build_index(table.index, row, built + table.rows.prefix + 2);
    *result = {built, built_length, row.record};
}

void get_next_entry(const Table &table, table_entry *result, int slot, const oid *name, std::size_t length,
                    int column, const char *file, int line) {
    *result = {};
    if (length < table.rows.prefix) {
        return;
    }
    Row row;
    row.slot = slot_byte(slot);
    const std::size_t index_start = std::min(length, table.rows.prefix + 2);
    parse_partial_index(table.index, name + index_start, length - index_start, row);
    if (table.rows.successor(row)) {
        append_index(table, result, name, length, row, column, file, line);
    }
}

int handle_nextgen(const Table &table, int mode, netsnmp_request_info *request, int slot) {
    oid_pair name{};
    create_pair(&name, request->requestvb);
    const std::size_t index_start = table.rows.prefix + 2;
    Target target;
    target.row.slot = slot_byte(slot);
    if (name.length >= index_start) {
        // The column follows the entry; get_colnum_from_oid knows tables of 11 sub-identifiers only.
        target.column = find_column(
            table, get_int_from_oid(name.name, name.length, static_cast<int>(table.rows.prefix) + 1));
        target.index_valid =
            parse_exact_index(table.index, name.name + index_start, name.length - index_start, target.row);
    }
    if (mode == MODE_GET && table.rows.asked != nullptr) {
        table.rows.asked(target.row.slot);
    }
    const std::optional<int> error = serve(table, mode, target, request->requestvb);
    if (!error) {
        log_add(log_error, "%s_table_handler_nextgen : Unknown mode : %d\n", table.name, mode);
    }
    if (error.value_or(SNMP_ERR_NOERROR) != SNMP_ERR_NOERROR) {
        netsnmp_request_set_error(request, *error);
    }
    return SNMP_ERR_NOERROR;
}

}  // namespace tarn
