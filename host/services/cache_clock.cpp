#include "host/services/cache_clock.h"

#include <algorithm>
#include <ctime>
#include <iterator>
#include <utility>
#include <vector>

#include "tarn/host_services.h"

namespace tarn::host {
namespace {

constexpr std::int64_t nanoseconds_per_second = 1'000'000'000;

std::int64_t system_time() {
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * nanoseconds_per_second + now.tv_nsec;
}

int standard_period = 20;
std::int64_t expired_at = 0;  // stamps up to here are stale
std::int64_t (*clock_source)() = system_time;

// Of the PDU that was served last. Only the agent's thread serves PDUs; another thread never sees these.
thread_local bool stopped = false;
thread_local bool any_transaction = false;
thread_local long last_transaction = 0;
thread_local std::int64_t stopped_at = 0;

thread_local CacheUse rest;
thread_local CacheUse *use = &rest;

// Spans of time in ascending order. A few thousand are kept apart; beyond, neighbours are joined: a section
// that is distrusted without need is only read again.
std::vector<std::pair<std::int64_t, std::int64_t>> distrusted;
constexpr std::size_t most_spans = 4096;

bool is_distrusted(std::int64_t stamp) {
    const auto next =
        std::ranges::upper_bound(distrusted, stamp, {}, [](const auto &span) { return span.first; });
    return next != distrusted.begin() && stamp <= std::prev(next)->second;
}

bool is_expired(std::int64_t stamp, int period_seconds) {
    if (period_seconds <= 0 || stamp <= expired_at || is_distrusted(stamp)) {  // a zero stamp is always stale
        return true;
    }
    return agent_time() - stamp >= period_seconds * nanoseconds_per_second;
}

}  // namespace

void set_cache_period(int seconds) {
    standard_period = seconds;
}
int cache_period() {
    return standard_period;
}
void set_clock_source(std::int64_t (*source)()) {
    clock_source = source == nullptr ? system_time : source;
    expired_at = 0;
}

std::int64_t monotonic_time() {
    return clock_source();
}

void distrust_stamps(std::int64_t from, std::int64_t to) {
    if (distrusted.size() == most_spans) {
        for (std::size_t i = 0; i < most_spans / 2; ++i) {
            distrusted[i] = {distrusted[2 * i].first, distrusted[2 * i + 1].second};
        }
        distrusted.resize(most_spans / 2);
    }
    distrusted.emplace_back(from, to);
}

void expire_cached_data() {
    expired_at = clock_source();
}

std::int64_t agent_time() {
    return stopped ? stopped_at : clock_source();
}

PduClock::PduClock(long transaction) {
    if (!any_transaction || transaction != last_transaction) {
        stopped_at = clock_source();
        last_transaction = transaction;
        any_transaction = true;
    }
    stopped = true;
}

PduClock::~PduClock() {
    stopped = false;
}

CacheUseCount::CacheUseCount(CacheUse &counted) : outer_(std::exchange(use, &counted)) {}

CacheUseCount::~CacheUseCount() {
    use = outer_;
}

CacheUse uncounted_cache_use() {
    return rest;
}

ClockPause::ClockPause()
    : stopped_(stopped),
      transaction_(last_transaction),
      stopped_at_(stopped_at),
      use_(std::exchange(use, &rest)) {
    stopped = false;
}

ClockPause::~ClockPause() {
    stopped = stopped_;
    last_transaction = transaction_;
    stopped_at = stopped_at_;
    use = use_;
}

}  // namespace tarn::host

using namespace tarn::host;

int check_cache_custom_period(long seconds, long nanoseconds, int period_seconds) {
    const bool expired = is_expired(seconds * nanoseconds_per_second + nanoseconds, period_seconds);
    ++(expired ? use->misses : use->hits);
    return expired ? 1 : 0;
}

int check_cache(long seconds, long nanoseconds) {
    return check_cache_custom_period(seconds, nanoseconds, standard_period);
}
