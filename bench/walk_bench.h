// Measures what a walk of one of the module's tables costs the agent, beside a plain net-snmp handler that
// answers the same varbinds, in one process and in turns.
#ifndef TARN_BENCH_WALK_BENCH_H
#define TARN_BENCH_WALK_BENCH_H

#include <cstddef>
#include <string>

namespace tarn::bench {

struct WalkBench {
    std::string table;     // its name in the MIB
    std::string scenario;  // of the simulated chassis, YAML
    int repetitions = 50;  // of each GETBULK
    int rounds = 5;        // of which the cheapest counts
};

struct WalkCost {
    std::size_t varbinds = 0;  // of one walk
    double first = 0;          // CPU nanoseconds a varbind of the first walk, which asks the cards
    double table = 0;          // of a later walk
    double plain = 0;          // of a walk of the plain handler
};

// Runs the chassis and, in a process of its own, the agent. Throws when something cannot be run, or when the
// plain handler does not answer as many varbinds as the table.
WalkCost measure_walk(const WalkBench &bench);

}  // namespace tarn::bench

#endif
