#include "bench/growth.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <vector>

#include "bench/walk_bench.h"

namespace tarn::bench {
namespace {

constexpr double largest_ratio = 1.0;
constexpr double largest_growth = 4.5;
constexpr std::size_t fewest_turns = 3;
constexpr std::size_t most_turns = 7;  // when the limits are in doubt

std::string scenario_with(const std::string &cards, int rows) {
    std::string text =
        "seed: 1\n"
        "time_factor: 0\n"
        "cards:\n"
        "  - slots: [0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15]\n" +
        cards;
    const std::string placeholder = "ROWS";
    text.replace(text.find(placeholder), placeholder.size(), std::to_string(rows));
    return text;
}

WalkCost measure(const std::string &table, const std::string &cards, int rows) {
    WalkBench bench;
    bench.tables = {table};
    bench.scenario = scenario_with(cards, rows);
    const WalkCost cost = measure_walks(bench).front();
    std::printf(
        "16 x %d rows: %zu varbinds; CPU a varbind: %.0f ns, plain handler %.0f ns, first walk %.0f ns\n",
        rows, cost.varbinds, cost.table, cost.plain, cost.first);
    return cost;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

int measure_growth(const std::string &table, const std::string &cards, int many) try {
    // Few and many rows are measured in turn and compared within the turn, since the machine's speed drifts.
    std::vector<double> ratios;
    std::vector<double> growths;
    const auto within_limits = [&] {
        return median(ratios) <= largest_ratio && median(growths) <= largest_growth;
    };
    while (ratios.size() < fewest_turns || (ratios.size() < most_turns && !within_limits())) {
        const WalkCost few_rows = measure(table, cards, many / 4);
        const WalkCost many_rows = measure(table, cards, many);
        ratios.push_back(many_rows.table / many_rows.plain);
        growths.push_back(many_rows.table * static_cast<double>(many_rows.varbinds) /
                          (few_rows.table * static_cast<double>(few_rows.varbinds)));
    }
    std::printf("ratio to a plain handler: %.2f (at most %.1f)\n", median(ratios), largest_ratio);
    std::printf("cost of four times the rows: %.2f times (at most %.1f)\n", median(growths), largest_growth);
    return within_limits() ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception &error) {
    (void)std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
}

}  // namespace tarn::bench
