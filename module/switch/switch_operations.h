// The switch's configuration sections, ACL rules, port counters and port utilization.
//
// The getters return the cached section in the slot database, refreshed where it has expired; without an
// answer it stays as it was until the cache period has passed again. Null: a slot without a database, or a
// port outside 0-12. The setters send the cached section; 0, or -1 without an answer.
#ifndef TARN_MODULE_SWITCH_SWITCH_OPERATIONS_H
#define TARN_MODULE_SWITCH_SWITCH_OPERATIONS_H

#include <cstdint>

#include "module/common/exports.h"
#include "tarn/host_services.h"

TARN_EXPORT std::uint8_t *get_switch_general_cfg(int slot);
TARN_EXPORT int set_switch_general_cfg(int slot);
TARN_EXPORT std::uint8_t *get_switch_qos_cfg(int slot);
// Normalizes the queues first.
TARN_EXPORT int set_switch_qos_cfg(int slot);
// Takes from every queue the priorities and the code points of the queue that was written last.
TARN_EXPORT void normalize_qos_queries(int slot);
TARN_EXPORT std::uint8_t *get_switch_blacklist_cfg(int slot);
TARN_EXPORT int set_switch_blacklist_cfg(int slot);
// The first of the 8 rule lists, each of 1024 rules of 18 bytes.
TARN_EXPORT std::uint8_t *get_switch_blacklist_rules(int slot);
// -1 also for more than 1023 rules, which are not sent.
TARN_EXPORT int set_switch_blacklist_rules(int slot);

TARN_EXPORT std::uint8_t *get_switch_port_counters(int slot, int port);
// 0, or 1 without an answer or for a port outside 0-12.
TARN_EXPORT int reset_switch_port_counters(int slot, int port);
TARN_EXPORT std::uint8_t *get_switch_port_utilization(int slot, int port);

// The two-word counter of a 64-bit value as the card's agent presents it: from 2^32 on, the high word is the
// value divided by 2^32 - 1, and that quotient is added to the low word too.
TARN_EXPORT void to_c64(struct counter64 *out, std::uint64_t in);

#endif
