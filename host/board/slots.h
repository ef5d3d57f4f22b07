// The slots that the agent serves: which are configured, which are up, and the module's start and stop of
// each.
#ifndef TARN_HOST_BOARD_SLOTS_H
#define TARN_HOST_BOARD_SLOTS_H

#include <bitset>
#include <functional>
#include <set>
#include <tuple>
#include <vector>

#include "tarn/module_api.h"
#include "wire/protocol.h"

namespace tarn::host {

inline constexpr int profiles_slot = chassis_slot::profiles;
using SlotSet = std::bitset<chassis_slot::line_cards>;

class Slots {
  public:
    // `served`: the slots to bring up when they have a card. `provide_buffer`: has the module allocate the
    // configuration buffer that all slots and the chassis share, unless it is there.
    Slots(const SlotSet &served, slot_function *initialize, slot_function *deinitialize,
          init_handlers_function *provide_buffer)
        : served_(served),
          initialize_(initialize),
          deinitialize_(deinitialize),
          provide_buffer_(provide_buffer) {}

    // Starts the chassis-wide stores; false when the module cannot.
    bool start_chassis();

    // Starts and stops slots so that the served ones with a link are up. True when a slot changed.
    bool follow(const std::function<bool(int slot)> &has_link);
    // Called inside follow() when a slot was brought up, or down.
    std::function<void(int slot, bool up)> on_change = [](int, bool) {};

    // Has the module forget all that it knows of a slot that is up.
    void restart(int slot);

    // The slots that are up, ascending.
    [[nodiscard]] const std::vector<int> &up() const { return up_; }
    [[nodiscard]] bool is_up(int slot) const;
    [[nodiscard]] const SlotSet &served() const { return served_; }

  private:
    bool start(int slot);
    void stop(int slot);

    SlotSet served_;
    slot_function *initialize_;
    slot_function *deinitialize_;
    init_handlers_function *provide_buffer_;
    SlotSet failed_;  // could not be started, said once
    std::vector<int> up_;
};

// What slot_isconfigured, slot_isconfigured_candidate and check_firmware_select answer.
struct ConfiguredSlots {
    SlotSet running;
    SlotSet candidate;
    std::set<std::tuple<int, int, int>> locked_onts;  // slot 0-15, channel 0-7, ONT id: writes are refused
};
void set_configured_slots(const ConfiguredSlots &configured);

}  // namespace tarn::host

#endif
