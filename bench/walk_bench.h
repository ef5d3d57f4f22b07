// Measures what a walk of one of the module's tables costs the agent, beside a plain net-snmp handler that
// answers the same varbinds, in one process and in turns.
#ifndef TARN_BENCH_WALK_BENCH_H
#define TARN_BENCH_WALK_BENCH_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tarn::bench {

struct WalkBench {
    std::vector<std::string> tables;  // their names in the MIB
    std::string scenario;             // of the simulated chassis, YAML
    int repetitions = 50;             // of each GETBULK
    int rounds = 5;                   // of which the cheapest counts
};

struct WalkCost {
    std::size_t rows = 0;             // with a value in one column at least
    std::size_t varbinds = 0;         // of one walk; of an empty table the rest is 0
    std::uint64_t requests_cold = 0;  // to the cards, by a walk of which nothing is cached
    std::uint64_t requests_warm = 0;  // by the one that follows it
    double first = 0;                 // CPU nanoseconds a varbind of the first walk, which asks the cards
    double table = 0;                 // of a later walk
    double plain = 0;                 // of a walk of the plain handler
};

// Runs the chassis and, in a process of its own, the agent; the costs are in the order of the tables. Throws
// when something cannot be run, or when the plain handler does not answer as many varbinds as the table.
std::vector<WalkCost> measure_walks(const WalkBench &bench);

// The tables of the MIB, in its order.
std::vector<std::string> all_tables();

}  // namespace tarn::bench

#endif
