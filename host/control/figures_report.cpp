#include "host/control/figures_report.h"

#include "wire/command_names.h"

namespace tarn::host {
namespace {

using Json = nlohmann::ordered_json;

// The time in ms within which half of the answers came; 0: above all limits, or none came.
int median_ms(const CommandFigures &figures) {
    std::uint64_t rest = (figures.answered + figures.refused + 1) / 2;
    for (std::size_t i = 0; i < CommandFigures::limits_ms.size(); ++i) {
        if (rest <= figures.times[i]) {
            return rest == 0 ? 0 : CommandFigures::limits_ms[i];
        }
        rest -= figures.times[i];
    }
    return 0;
}

Json report_requests(const RequestFigures &requests) {
    return {{"passes", requests.passes},
            {"parked_now", requests.parked_now},
            {"parked_at_most", requests.parked_at_most},
            {"parked_in_all", requests.parked_in_all},
            {"changes_waiting", requests.changes_waiting},
            {"repeated", requests.repeated},
            {"turned_away", requests.turned_away},
            {"longest_serving_us", requests.longest_serving_us}};
}

Json report_card(const IpcClient &cards, int slot, const CacheUse &cache) {
    const CardFigures &figures = cards.figures(slot);
    return {{"slot", slot + 1},
            {"card", name_of(cards.state(slot))},
            {"late", figures.late},
            {"holds", figures.holds},
            {"probes", figures.probes},
            {"last_answer_us", figures.last_answer_time.count()},
            {"longest_answer_us", figures.longest_answer_time.count()},
            {"cache_hits", cache.hits},
            {"cache_misses", cache.misses}};
}

Json report_command(int slot, std::uint16_t command, const CommandFigures &counts) {
    return {{"slot", slot + 1},
            {"command", command},
            {"name", command_name(command)},
            {"answered", counts.answered},
            {"refused", counts.refused},
            {"timed_out", counts.timed_out},
            {"lost", counts.lost},
            {"failed_at_once", counts.other},
            {"median_ms", median_ms(counts)},
            {"times", counts.times}};
}

}  // namespace

Json report_figures(const IpcClient &cards, const AgentFigures &figures) {
    Json slots = Json::array();
    Json commands = Json::array();
    for (int slot = 0; slot < IpcClient::slots; ++slot) {
        slots.push_back(report_card(cards, slot, figures.cache_by_slot[static_cast<std::size_t>(slot)]));
        for (const auto &[command, counts] : cards.figures(slot).commands) {
            commands.push_back(report_command(slot, command, counts));
        }
    }
    Json cache = Json::array();
    for (const auto &[table, use] : figures.cache_by_table) {
        cache.push_back({{"table", table}, {"hits", use.hits}, {"misses", use.misses}});
    }
    return {{"requests", report_requests(figures.requests)},
            {"agent",
             {{"longest_turn_us", figures.longest_turn_us},
              {"outstanding_blocks", figures.outstanding_blocks},
              {"outstanding_bytes", figures.outstanding_bytes},
              {"notifications_sent", figures.notifications_sent},
              {"notifications_held_back", figures.notifications_held_back},
              {"cache_hits", figures.cache.hits},
              {"cache_misses", figures.cache.misses}}},
            {"cards", std::move(slots)},
            {"commands", std::move(commands)},
            {"cache", std::move(cache)}};
}

}  // namespace tarn::host
