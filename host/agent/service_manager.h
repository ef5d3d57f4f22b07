// What a service manager that started the agent wants to hear: systemd's notification protocol, one datagram
// a message to the socket that NOTIFY_SOCKET names. Without that variable nothing is sent.
#ifndef TARN_HOST_AGENT_SERVICE_MANAGER_H
#define TARN_HOST_AGENT_SERVICE_MANAGER_H

#include <string_view>

namespace tarn::host {

// Sends assignments such as READY=1, separated by newlines.
void notify_service_manager(std::string_view state);

// Says twice in each period of WATCHDOG_USEC that the agent is alive, from net-snmp's alarms: an agent that
// no longer gets to its main loop is silent.
void keep_watchdog_fed();

}  // namespace tarn::host

#endif
