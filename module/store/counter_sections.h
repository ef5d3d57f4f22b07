// The performance counters of the ONT that was asked for last, a section a table.
#ifndef TARN_MODULE_STORE_COUNTER_SECTIONS_H
#define TARN_MODULE_STORE_COUNTER_SECTIONS_H

#include "module/store/sections.h"
#include "wire/serial.h"

namespace tarn {

// Values of one ONT in one performance-monitoring table: those of key k begin at values[k * positions].
template <int Keys, int Positions>
struct CounterSection {
    static constexpr int keys = Keys;
    static constexpr int positions = Positions;
    std::array<std::uint8_t, serial_size> serial;
    Stamp stamp;
    std::array<std::uint32_t, static_cast<std::size_t>(Keys *Positions)> values;
};

struct CounterSections {
    CounterSection<4, 30> ethernet_counters;
    CounterSection<16, 2> gal_ethernet_counters;
    CounterSection<1, 6> fec_counters;
    CounterSection<10, 4> gem_port_counters_ds;
    CounterSection<10, 4> gem_port_counters_us;
    CounterSection<16, 4> crossconnect_counters_ds;
    CounterSection<16, 6> crossconnect_counters_us;
    CounterSection<5, 15> ethernet_frame_counters_ds;
    CounterSection<5, 15> ethernet_frame_counters_us;
    CounterSection<1, 4> multicast_counters;
    CounterSection<16, 6> multicast_groups;
};

}  // namespace tarn

#endif
