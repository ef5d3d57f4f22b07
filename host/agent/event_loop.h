// One turn after the other of net-snmp's event loop, timed: a turn is what happens between two waits, and
// nobody is served while another's turn lasts.
#ifndef TARN_HOST_AGENT_EVENT_LOOP_H
#define TARN_HOST_AGENT_EVENT_LOOP_H

#include <cstdint>

namespace tarn::host {

// Waits, a second at most, and serves what there is.
void take_turn();
// The longest turn so far.
std::uint64_t longest_turn_us();

}  // namespace tarn::host

#endif
