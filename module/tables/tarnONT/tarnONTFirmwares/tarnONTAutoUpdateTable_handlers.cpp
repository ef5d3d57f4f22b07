// The rules of the automatic firmware updates, one list for the chassis. A SET edits one rule and writes the
// whole list to its file in the commit phase.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <utility>

#include "module/common/log.h"
#include "module/operations/auto_update.h"
#include "module/store/auto_update_sections.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnONT/tarnONTFirmwares/line_text.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {text_part};
constexpr int no_row_status = -1;
constexpr AutoUpdateEntry empty_rule = [] {
    constexpr std::uint32_t global_mode = 3;
    AutoUpdateEntry rule{};
    rule.mode = global_mode;
    return rule;
}();
constexpr std::size_t longest_description = sizeof(AutoUpdateEntry::description) - 1;

constexpr Field equipment_id =
    text_at(offsetof(AutoUpdateEntry, equipment_id), sizeof(AutoUpdateEntry::equipment_id));
constexpr Field fw_version =
    text_at(offsetof(AutoUpdateEntry, fw_version), sizeof(AutoUpdateEntry::fw_version));
constexpr Field file_name = text_at(offsetof(AutoUpdateEntry, file_name), sizeof(AutoUpdateEntry::file_name));

constexpr int text_columns[] = {2, 3, 4};

struct EditedRule {
    AutoUpdateEntry rule = empty_rule;
    AutoUpdateEntry removed{};  // as it was, should the file not take its removal
    int row_status = no_row_status;
    // Which columns the SET gives a text, by column: its row status is acted on first.
    bool foresees_variables = false;
    std::array<bool, 5> foreseen_texts{};
};
Transaction<EditedRule> edit;

void foresee(const Row & /*row*/, const Column &column, const Binding &value) {
    edit.state.foresees_variables = true;
    if (static_cast<std::size_t>(column.number) < edit.state.foreseen_texts.size()) {
        edit.state.foreseen_texts[static_cast<std::size_t>(column.number)] = value.val_len > 0;
    }
}

bool foresees_all_texts() {
    return std::all_of(std::begin(text_columns), std::end(text_columns), [](int column) {
        return edit.state.foreseen_texts[static_cast<std::size_t>(column)];
    });
}

std::uint8_t *edited_entry(Row & /*row*/) {
    return reinterpret_cast<std::uint8_t *>(&edit.state.rule);
}

int note_description(Row &row, const Column & /*column*/, const Binding & /*value*/) {
    if (row.text.empty() || row.text.size() > longest_description || holds_any_of(row.text, field_breaks)) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    AutoUpdateEntry &rule = edit.state.rule;
    if (rule.description[0] == '\0') {
        std::memcpy(rule.description, row.text.data(), row.text.size());
    } else if (row.text != rule.description) {
        log_add(log_error, "%s : attempt to edit different records in one request\n",
                "tarnONTAutoUpdateTable_module_handler");
        return SNMP_ERR_INCONSISTENTNAME;
    }
    return SNMP_ERR_NOERROR;
}

int set_mode(Row & /*row*/, const Binding &value) {
    edit.state.rule.mode = static_cast<std::uint32_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

// A file's line with an empty field cannot be read back.
bool lacks_a_field(const AutoUpdateEntry &rule) {
    return rule.equipment_id[0] == '\0' || rule.fw_version[0] == '\0' || rule.file_name[0] == '\0';
}

int refuse_empty_field() {
    log_add(log_error, "%s : a rule with an empty field is refused : %s\n",
            "tarnONTAutoUpdateTable_module_handler", edit.state.rule.description);
    return SNMP_ERR_INCONSISTENTVALUE;
}

int set_row_status(Row &row, const Binding &value) {
    const int row_status = edit.state.row_status = static_cast<int>(*value.val.integer);
    const bool exists = row.record != nullptr;
    if (row_status == destroy) {
        if (!exists) {
            return SNMP_NOSUCHINSTANCE;
        }
        edit.state.removed = *reinterpret_cast<const AutoUpdateEntry *>(row.record);
        return SNMP_ERR_NOERROR;
    }
    if (exists) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    if (row_status == create_and_go && edit.state.foresees_variables && !foresees_all_texts()) {
        return refuse_empty_field();
    }
    return SNMP_ERR_NOERROR;
}

// What cannot be written does not stay in the list: the last rule was added at its end.
int add_edited() {
    AutoUpdateEntry &rule = edit.state.rule;
    if (add_ont_autoupdate_entry(&rule) != 0) {
        return -1;
    }
    const int written = generate_ont_autoupdate_file();
    if (written != 0) {
        delete_ont_autoupdate_entry(rule.description);
    }
    return written;
}

// A rule that cannot be removed from the file is put back, at the end of the list.
int delete_edited() {
    AutoUpdateEntry &removed = edit.state.removed;
    if (delete_ont_autoupdate_entry(removed.description) != 0) {
        return -1;
    }
    const int written = generate_ont_autoupdate_file();
    if (written != 0) {
        add_ont_autoupdate_entry(&removed);
    }
    return written;
}

// A request without a row status changes nothing.
int commit(Row & /*row*/) {
    const int status = std::exchange(edit.state.row_status, no_row_status);
    if (status == create_and_go) {
        if (lacks_a_field(edit.state.rule)) {
            return refuse_empty_field();
        }
        return add_edited() == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
    }
    if (status == destroy) {
        return delete_edited() == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
    }
    return SNMP_ERR_NOERROR;
}

std::int64_t mode_of(const std::uint8_t *record) {
    return reinterpret_cast<const AutoUpdateEntry *>(record)->mode;
}

constexpr Column columns[] = {
    {2, octet_string, field(equipment_id), checked_by(text_without<field_breaks, octets_up_to(31)>), nullptr,
     true},
    {3, octet_string, field(fw_version), checked_by(text_without<field_breaks, octets_up_to(31)>), nullptr,
     true},
    {4, octet_string, field(file_name), checked_by(text_without<field_breaks, octets_up_to(254)>), nullptr,
     true},
    {5, integer, computed(mode_of), integer_in(0, 3), set_mode, true},
    {10, integer, constant(1), any_integer, set_row_status, true},
};

std::string_view name_of(const AutoUpdateEntry &rule) {
    return {rule.description, strnlen(rule.description, sizeof rule.description)};
}

struct Rules {
    static void begin() { get_ont_auto_update_entries(); }
    static AutoUpdateSections *read(const Row & /*row*/) { return chassis_sections<AutoUpdateSections>(); }
    static std::int64_t count(const AutoUpdateSections *db) { return db->auto_update_count; }
    static std::int64_t position(const AutoUpdateSections *db, const Row &row) {
        const auto *first = db->auto_update_entries.data();
        return std::find_if(first, first + db->auto_update_count,
                            [&row](const AutoUpdateEntry *rule) { return name_of(*rule) == row.text; }) -
               first;
    }
    static bool enter(AutoUpdateSections *db, Row &row, std::int64_t position) {
        AutoUpdateEntry &rule = *db->auto_update_entries[static_cast<std::size_t>(position)];
        row.text = name_of(rule);
        row.record = reinterpret_cast<std::uint8_t *>(&rule);
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = rows_of<Rules>,
    .writes = collects_request<edit, note_description, commit, edited_entry>.foreseen_by(foresee),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTAutoUpdateTable, table)
