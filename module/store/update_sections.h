// The firmware updates that a card has scheduled.
#ifndef TARN_MODULE_STORE_UPDATE_SECTIONS_H
#define TARN_MODULE_STORE_UPDATE_SECTIONS_H

#include "module/store/growable.h"
#include "module/store/sections.h"
#include "wire/records/firmware.h"

namespace tarn {

struct UpdateSections {
    Growable<update_task::size> update_tasks;
    std::uint32_t update_task_count;
    Stamp update_tasks_stamp;

    void release() { update_tasks.release(); }
};

}  // namespace tarn

#endif
