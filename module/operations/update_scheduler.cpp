#include "module/operations/update_scheduler.h"

#include <algorithm>
#include <cstring>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/update_sections.h"
#include "wire/records/firmware.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr std::size_t count_at = 34;
constexpr std::size_t tasks_at = 38;
constexpr std::size_t max_tasks = 65536;
constexpr std::size_t longest_file_name = 127;

constexpr Query tasks{command::get_update_scheduler, destination::services, usual_pace,
                      &UpdateSections::update_tasks_stamp};
constexpr Selector<2> tasks_selector{1, 0};

void address_ont(std::uint8_t *request, const std::uint8_t *serial, int channel, int ont_id, int use_serial) {
    if (use_serial != 0) {
        std::memcpy(request + 32, serial, serial_size);
    } else {
        request[40] = static_cast<std::uint8_t>(channel);
        store_le32(request + 41, static_cast<std::uint32_t>(ont_id));
    }
    store_le16(request + 45, 1);
}

// Makes the next query ask the card.
void expire_tasks(int slot) {
    if (UpdateSections *db = slot_sections<UpdateSections>(slot)) {
        db->update_tasks_stamp.clear();
    }
}

// Keeps the old tasks without memory for the new ones.
void take_tasks(UpdateSections &db, int slot, const Answer &answer) {
    const std::size_t stated = std::min<std::size_t>(answer.get<std::uint32_t>(count_at), max_tasks);
    const std::size_t count = answer.records(stated, tasks_at, update_task::size);
    if (!db.update_tasks.resize(count)) {
        log_add(log_error, "%s : %d : memory allocation error, tried to allocate %d bytes.\n",
                "get_update_ont_scheduler", slot, static_cast<int>(count * update_task::size));
        return;
    }
    if (count > 0) {
        answer.copy(db.update_tasks.bytes, tasks_at, count * update_task::size);
    }
    db.update_task_count = static_cast<std::uint32_t>(count);
}

}  // namespace

int get_update_ont_scheduler(int slot) {
    const auto *updates = refresh(tasks, slot, tasks_selector, tasks_at, __func__,
                                  [slot](UpdateSections &sections, const Answer &answer,
                                         const char * /*operation*/) { take_tasks(sections, slot, answer); });
    return updates != nullptr ? static_cast<int>(updates->update_task_count) : 0;
}

int add_update_ont_scheduler(int slot, const std::uint8_t *serial, const char *file_name, int channel,
                             int ont_id, int use_serial) {
    expire_tasks(slot);
    Request<175> request(command::add_update_scheduler, destination::services);
    address_ont(request.bytes.data(), serial, channel, ont_id, use_serial);
    request.put_bytes(47, reinterpret_cast<const std::uint8_t *>(file_name),
                      strnlen(file_name, longest_file_name));
    return act(request, __func__, slot);
}

int delete_update_ont_scheduler(int slot, const std::uint8_t *serial, int channel, int ont_id,
                                int use_serial) {
    expire_tasks(slot);
    Request<47> request(command::delete_update_scheduler, destination::services);
    address_ont(request.bytes.data(), serial, channel, ont_id, use_serial);
    return act(request, __func__, slot);
}
