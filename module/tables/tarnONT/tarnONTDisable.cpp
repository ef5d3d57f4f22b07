// Disables or enables one ONT: slot, serial and channel are written first, then one of the actions.
#include "module/common/serial.h"
#include "module/operations/board_actions.h"
#include "module/tables/frame/scalar.h"
#include "module/tables/scalars.h"

using namespace tarn;

namespace {

std::int32_t slot = 1;  // counted from 1
Serial serial{};
std::int32_t channel = 0;  // counted from 0

int get_slot(const Reply &reply) {
    return reply.number(slot);
}

int set_slot(const Binding &value) {
    slot = static_cast<std::int32_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

int get_serial(const Reply &reply) {
    return reply.octets(serial.data(), serial.size());
}

// A shorter value is filled with zeros, of a longer one the first eight bytes count.
int set_serial(const Binding &value) {
    serial = {};
    std::memcpy(serial.data(), value.val.string, std::min(value.val_len, serial.size()));
    return SNMP_ERR_NOERROR;
}

int get_channel(const Reply &reply) {
    return reply.number(channel);
}

int set_channel(const Binding &value) {
    channel = static_cast<std::int32_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

int get_zero(const Reply &reply) {
    return reply.number(0);
}

template <int (*Act)(int slot, int channel, const std::uint8_t *serial)>
int act_on_one(const Binding &value) {
    return *value.val.integer != 1 || Act(slot - 1, channel, serial.data()) == 0 ? SNMP_ERR_NOERROR
                                                                                 : SNMP_ERR_GENERR;
}

constexpr Scalar disable_slot{"tarnONTDisableSlot", unsigned32, get_slot,
                              any_unsigned32,       set_slot,   unsigned_within(1, 16, SNMP_ERR_BADVALUE)};
constexpr Scalar disable_serial{"tarnONTDisableONTSerial", octet_string, get_serial, any_octets, set_serial};
constexpr Scalar disable_channel{
    "tarnONTDisableChannel", unsigned32,  get_channel,
    any_unsigned32,          set_channel, unsigned_within(0, 7, SNMP_ERR_WRONGVALUE)};
constexpr Scalar disable_action{"tarnONTDisableActionDisable", unsigned32, get_zero, any_unsigned32,
                                act_on_one<disable_ont>};
constexpr Scalar enable_action{"tarnONTDisableActionEnable", unsigned32, get_zero, any_unsigned32,
                               act_on_one<enable_ont>};

void reset_request() {
    slot = 1;
    serial = {};
    channel = 0;
}

}  // namespace

MODULE_SCALAR(tarnONTDisableSlot, disable_slot)
MODULE_SCALAR(tarnONTDisableONTSerial, disable_serial)
MODULE_SCALAR(tarnONTDisableChannel, disable_channel)
MODULE_SCALAR(tarnONTDisableActionDisable, disable_action)
MODULE_SCALAR(tarnONTDisableActionEnable, enable_action)
MODULE_SCALARS(tarnONTDisable, reset_request, tarnONTDisableSlot_entry, tarnONTDisableONTSerial_entry,
               tarnONTDisableChannel_entry, tarnONTDisableActionDisable_entry,
               tarnONTDisableActionEnable_entry)
