// What the agent counts of itself, for tarnctl and for managers.
#ifndef TARN_HOST_CONTROL_FIGURES_H
#define TARN_HOST_CONTROL_FIGURES_H

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "host/board/ipc_client.h"
#include "host/services/cache_clock.h"

namespace tarn::host {

struct RequestFigures {
    std::uint64_t passes = 0;  // in all, also those that were complete
    std::uint64_t parked_now = 0;
    std::uint64_t parked_at_most = 0;
    std::uint64_t parked_in_all = 0;
    std::uint64_t changes_waiting = 0;  // SETs and commands, the one that is going on, too
    std::uint64_t repeated = 0;         // requests that came again while they were parked
    std::uint64_t turned_away = 0;
    std::uint64_t longest_serving_us = 0;  // for which parked requests kept new ones waiting
};

struct AgentFigures {
    RequestFigures requests;
    std::uint64_t longest_turn_us = 0;
    std::uint64_t outstanding_blocks = 0;
    std::uint64_t outstanding_bytes = 0;
    std::uint64_t notifications_sent = 0;
    std::uint64_t notifications_held_back = 0;
    CacheUse cache;                                          // in all
    std::map<std::string, CacheUse> cache_by_table;          // only what was asked about
    std::array<CacheUse, IpcClient::slots> cache_by_slot{};  // slots 17 and 18 have no tables of their own
};

}  // namespace tarn::host

#endif
