#include "host/services/agent_thread.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::host {
namespace {

std::atomic<std::thread::id> agent_thread{};

struct LeftWork {
    std::mutex mutex;
    std::vector<std::function<void()>> list;
};

// Never destroyed: a thread of the module may still leave something while the process ends.
LeftWork &left_work() {
    static auto *work = new LeftWork;
    return *work;
}

}  // namespace

void become_agent_thread() {
    agent_thread = std::this_thread::get_id();
}

bool is_agent_thread() {
    const std::thread::id known = agent_thread;
    return known == std::thread::id() || known == std::this_thread::get_id();
}

void leave_for_agent(std::function<void()> work) {
    const std::lock_guard lock(left_work().mutex);
    left_work().list.push_back(std::move(work));
}

void run_left_work() {
    std::vector<std::function<void()>> list;
    {
        const std::lock_guard lock(left_work().mutex);
        list.swap(left_work().list);
    }
    for (const std::function<void()> &work : list) {
        work();
    }
}

}  // namespace tarn::host
