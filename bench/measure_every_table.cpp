// What a walk of every table costs, a line each, for cards with few rows and with four times as many.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "bench/walk_bench.h"

namespace {

// What grows is stated for one card of sixteen.
std::vector<tarn::bench::WalkCost> measure(const std::vector<std::string> &tables, int onts) {
    tarn::bench::WalkBench bench;
    bench.tables = tables;
    bench.rounds = 3;
    bench.scenario =
        "seed: 1\n"
        "time_factor: 0\n"
        "cards:\n"
        "  - slots: [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15]\n";
    const auto give = [&bench](const char *key, int number) {
        bench.scenario += "    " + (key + (": " + std::to_string(number))) + "\n";
    };
    give("onts", onts);
    give("addresses", 4 * onts);
    give("pppoe_sessions", onts);
    give("mac_addresses", 16 * onts);
    return tarn::bench::measure_walks(bench);
}

}  // namespace

int main() try {
    constexpr int many_onts = 256;
    const std::vector<std::string> tables = tarn::bench::all_tables();
    const auto few = measure(tables, many_onts / 4);
    const auto many = measure(tables, many_onts);
    std::puts(
        "| Table | rows | varbinds | CPU ns a varbind | ratio to a plain handler | rows grow | cost grows "
        "| card requests cold | warm |\n|---|---|---|---|---|---|---|---|---|");
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const tarn::bench::WalkCost &small = few[i];
        const tarn::bench::WalkCost &large = many[i];
        if (large.varbinds == 0) {
            std::printf("| %s | 0 | 0 | | | | | %llu | |\n", tables[i].c_str(),
                        static_cast<unsigned long long>(large.requests_cold));
            continue;
        }
        const auto growth = [](double from, double to) { return from > 0 ? to / from : 0.0; };
        std::printf("| %s | %zu | %zu | %.0f | %.2f | %.1f | %.1f | %llu | %llu |\n", tables[i].c_str(),
                    large.rows, large.varbinds, large.table, large.table / large.plain,
                    growth(static_cast<double>(small.rows), static_cast<double>(large.rows)),
                    growth(small.table * static_cast<double>(small.varbinds),
                           large.table * static_cast<double>(large.varbinds)),
                    static_cast<unsigned long long>(large.requests_cold),
                    static_cast<unsigned long long>(large.requests_warm));
    }
    return EXIT_SUCCESS;
} catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
}
