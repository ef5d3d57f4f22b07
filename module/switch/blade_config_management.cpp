#include "module/switch/blade_config_management.h"

#include "module/store/cached_query.h"

using namespace tarn;

namespace {

int tell_card(std::uint16_t command_code, int slot, const char *operation) {
    return act(Request<payload>(command_code, destination::configuration), operation, slot);
}

// Tells the run-time of the card instead of its configuration service.
int tell_run_time(std::uint16_t command_code, int slot, const char *operation) {
    const Request<payload> request(command_code, destination::services);
    return act(request, operation, slot) == 0 ? 0 : -2;
}

int tell_profile_stores(std::uint16_t command_code, const char *operation) {
    for (const int target :
         {chassis_slot::profiles, chassis_slot::olt_profiles, chassis_slot::chassis_network}) {
        if (tell_card(command_code, target, operation) != 0) {
            return -1;
        }
    }
    return 0;
}

}  // namespace

int slot_lib_set_commit_change(int slot) {
    return tell_card(command::commit_change, slot, __func__);
}

int slot_lib_set_confirm_change(int slot) {
    return tell_card(command::confirm_change, slot, __func__);
}

int slot_lib_set_rollback_change(int slot) {
    return tell_card(command::rollback_change, slot, __func__);
}

int slot_lib_set_save_to_startup(int slot) {
    return tell_card(command::save_to_startup, slot, __func__);
}

int slot_lib_set_to_default(int slot) {
    return tell_card(command::set_to_default, slot, __func__);
}

// The very command of the commit; the unit makes the difference.
int slot_lib_set_reread_config(int slot) {
    return tell_run_time(command::commit_change, slot, __func__);
}

int slot_lib_set_reload_blade_slot(int slot) {
    return tell_run_time(command::reload_slot, slot, __func__);
}

int slot_lib_confirm_blade_profiles(void) {
    return tell_profile_stores(command::confirm_change, __func__);
}

int slot_lib_set_commit_blade_profiles(void) {
    return tell_profile_stores(command::commit_change, __func__);
}

int slot_lib_set_rollback_blade_profiles(void) {
    return tell_profile_stores(command::rollback_change, __func__);
}

int slot_lib_set_default_blade_profiles(void) {
    return tell_profile_stores(command::set_to_default, __func__);
}
