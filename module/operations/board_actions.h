// Requests that make a line card do something. Each returns 0 when an answer came and -1 otherwise; the
// failure is already logged. A serial is 8 bytes, a channel 0-7.
#ifndef TARN_MODULE_OPERATIONS_BOARD_ACTIONS_H
#define TARN_MODULE_OPERATIONS_BOARD_ACTIONS_H

#include <cstdint>

#include "module/common/exports.h"

TARN_EXPORT int reconfigure_olt(int slot);
TARN_EXPORT int reconfigure_olt_channel(int slot, int channel);
TARN_EXPORT int reset_ont_counters(int slot, const std::uint8_t *serial);
TARN_EXPORT int reset_pon_channel_counters(int slot, int channel);
// Two requests, one a half of the card; the second only when the first was answered.
TARN_EXPORT int reset_olt_counters(int slot);
TARN_EXPORT int reboot_ont(int slot, const std::uint8_t *serial);
TARN_EXPORT int disable_ont(int slot, int channel, const std::uint8_t *serial);
TARN_EXPORT int enable_ont(int slot, int channel, const std::uint8_t *serial);
// Takes the serial from the first 8 bytes of an ONT record.
TARN_EXPORT int ont_default_via_omci(int slot, const std::uint8_t *ont_record);

// Asks slot 5 for its terminal VLANs and drops them: a trial of the way to a card, which nothing in the
// module makes.
TARN_EXPORT int test_c(void);

// 0 when the card says that authentication at activation is off, 1 when it is on or no answer came.
TARN_EXPORT int get_activation_auth_mode(int slot, int channel);
// A non-zero flag switches it on.
TARN_EXPORT int set_activation_auth_mode(int slot, int channel, int flag);

#endif
