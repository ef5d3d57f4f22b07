#include "chassis/state/switch_traffic.h"

#include "chassis/state/generator.h"
#include "wire/records/switch.h"

namespace tarn::chassis {
namespace {

MacEntry make_mac(Generator &generator, int number) {
    MacEntry entry{};
    const bool group = generator.chance(5);
    put(entry, switch_mac::port, group ? generator.between(0, 1) : generator.between(0, switch_ports - 1));
    put(entry, switch_mac::flags,
        (generator.chance(10) ? switch_mac::flag_bit : 0) | (group ? switch_mac::group_bit : 0));
    put(entry, switch_mac::vlan, generator.between(1, 300));
    // A locally administered address whose last octets count, so that none occurs twice.
    std::uint8_t *mac = entry.data() + switch_mac::mac.offset;
    mac[0] = 0x02;
    for (int i = 1; i < 4; ++i) {
        mac[i] = static_cast<std::uint8_t>(generator.bits());
    }
    mac[4] = static_cast<std::uint8_t>(number >> 8);
    mac[5] = static_cast<std::uint8_t>(number);
    return entry;
}

}  // namespace

SwitchTraffic make_switch_traffic(std::uint64_t seed, int slot, int macs) {
    SwitchTraffic traffic;
    Generator addresses(seed, slot, "mac", 0);
    for (int number = 0; number < macs; ++number) {
        traffic.macs.push_back(make_mac(addresses, number));
    }
    Generator rates(seed, slot, "switch-port", 0);
    for (SwitchPort &port : traffic.ports) {
        for (Counter &counter : port.counters) {
            counter.per_second = static_cast<std::uint64_t>(rates.between(1, 200000));
            counter.base = static_cast<std::uint64_t>(rates.between(0, 10000000000));
        }
    }
    return traffic;
}

RecordBytes<switch_port_counters::size> port_counters_record(const SwitchPort &port, Moment now) {
    RecordBytes<switch_port_counters::size> record{};
    for (int n = 0; n < switch_port_counters::count; ++n) {
        put(record, switch_port_counters::counter(n),
            static_cast<std::int64_t>(port.counters[static_cast<std::size_t>(n)].value(now)));
    }
    return record;
}

RecordBytes<switch_port_utilization::size> port_utilization_record(const SwitchPort &port,
                                                                   std::uint16_t interval) {
    RecordBytes<switch_port_utilization::size> record{};
    for (int n = 0; n < 8; ++n) {
        const std::uint64_t rate = port.counters[static_cast<std::size_t>(n)].per_second;
        const bool over_interval = n % 4 < 2;
        put(record, switch_port_utilization::value(n),
            static_cast<std::int64_t>(over_interval ? rate * interval : rate));
    }
    return record;
}

}  // namespace tarn::chassis
