// The yardstick: an ordinary net-snmp handler that answers from a sorted array, called once a repetition.
#ifndef TARN_BENCH_PLAIN_HANDLER_H
#define TARN_BENCH_PLAIN_HANDLER_H

#include <vector>

#include "bench/walk_client.h"

namespace tarn::bench {

// Serves the varbinds, which must be ascending and outlive it, below another root of the same length.
class PlainHandler {
  public:
    PlainHandler(const std::vector<oid> &root, const std::vector<Varbind> &varbinds);
    ~PlainHandler();
    PlainHandler(const PlainHandler &) = delete;
    PlainHandler &operator=(const PlainHandler &) = delete;

  private:
    netsnmp_handler_registration *registration_;
};

}  // namespace tarn::bench

#endif
