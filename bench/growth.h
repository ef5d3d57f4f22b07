// The two questions to every table: does a walk cost more than a plain net-snmp handler's, and does it cost
// more than its share when the table grows?
#ifndef TARN_BENCH_GROWTH_H
#define TARN_BENCH_GROWTH_H

#include <string>

namespace tarn::bench {

// Walks a table whose 16 slots have `many` / 4 rows each, then `many`; prints the cost, the ratio and the
// growth. Returns an exit status: failure when one of them is above its limit, or something cannot be run.
// `cards` is the part of a scenario that gives each card its rows, with "ROWS" for their number.
int measure_growth(const std::string &table, const std::string &cards, int many);

}  // namespace tarn::bench

#endif
