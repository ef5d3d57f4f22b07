// The ONTs behind a line card.
#ifndef TARN_CHASSIS_STATE_ONTS_H
#define TARN_CHASSIS_STATE_ONTS_H

#include <span>
#include <string>
#include <vector>

#include "chassis/state/record_bytes.h"
#include "chassis/state/time.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"

namespace tarn::chassis {

inline constexpr int max_onts_per_channel = 128;

using Serial = std::array<std::uint8_t, serial_size>;

// The state codes that the simulated card reports.
namespace ont_code {
inline constexpr std::uint16_t registering = 3;  // between a reboot and being back
inline constexpr std::uint16_t working = ont_list::state_working;
inline constexpr std::uint16_t disabled = 9;
inline constexpr std::uint16_t lost = 11;
inline constexpr std::uint16_t not_asked = ont_list::state_not_asked;
}  // namespace ont_code

struct Connection {
    std::uint32_t link_up = 0;    // seconds since 1970, 0 never
    std::uint32_t link_down = 0;  // the same
    std::uint8_t last_state = 0;
};

// When an ONT loses its signal by itself; ms of chassis time.
struct Outages {
    Moment period = 0;  // 0: never
    Moment length = 0;
    Moment next = 0;
};

// The last update of an ONT's firmware; `count` of them so far.
struct OntUpdate {
    std::string file_name;
    Moment start = 0;
    Moment done = 0;
    std::uint32_t count = 0;
};

struct Ont {
    Serial serial{};
    std::uint8_t channel = 0;
    std::uint32_t id = 0;                    // within its channel
    std::uint16_t code = ont_code::working;  // while neither registering nor disabled
    bool enabled = true;
    bool has_signal = true;
    Outages outages;
    Moment lost_until = 0;
    Moment registering_until = 0;
    double optical_power = 0;  // dBm; reported only while the ONT is working
    // Identity and readings. Serial, channel, id, state code and optical power of the list record and the
    // errors of the state record are filled in when they are read.
    RecordBytes<ont_list::size> list{};
    RecordBytes<ont_state::size> state{};
    RecordBytes<ont_i2c::size> i2c{};
    RecordBytes<ont_uni_ports::size> uni_ports{};
    Counter errors;                       // ont_state::value_66, modulo 65536
    std::vector<Connection> connections;  // oldest first, at most ten
    std::uint32_t reconfigurations = 0;
    std::uint32_t reboots = 0;
    std::uint32_t defaults = 0;
    std::uint32_t counter_resets = 0;
    Moment counters_since = 0;  // of the performance counters
    OntUpdate update;

    [[nodiscard]] std::uint16_t code_at(Moment now) const;
};

// `per_channel` ONTs on each channel, in list order. `start_time`: seconds since 1970 when the chassis
// starts.
std::vector<Ont> make_onts(std::uint64_t seed, int slot,
                           const std::array<int, channels_per_slot> &per_channel, std::uint32_t start_time);

Ont *find_ont(std::vector<Ont> &onts, std::span<const std::uint8_t, serial_size> serial);
Ont *find_ont(std::vector<Ont> &onts, int channel, std::uint32_t id);

// Ends, in the ONT's connection log, the connection that is up; one that has not begun will not.
void end_connection(Ont &ont, Moment now, std::uint16_t last_state, std::uint32_t start_time);
// Takes the ONT down and lets it come back after `duration` ms, unless it is disabled or has no signal; logs
// both in its connection log.
void reregister(Ont &ont, Moment now, Moment duration, std::uint32_t start_time);
// Takes the ONT down until reregister and `has_signal`; logs it in its connection log.
void lose_signal(Ont &ont, Moment now, std::uint32_t start_time);
// How many entries of the connection log have begun.
std::size_t begun_connections(const Ont &ont, Moment now, std::uint32_t start_time);

RecordBytes<ont_list::size> list_record(const Ont &ont, Moment now);
RecordBytes<ont_state::size> state_record(const Ont &ont, Moment now);
// An ONT that is not working has no readings.
RecordBytes<ont_i2c::size> i2c_record(const Ont &ont, Moment now);
RecordBytes<ont_uni_ports::size> uni_ports_record(const Ont &ont, Moment now);
// The oldest `count` connections.
RecordBytes<ont_connections::size> connections_record(const Ont &ont, std::size_t count);

}  // namespace tarn::chassis

#endif
