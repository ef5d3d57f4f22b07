#include "module/operations/board_actions.h"

#include "module/store/cached_query.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr std::uint16_t ont_counter_group = 5;
constexpr std::uint16_t channel_counter_group = 16;
constexpr std::uint8_t olt_halves[] = {0, 4};
constexpr std::uint16_t auth_mode_on = 2;
constexpr std::uint16_t auth_mode_off = 4;
constexpr std::uint16_t ont_enabled = 0;
constexpr std::uint16_t ont_disabled = 255;

int reset_channel_group(int slot, std::uint8_t channel, const char *operation) {
    Request<50> request(command::reset_counters, destination::services);
    request.put(32, channel_counter_group).put(36, channel);
    return act(request, operation, slot);
}

int set_ont_admin_state(int slot, int channel, const std::uint8_t *serial, std::uint16_t state,
                        const char *operation) {
    Request<47> request(command::enable_ont, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel)).put_bytes(33, serial, serial_size).put(45, state);
    return act(request, operation, slot);
}

int act_on_ont(int slot, std::uint16_t code, const std::uint8_t *serial, const char *operation) {
    Request<45> request(code, destination::services);
    request.put_bytes(32, serial, serial_size);
    return act(request, operation, slot);
}

}  // namespace

// Declares a payload byte that it does not use.
int reconfigure_olt(int slot) {
    return act(Request<33>(command::reconfigure_olt, destination::services), __func__, slot);
}

int reconfigure_olt_channel(int slot, int channel) {
    Request<33> request(command::reconfigure_olt_channel, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel));
    return act(request, __func__, slot);
}

int reset_ont_counters(int slot, const std::uint8_t *serial) {
    Request<50> request(command::reset_counters, destination::services);
    request.put(32, ont_counter_group).put_bytes(37, serial, serial_size);
    return act(request, __func__, slot);
}

int reset_pon_channel_counters(int slot, int channel) {
    return reset_channel_group(slot, static_cast<std::uint8_t>(channel), __func__);
}

int reset_olt_counters(int slot) {
    for (const std::uint8_t half : olt_halves) {
        if (reset_channel_group(slot, half, __func__) != 0) {
            return -1;
        }
    }
    return 0;
}

int reboot_ont(int slot, const std::uint8_t *serial) {
    return act_on_ont(slot, command::reboot_ont, serial, __func__);
}

int disable_ont(int slot, int channel, const std::uint8_t *serial) {
    return set_ont_admin_state(slot, channel, serial, ont_disabled, __func__);
}

int enable_ont(int slot, int channel, const std::uint8_t *serial) {
    return set_ont_admin_state(slot, channel, serial, ont_enabled, __func__);
}

int ont_default_via_omci(int slot, const std::uint8_t *ont_record) {
    return act_on_ont(slot, command::ont_default_via_omci, ont_record, __func__);
}

int test_c(void) {
    constexpr int tried_slot = 5;
    return act(Request<32>(command::get_terminal_vlans, destination::configuration), __func__, tried_slot);
}

int get_activation_auth_mode(int slot, int channel) {
    Request<33> request(command::get_activation_auth_mode, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel));
    const Answer answer = ask(request, __func__, slot, payload + 3);
    return answer && answer.get<std::uint16_t>(33) == auth_mode_off ? 0 : 1;
}

int set_activation_auth_mode(int slot, int channel, int flag) {
    Request<35> request(command::set_activation_auth_mode, destination::services);
    request.put(32, static_cast<std::uint8_t>(channel)).put(33, flag != 0 ? auth_mode_on : auth_mode_off);
    return act(request, __func__, slot);
}
