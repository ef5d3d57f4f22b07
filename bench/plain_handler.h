// The yardstick: an ordinary net-snmp handler that answers from a sorted array, called once a repetition.
#ifndef TARN_BENCH_PLAIN_HANDLER_H
#define TARN_BENCH_PLAIN_HANDLER_H

#include <vector>

#include "bench/walk_client.h"

namespace tarn::bench {

// Registers the varbinds, which must be ascending, below another root of the same length. They must outlive
// the agent.
void register_plain_handler(const std::vector<oid> &root, const std::vector<Varbind> &varbinds);

}  // namespace tarn::bench

#endif
