// The time stamp of a cached section.
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

    // Under the host's standard cache period.
    [[nodiscard]] bool expired() const { return !held && check_cache(time.tv_sec, time.tv_nsec) != 0; }
    [[nodiscard]] bool expired(int period_seconds) const {
        return !held && check_cache_custom_period(time.tv_sec, time.tv_nsec, period_seconds) != 0;
    }
    void set() { clock_gettime(CLOCK_MONOTONIC, &time); }
    void clear() { *this = {}; }
    [[nodiscard]] bool is_set() const { return time.tv_sec != 0 || time.tv_nsec != 0; }
};

}  // namespace tarn

#endif
