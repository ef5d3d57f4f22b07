// What walks of the large ONT configuration tables cost at full size, against a plain net-snmp handler.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "bench/walk_bench.h"

namespace {

constexpr double largest_ratio = 1.0;

// Sixteen cards with 512 configured ONTs each.
constexpr const char *scenario =
    "seed: 1\n"
    "time_factor: 0\n"
    "cards:\n"
    "  - slots: [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15]\n"
    "    onts: 512\n"
    "    addresses: 0\n"
    "    pppoe_sessions: 0\n";

double ratio_of(const std::string &table, int rounds) {
    tarn::bench::WalkBench bench;
    bench.tables = {table};
    bench.scenario = scenario;
    bench.rounds = rounds;
    const tarn::bench::WalkCost cost = tarn::bench::measure_walks(bench).front();
    const double ratio = cost.table / cost.plain;
    std::printf(
        "%s: %zu varbinds; CPU a varbind: %.0f ns, plain handler %.0f ns, first walk %.0f ns; ratio %.2f (at "
        "most %.1f)\n",
        table.c_str(), cost.varbinds, cost.table, cost.plain, cost.first, ratio, largest_ratio);
    return ratio;
}

}  // namespace

int main() {
    try {
        // 16 x 512 x 16 rows of two columns, and 16 x 512 x 672 rows of one.
        const double services = ratio_of("tarnONTFullServicesConfigTable", 5);
        const double tunnels = ratio_of("tarnONTSelectiveTunnelTable", 1);
        return std::max(services, tunnels) <= largest_ratio ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception &error) {
        (void)std::fprintf(stderr, "%s\n", error.what());
        return EXIT_FAILURE;
    }
}
