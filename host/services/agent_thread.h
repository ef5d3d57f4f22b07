// What other threads leave for the agent's thread: net-snmp knows one thread only.
#ifndef TARN_HOST_SERVICES_AGENT_THREAD_H
#define TARN_HOST_SERVICES_AGENT_THREAD_H

#include <functional>

namespace tarn::host {

// From now on the calling thread is the agent's. Until then every thread counts as it.
void become_agent_thread();
bool is_agent_thread();

// Runs `work` when the agent's thread comes to it, in the order in which it was left.
void leave_for_agent(std::function<void()> work);
// Called by the agent's thread, now and then.
void run_left_work();

}  // namespace tarn::host

#endif
