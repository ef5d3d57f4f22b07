// The time stamp of a cached section.
#ifndef TARN_MODULE_COMMON_CACHE_H
#define TARN_MODULE_COMMON_CACHE_H

#include <ctime>

#include "tarn/host_services.h"

namespace tarn {

// When a section was fetched, on the monotonic clock. Zero: never, always expired.
struct Stamp {
    timespec time{};

    // Under the host's standard cache period.
    [[nodiscard]] bool expired() const { return check_cache(time.tv_sec, time.tv_nsec) != 0; }
    [[nodiscard]] bool expired(int period_seconds) const {
        return check_cache_custom_period(time.tv_sec, time.tv_nsec, period_seconds) != 0;
    }
    void set() { clock_gettime(CLOCK_MONOTONIC, &time); }
    void clear() { time = {}; }
    [[nodiscard]] bool is_set() const { return time.tv_sec != 0 || time.tv_nsec != 0; }
};

}  // namespace tarn

#endif
