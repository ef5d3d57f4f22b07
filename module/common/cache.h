// The time stamp of a cached section, and whether the section may be edited.
#ifndef TARN_MODULE_COMMON_CACHE_H
#define TARN_MODULE_COMMON_CACHE_H

#include <ctime>

#include "tarn/host_services.h"

namespace tarn {

// When a section was fetched, on the monotonic clock. Zero: never, always expired.
struct Stamp {
    timespec time{};
    // The section carries edits that are not sent yet: whatever its age, it must not be read again.
    bool held = false;
    // The section shows what the board has, with what was sent to it since. Otherwise it can be read, but
    // must not be edited and sent back.
    bool filled = false;

    // Under the host's standard cache period.
    [[nodiscard]] bool expired() const { return !held && check_cache(time.tv_sec, time.tv_nsec) != 0; }
    [[nodiscard]] bool expired(int period_seconds) const {
        return !held && check_cache_custom_period(time.tv_sec, time.tv_nsec, period_seconds) != 0;
    }
    void set() { clock_gettime(CLOCK_MONOTONIC, &time); }
    // Read again at the next use.
    void clear() {
        time = {};
        held = false;
    }
    // The same for a section with edits that did not reach the board.
    void drop() { *this = {}; }
    [[nodiscard]] bool is_set() const { return time.tv_sec != 0 || time.tv_nsec != 0; }
};

}  // namespace tarn

#endif
