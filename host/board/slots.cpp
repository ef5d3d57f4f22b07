#include "host/board/slots.h"

#include <algorithm>

#include "host/services/logger.h"
#include "tarn/host_services.h"

namespace tarn::host {
namespace {

ConfiguredSlots configured_slots;

bool contains(const SlotSet &set, int slot) {
    return slot >= 0 && slot < chassis_slot::line_cards && set[static_cast<std::size_t>(slot)];
}

}  // namespace

void set_configured_slots(const ConfiguredSlots &configured) {
    configured_slots = configured;
}

bool Slots::start_chassis() {
    return initialize_(profiles_slot) == 0;
}

bool Slots::is_up(int slot) const {
    return std::binary_search(up_.begin(), up_.end(), slot);
}

bool Slots::start(int slot) {
    const auto position = static_cast<std::size_t>(slot);
    if (initialize_(slot) != 0) {
        if (!failed_[position]) {
            log_add(log_level::error, "slot %d: the module cannot start it\n", slot + 1);
        }
        failed_.set(position);
        return false;
    }
    failed_.reset(position);
    up_.insert(std::lower_bound(up_.begin(), up_.end(), slot), slot);
    log_add(log_level::information, "slot %d: line card up\n", slot + 1);
    return true;
}

void Slots::stop(int slot) {
    up_.erase(std::find(up_.begin(), up_.end(), slot));
    (void)deinitialize_(slot);
    log_add(log_level::information, "slot %d: line card down\n", slot + 1);
    // Stopping any slot releases the configuration buffer that the others and the chassis still use.
    provide_buffer_();
}

void Slots::restart(int slot) {
    stop(slot);
    (void)start(slot);
}

bool Slots::follow(const std::function<bool(int slot)> &has_link) {
    bool changed = false;
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (!contains(served_, slot)) {
            continue;
        }
        const bool link = has_link(slot);
        if (link && !is_up(slot)) {
            if (start(slot)) {
                changed = true;
                on_change(slot, true);
            }
        } else if (!link && is_up(slot)) {
            stop(slot);
            changed = true;
            on_change(slot, false);
        }
    }
    return changed;
}

}  // namespace tarn::host

int slot_isconfigured(int slot) {
    using namespace tarn::host;
    return contains(configured_slots.running, slot) ? 1 : 0;
}

int slot_isconfigured_candidate(int slot) {
    using namespace tarn::host;
    return contains(configured_slots.candidate, slot) ? 1 : 0;
}

int check_firmware_select(int slot, int channel, int ont_id) {
    return tarn::host::configured_slots.locked_onts.contains({slot, channel, ont_id}) ? 1 : 0;
}
