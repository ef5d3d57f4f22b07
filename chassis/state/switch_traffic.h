// What a line card's switch has learnt and counted.
#ifndef TARN_CHASSIS_STATE_SWITCH_TRAFFIC_H
#define TARN_CHASSIS_STATE_SWITCH_TRAFFIC_H

#include <array>
#include <vector>

#include "chassis/state/switch_config.h"
#include "chassis/state/time.h"
#include "wire/records/switch.h"

namespace tarn::chassis {

using MacEntry = RecordBytes<switch_mac::size>;

struct SwitchPort {
    std::array<Counter, switch_port_counters::count> counters;
    std::uint32_t counter_resets = 0;
};

struct SwitchTraffic {
    std::vector<MacEntry> macs;  // in the order learnt
    std::array<SwitchPort, switch_ports> ports;
};

SwitchTraffic make_switch_traffic(std::uint64_t seed, int slot, int macs);

RecordBytes<switch_port_counters::size> port_counters_record(const SwitchPort &port, Moment now);
// Of each direction: two counts over the interval (seconds), and two rates a second.
RecordBytes<switch_port_utilization::size> port_utilization_record(const SwitchPort &port,
                                                                   std::uint16_t interval);

}  // namespace tarn::chassis

#endif
