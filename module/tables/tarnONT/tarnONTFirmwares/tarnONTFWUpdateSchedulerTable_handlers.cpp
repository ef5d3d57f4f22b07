// The firmware updates that a line card has scheduled. A SET makes one task of all its columns and sends it
// in the commit phase.
#include <optional>
#include <string>
#include <utility>

#include "module/operations/update_scheduler.h"
#include "module/store/update_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/firmware.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, number_part(any_unsigned)};

// ---- The task that a request describes ----

struct ScheduledOnt {
    Serial serial{};
    int channel = 0;
    int ont_id = 0;
};

struct RequestedTask {
    enum class Operation : std::uint8_t { none, add, remove };
    Operation operation = Operation::none;
    std::optional<int> slot;
    std::optional<Serial> serial;
    std::optional<std::string> file_name;
    std::optional<int> channel;
    std::optional<int> ont_id;
    bool use_serial = true;
    ScheduledOnt removed;
};

Transaction<RequestedTask> collected;

int note_slot(Row &row, const Column & /*column*/, const Binding & /*value*/) {
    if (collected.state.slot.value_or(row.slot) != row.slot) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    collected.state.slot = row.slot;
    return SNMP_ERR_NOERROR;
}

// A column given twice contradicts itself.
template <class T>
int note(std::optional<T> &part, T value) {
    if (part.has_value()) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    part = std::move(value);
    return SNMP_ERR_NOERROR;
}

int note_serial(Row & /*row*/, const Binding &value) {
    return note(collected.state.serial, serial_at(value.val.string));
}

int note_file_name(Row & /*row*/, const Binding &value) {
    return note(collected.state.file_name,
                std::string(reinterpret_cast<const char *>(value.val.string), value.val_len));
}

int note_channel(Row & /*row*/, const Binding &value) {
    return note(collected.state.channel, static_cast<int>(*value.val.integer));
}

int note_ont_id(Row & /*row*/, const Binding &value) {
    return note(collected.state.ont_id, static_cast<int>(*value.val.integer));
}

int note_use_serial(Row & /*row*/, const Binding &value) {
    collected.state.use_serial = *value.val.integer == 1;
    return SNMP_ERR_NOERROR;
}

int note_row_status(Row &row, const Binding &value) {
    if (*value.val.integer == create_and_go) {
        if (row.record != nullptr) {
            return SNMP_ERR_INCONSISTENTNAME;
        }
        collected.state.operation = RequestedTask::Operation::add;
    } else if (*value.val.integer == destroy) {
        if (row.record == nullptr) {
            return SNMP_NOSUCHOBJECT;
        }
        collected.state.operation = RequestedTask::Operation::remove;
        // A copy: the list may have moved by the time the request is committed.
        collected.state.removed = {serial_at(row.record + update_task::serial.offset),
                                   static_cast<int>(load_integer(row.record, update_task::channel)),
                                   static_cast<int>(load_integer(row.record, update_task::ont_id))};
    }
    return SNMP_ERR_NOERROR;
}

bool add_task(const RequestedTask &task) {
    const bool ont_named = task.use_serial ? task.serial.value_or(Serial{}) != Serial{}  // all zero: none
                                           : task.ont_id && task.channel;
    return ont_named && task.file_name && task.slot &&
           add_update_ont_scheduler(*task.slot, task.serial.value_or(Serial{}).data(),
                                    task.file_name->c_str(), task.channel.value_or(0),
                                    task.ont_id.value_or(0), task.use_serial ? 1 : 0) == 0;
}

bool remove_task(const RequestedTask &task) {
    return task.slot &&
           delete_update_ont_scheduler(*task.slot, task.removed.serial.data(), task.removed.channel,
                                       task.removed.ont_id, task.use_serial ? 1 : 0) == 0;
}

// The first variable sends the task; after a failure the next one tries again.
int commit(Row & /*row*/) {
    using Operation = RequestedTask::Operation;
    RequestedTask &requested = collected.state;
    const bool failed = (requested.operation == Operation::add && !add_task(requested)) ||
                        (requested.operation == Operation::remove && !remove_task(requested));
    if (failed) {
        return SNMP_ERR_COMMITFAILED;
    }
    requested.operation = Operation::none;
    return SNMP_ERR_NOERROR;
}

// ---- The table ----

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, unsigned32, index_number(0, 0)},
    {3, octet_string, field(update_task::serial), octets_of(8), note_serial, true},
    {4, integer, field(update_task::status)},
    {5, octet_string, field(update_task::file_name), octets_up_to(127), note_file_name, true},
    {6, unsigned32, field(update_task::counter)},
    {7, unsigned32, field(update_task::channel), any_unsigned32, note_channel, true},
    {8, unsigned32, field(update_task::ont_id), any_unsigned32, note_ont_id, true},
    {9, integer, field(update_task::use_serial, nonzero_conversion), any_integer, note_use_serial, true},
    {10, integer, constant(1), any_integer, note_row_status, true},
};

struct Tasks {
    static bool may_walk(const Row &row) { return get_update_ont_scheduler(row.slot) != 0; }  // fetches them
    static UpdateSections *read(const Row &row) { return slot_sections<UpdateSections>(row.slot); }
    static std::int64_t count(const UpdateSections *db) { return db->update_task_count; }
    static std::int64_t position(const UpdateSections *db, const Row &row) {
        std::int64_t place = 0;
        while (place < count(db) && load_integer(db->update_tasks.at(static_cast<std::size_t>(place)),
                                                 update_task::id) != row.number[0]) {
            ++place;
        }
        return place;
    }
    static bool enter(UpdateSections *db, Row &row, std::int64_t position) {
        row.record = db->update_tasks.at(static_cast<std::size_t>(position));
        row.number[0] = load_integer(row.record, update_task::id);
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = rows_of<Tasks>,
    .writes = collects_request<collected, note_slot, commit>,
    .answers =
        no_row_no_object.with(reading, no_row_data, SNMP_NOSUCHOBJECT).with(acting, no_column, accepted),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFWUpdateSchedulerTable, table)
