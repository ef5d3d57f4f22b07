// The clock that decides whether cached board data is fresh. It stands still while one SNMP PDU is served, so
// that all variables of a PDU see the same data.
#ifndef TARN_HOST_SERVICES_CACHE_CLOCK_H
#define TARN_HOST_SERVICES_CACHE_CLOCK_H

#include <cstdint>

namespace tarn::host {

// The standard period of check_cache in seconds; 0: everything is always stale.
void set_cache_period(int seconds);
int cache_period();

// From now on all data that was stamped before is stale, whatever the period.
void expire_cached_data();

// Monotonic time in nanoseconds; while a PDU is served, the time at which its serving began.
std::int64_t agent_time();

// Monotonic time in nanoseconds, whatever is served.
std::int64_t monotonic_time();

// Sections that were stamped between the two times count as expired: what they should hold was not there.
void distrust_stamps(std::int64_t from, std::int64_t to);

// How often what was asked about with check_cache was fresh, and how often it was not.
struct CacheUse {
    std::uint64_t hits = 0;
    std::uint64_t misses = 0;
    CacheUse &operator+=(const CacheUse &other) {
        hits += other.hits;
        misses += other.misses;
        return *this;
    }
};

// From now to its end what this thread asks is counted in `use`, which must outlive it.
class CacheUseCount {
  public:
    explicit CacheUseCount(CacheUse &use);
    ~CacheUseCount();
    CacheUseCount(const CacheUseCount &) = delete;
    CacheUseCount &operator=(const CacheUseCount &) = delete;

  private:
    CacheUse *outer_;
};

// What is counted nowhere else.
CacheUse uncounted_cache_use();

// Stops the clock for the time that part of a PDU is served. Parts of one PDU (its phases, its tables) have
// the same transaction number and see the same time.
class PduClock {
  public:
    explicit PduClock(long transaction);
    ~PduClock();
    PduClock(const PduClock &) = delete;
    PduClock &operator=(const PduClock &) = delete;
};

// Lets the clock go on while the serving of a PDU is left for others, and stops it again where it stood.
class ClockPause {
  public:
    ClockPause();
    ~ClockPause();
    ClockPause(const ClockPause &) = delete;
    ClockPause &operator=(const ClockPause &) = delete;

  private:
    bool stopped_;
    long transaction_;
    std::int64_t stopped_at_;
    CacheUse *use_;
};

// The clock that agent_time reads, in nanoseconds: CLOCK_MONOTONIC unless a test sets another; null resets.
void set_clock_source(std::int64_t (*source)());

}  // namespace tarn::host

#endif
