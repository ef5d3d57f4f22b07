#include "host/services/cache_clock.h"

#include <ctime>

#include "tarn/host_services.h"

namespace tarn::host {
namespace {

constexpr std::int64_t nanoseconds_per_second = 1'000'000'000;

std::int64_t monotonic_time() {
    timespec now{};
    (void)clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * nanoseconds_per_second + now.tv_nsec;
}

int standard_period = 20;
std::int64_t expired_at = 0;  // stamps up to here are stale
std::int64_t (*clock_source)() = monotonic_time;

// Of the PDU that was served last. Only the agent's thread serves PDUs; another thread never sees these.
thread_local bool stopped = false;
thread_local bool any_transaction = false;
thread_local long last_transaction = 0;
thread_local std::int64_t stopped_at = 0;

}  // namespace

void set_cache_period(int seconds) {
    standard_period = seconds;
}
int cache_period() {
    return standard_period;
}
void set_clock_source(std::int64_t (*source)()) {
    clock_source = source == nullptr ? monotonic_time : source;
    expired_at = 0;
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

}  // namespace tarn::host

using namespace tarn::host;

int check_cache_custom_period(long seconds, long nanoseconds, int period_seconds) {
    const std::int64_t stamp = seconds * nanoseconds_per_second + nanoseconds;
    if (period_seconds <= 0 || stamp <= expired_at) {  // a zero stamp is always stale
        return 1;
    }
    return agent_time() - stamp >= period_seconds * nanoseconds_per_second ? 1 : 0;
}

int check_cache(long seconds, long nanoseconds) {
    return check_cache_custom_period(seconds, nanoseconds, standard_period);
}
