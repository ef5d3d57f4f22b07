#include "module/config/alarms_config.h"

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/network_sections.h"
#include "wire/records/network.h"

using namespace tarn;

namespace {

constexpr Query alarms{command::get_alarms_config, destination::configuration, usual_pace,
                       &ChassisNetworkSections::alarms_config};

using Entry = Record<alarms_config::entry_size>;
using EntryRequest = Request<payload + 4 + alarms_config::entry_size>;

Entry entry_at(const std::uint8_t *config, int number) {
    Entry entry;
    std::memcpy(entry.data(), config + static_cast<std::ptrdiff_t>(number) * alarms_config::entry_size,
                entry.size());
    return entry;
}

// True when all configured slots answered.
bool send_to_slots(const EntryRequest &request, int number, int type, const char *operation) {
    bool all_answered = true;
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (slot_isconfigured(slot) == 0) {
            continue;
        }
        const bool answered = act(request, operation, slot) == 0;
        all_answered = all_answered && answered;
        log_add(log_error, "%s : %s config for id = %d, type = %d, slot = %d\n", operation,
                answered ? "set" : "unable to set", number, type, slot + 1);
    }
    return all_answered;
}

}  // namespace

void *slot_lib_get_alarms_config(void) {
    auto *sections = chassis_sections<ChassisNetworkSections>();
    if (sections != nullptr && !sections->alarms_config.stamp.is_set()) {
        sections->alarms_config.stamp.filled = false;  // nobody knows what became of the edits
    }
    return refresh(alarms, chassis_slot::chassis_network, __func__);
}

int slot_lib_set_alarms_config(void) {
    ChassisNetworkSections *db = chassis_sections<ChassisNetworkSections>();
    if (db == nullptr) {
        return -1;
    }
    if (!may_edit(db->alarms_config.stamp, __func__, chassis_slot::chassis_network)) {
        return -1;
    }
    db->alarms_config.stamp.clear();
    const Answer current = ask(Request<payload>(alarms.command, alarms.destination), __func__,
                               chassis_slot::chassis_network, payload + alarms_config::size);
    if (!current) {
        log_add(log_error, "%s : unable to get config\n", __func__);
        return -1;
    }
    int result = 0;
    for (int number = 0; number < alarms_config::entries; ++number) {
        const Entry edited = entry_at(db->alarms_config.record.data(), number);
        Entry entry = entry_at(current.data() + payload, number);
        const Entry before = entry;
        for (const Field &value : {alarms_config::value_9, alarms_config::value_11}) {
            store_integer(entry.data(), value, load_integer(edited.data(), value));
        }
        if (entry == before) {
            continue;
        }
        EntryRequest request(command::set_alarms_entry, destination::configuration);
        request.put(payload, static_cast<std::uint32_t>(number))
            .put_bytes(payload + 4, entry.data(), entry.size());
        const auto type = static_cast<int>(load_integer(entry.data(), alarms_config::type));
        if (!send_to_slots(request, number, type, __func__)) {
            return -1;
        }
        if (act(request, __func__, chassis_slot::chassis_network) != 0) {
            log_add(log_error, "%s : unable to set config for id = %d, type = %d\n", __func__, number, type);
            result = -1;
        }
    }
    return result;
}
