#include "host/agent/figures.h"

#include "host/agent/event_loop.h"
#include "host/services/block_allocator.h"

namespace tarn::host {

AgentFigures gather_figures(const ManagerRequests &requests, const std::list<Table> &tables) {
    AgentFigures figures;
    figures.requests = requests.figures();
    figures.longest_turn_us = longest_turn_us();
    for (const OutstandingBlocks &site : outstanding_blocks()) {
        figures.outstanding_blocks += site.count;
        figures.outstanding_bytes += site.bytes;
    }
    figures.cache = uncounted_cache_use();
    for (const Table &table : tables) {
        CacheUse all;
        for (int slot = 0; slot <= chassis_slot::line_cards; ++slot) {
            const CacheUse &use = table.cache_use(slot);
            all += use;
            figures.cache_by_slot[static_cast<std::size_t>(slot)] += use;
        }
        if (all.hits + all.misses > 0) {
            figures.cache_by_table[table.schema().name] = all;
        }
        figures.cache += all;
    }
    return figures;
}

}  // namespace tarn::host
