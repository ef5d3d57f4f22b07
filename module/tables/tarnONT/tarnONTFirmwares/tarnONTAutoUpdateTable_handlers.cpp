// The rules of the automatic firmware updates, one list for the chassis. A SET edits one rule and writes the
// whole list to its file in the commit phase.
#include <cstddef>
#include <cstring>
#include <utility>

#include "module/common/log.h"
#include "module/common/operations/auto_update.h"
#include "module/common/slot_management_db.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnONT/tarnONTFirmwares/line_text.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {text_part};
constexpr int no_row_status = -1;
constexpr std::uint32_t global_mode = 3;
constexpr std::size_t longest_description = sizeof(AutoUpdateEntry::description) - 1;

constexpr Field equipment_id =
    text_at(offsetof(AutoUpdateEntry, equipment_id), sizeof(AutoUpdateEntry::equipment_id));
constexpr Field fw_version =
    text_at(offsetof(AutoUpdateEntry, fw_version), sizeof(AutoUpdateEntry::fw_version));
constexpr Field file_name = text_at(offsetof(AutoUpdateEntry, file_name), sizeof(AutoUpdateEntry::file_name));

AutoUpdateEntry edited;
int row_status = no_row_status;

void reset_edit() {
    edited = {};
    edited.mode = global_mode;
    row_status = no_row_status;
}

std::uint8_t *edited_entry(Row & /*row*/) {
    return reinterpret_cast<std::uint8_t *>(&edited);
}

int note_description(Row &row, const Column & /*column*/, const Binding & /*value*/) {
    if (row.text.empty() || row.text.size() > longest_description || holds_any_of(row.text, field_breaks)) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    if (edited.description[0] == '\0') {
        std::memcpy(edited.description, row.text.data(), row.text.size());
    } else if (row.text != edited.description) {
        log_add(log_error, "%s : attempt to edit different records in one request\n",
                "tarnONTAutoUpdateTable_module_handler");
        return SNMP_ERR_INCONSISTENTNAME;
    }
    return SNMP_ERR_NOERROR;
}

int set_mode(Row & /*row*/, const Binding &value) {
    edited.mode = static_cast<std::uint32_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

int set_row_status(Row &row, const Binding &value) {
    row_status = static_cast<int>(*value.val.integer);
    const bool exists = row.record != nullptr;
    if (row_status == destroy) {
        return exists ? SNMP_ERR_NOERROR : SNMP_NOSUCHINSTANCE;
    }
    return exists ? SNMP_ERR_INCONSISTENTNAME : SNMP_ERR_NOERROR;
}

int add_edited() {
    for (const char *field : {edited.equipment_id, edited.fw_version, edited.file_name}) {
        if (*field == '\0') {
            log_add(log_warning, "%s : a rule with an empty field cannot be read back : %s\n",
                    "tarnONTAutoUpdateTable_module_handler", edited.description);
            break;
        }
    }
    return add_ont_autoupdate_entry(&edited);
}

// A request without a row status changes nothing.
int commit(Row & /*row*/) {
    const int status = std::exchange(row_status, no_row_status);
    if (status != destroy && status != create_and_go) {
        return SNMP_ERR_NOERROR;
    }
    const int changed = status == destroy ? delete_ont_autoupdate_entry(edited.description) : add_edited();
    return changed == 0 && generate_ont_autoupdate_file() == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
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

bool place_row(Row &row, AutoUpdateEntry &entry) {
    row.text = {entry.description, strnlen(entry.description, sizeof entry.description)};
    row.record = reinterpret_cast<std::uint8_t *>(&entry);
    return true;
}

bool find_rule(Row &row) {
    const ProfilesDatabase *db = profiles_database();
    for (std::size_t i = 0; db != nullptr && i < db->auto_update_count; ++i) {
        AutoUpdateEntry &entry = *db->auto_update_entries[i];
        if (row.text == std::string_view(entry.description)) {
            return place_row(row, entry);
        }
    }
    return false;
}

bool next_rule(std::int64_t &cursor, Row &row) {
    if (cursor == 0) {
        get_ont_auto_update_entries();
    }
    const ProfilesDatabase *db = profiles_database();
    if (db == nullptr || cursor >= db->auto_update_count) {
        return false;
    }
    return place_row(row, *db->auto_update_entries[static_cast<std::size_t>(cursor++)]);
}

constexpr Table table{
    .name = "tarnONTAutoUpdateTable",
    .index = row_index,
    .columns = columns,
    .find = find_rule,
    .next = next_rule,
    .reserve2 = reset_edit,
    .stage = note_description,
    .edited = edited_entry,
    .commit = commit,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTAutoUpdateTable, table)
