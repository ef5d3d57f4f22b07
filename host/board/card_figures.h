// What is counted of a slot's requests.
#ifndef TARN_HOST_BOARD_CARD_FIGURES_H
#define TARN_HOST_BOARD_CARD_FIGURES_H

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>

namespace tarn::host {

// Requests of one command by what became of them.
struct CommandFigures {
    // Upper ends of the classes of answer times in ms; the last class has none.
    static constexpr std::array<int, 9> limits_ms{1, 2, 5, 10, 50, 200, 1000, 3000, 10'000};

    std::uint64_t answered = 0;
    std::uint64_t refused = 0;  // answered with an error status
    std::uint64_t timed_out = 0;
    std::uint64_t lost = 0;   // with their connection
    std::uint64_t other = 0;  // failed at once: no card, card left alone
    std::array<std::uint64_t, limits_ms.size() + 1> times{};
};

struct CardFigures {
    std::map<std::uint16_t, CommandFigures> commands;
    std::uint64_t late = 0;   // answers that came after their request's time-out, and went to nobody
    std::uint64_t holds = 0;  // how often the card was left alone
    std::uint64_t probes = 0;
    // Of the agent's own probes, too; no last_answer_at: it has never answered.
    std::chrono::steady_clock::time_point last_answer_at{};
    std::chrono::microseconds last_answer_time{0};
    std::chrono::microseconds longest_answer_time{0};
    std::chrono::microseconds total_answer_time{0};
};

}  // namespace tarn::host

#endif
