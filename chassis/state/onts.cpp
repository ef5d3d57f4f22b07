#include "chassis/state/onts.h"

#include <algorithm>
#include <limits>
#include <string>

#include "chassis/state/generator.h"
#include "chassis/state/ont_life.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"

namespace tarn::chassis {
namespace {

constexpr const char *vendors[] = {"TARN", "MERE", "LOCH", "POOL"};
constexpr std::uint8_t no_i2c_reading = 255;

// No two ONTs of a chassis share a serial: its last four bytes are a bijective function of slot and position.
Serial make_serial(std::uint64_t seed, int slot, std::uint32_t position, std::uint64_t vendor) {
    std::uint32_t number = static_cast<std::uint32_t>(slot * max_onts) + position;
    number = (number ^ static_cast<std::uint32_t>(mix(seed))) * 0x9E3779B1U;
    number ^= number >> 16;
    Serial serial{};
    std::memcpy(serial.data(), vendors[vendor % std::size(vendors)], 4);
    for (std::size_t i = 0; i < 4; ++i) {
        serial[4 + i] = static_cast<std::uint8_t>(number >> (8 * (3 - i)));
    }
    return serial;
}

std::uint16_t make_code(Generator &generator) {
    const std::int64_t draw = generator.between(0, 99);
    if (draw < 90) {
        return ont_code::working;
    }
    return draw < 95 ? ont_code::lost : ont_code::not_asked;
}

void make_uni_ports(Ont &ont, Generator &generator) {
    put(ont.uni_ports, ont_uni_ports::port_count, generator.chance(70) ? 4 : 1);
    for (int port = 0; port < ont_uni_ports::ports; ++port) {
        const auto put_port = [&](Field field, std::int64_t value) {
            put(ont.uni_ports, field.at(port, ont_uni_ports::block_size), value);
        };
        const bool link = generator.chance(60);
        put_port(ont_uni_ports::value_0, link ? 1 : 0);
        put_port(ont_uni_ports::value_2, link ? 1000 : 0);
        put_port(ont_uni_ports::value_4, link ? 1 : 0);
        put_port(ont_uni_ports::flag_6, generator.chance(95) ? 1 : 0);
        put_port(ont_uni_ports::value_8, generator.between(0, 3));
        put_port(ont_uni_ports::value_9, generator.between(0, 3));
        put_port(ont_uni_ports::value_10, generator.between(0, 7));
        put_port(ont_uni_ports::value_11, generator.between(0, 7));
        put_port(ont_uni_ports::value_12, generator.between(0, 1000000));
    }
}

Ont make_ont(std::uint64_t seed, int slot, std::uint32_t position, std::uint8_t channel, std::uint32_t id,
             std::uint32_t start_time) {
    Generator generator(seed, slot, "ont", position);
    Ont ont;
    ont.serial = make_serial(seed, slot, position, generator.bits());
    ont.channel = channel;
    ont.id = id;
    ont.code = make_code(generator);
    ont.optical_power = static_cast<double>(generator.between(-280, -120)) / 10;
    put(ont.list, ont_list::text_18, "TN-" + std::to_string(generator.between(100, 999)));
    put(ont.list, ont_list::text_50,
        std::to_string(generator.between(1, 4)) + ".0." + std::to_string(generator.between(0, 99)));
    put(ont.list, ont_list::text_91, "HW-" + std::to_string(generator.between(1, 9)));
    put(ont.state, ont_state::value_68, generator.chance(90) ? 1 : 0);
    put(ont.state, ont_state::text_70, "R" + std::to_string(generator.between(10, 99)));
    put(ont.state, ont_state::value_86, generator.between(-40, 85));
    store_double(ont.state.data(), ont_state::value_128,
                 static_cast<double>(generator.between(100, 20000)) / 1000);
    put(ont.i2c, ont_i2c::value_0, generator.between(500, 2500));
    put(ont.i2c, ont_i2c::value_2, generator.between(20, 900));
    put(ont.i2c, ont_i2c::value_4, 1);
    put(ont.i2c, ont_i2c::value_6, generator.between(7680, 15360));
    put(ont.i2c, ont_i2c::value_8, generator.between(-28, 5));
    put(ont.i2c, ont_i2c::value_10, generator.between(2000, 6000));
    put(ont.i2c, ont_i2c::value_12, generator.between(16000, 17000));
    make_uni_ports(ont, generator);
    ont.errors.per_second = static_cast<std::uint64_t>(generator.between(0, 3));
    const auto up_for = static_cast<std::uint32_t>(generator.between(3600, 2592000));
    const auto down_for = static_cast<std::uint32_t>(generator.between(10, 600));
    ont.connections.push_back({start_time - 2 * up_for, start_time - up_for - down_for, ont_code::lost});
    ont.connections.push_back({start_time - up_for, 0, static_cast<std::uint8_t>(ont.code)});
    return ont;
}

// One of thirty working ONTs has a bad fibre.
Outages make_outages(std::uint64_t seed, int slot, std::uint32_t position) {
    Generator generator(seed, slot, "outages", position);
    if (!generator.chance(3)) {
        return {};
    }
    const auto seconds = [&](std::int64_t low, std::int64_t high) {
        return static_cast<Moment>(generator.between(low, high)) * 1000;
    };
    const Moment period = seconds(1800, 14400);
    return {.period = period, .length = seconds(10, 120), .next = period / 2};
}

}  // namespace

std::uint16_t Ont::code_at(Moment now) const {
    if (!enabled) {
        return ont_code::disabled;
    }
    if (!has_signal || now < lost_until) {
        return ont_code::lost;
    }
    if (now < update.done) {
        return ont_code::not_asked;
    }
    return now < registering_until ? ont_code::registering : code;
}

std::vector<Ont> make_onts(std::uint64_t seed, int slot,
                           const std::array<int, channels_per_slot> &per_channel, std::uint32_t start_time) {
    std::vector<Ont> onts;
    for (std::size_t channel = 0; channel < per_channel.size(); ++channel) {
        for (int id = 0; id < per_channel[channel]; ++id) {
            const auto position = static_cast<std::uint32_t>(onts.size());
            onts.push_back(make_ont(seed, slot, position, static_cast<std::uint8_t>(channel),
                                    static_cast<std::uint32_t>(id), start_time));
            if (onts.back().code == ont_code::working) {
                onts.back().outages = make_outages(seed, slot, position);
            }
        }
    }
    return onts;
}

Ont *find_ont(std::vector<Ont> &onts, std::span<const std::uint8_t, serial_size> serial) {
    const auto found =
        std::ranges::find_if(onts, [&](const Ont &ont) { return std::ranges::equal(ont.serial, serial); });
    return found == onts.end() ? nullptr : &*found;
}

Ont *find_ont(std::vector<Ont> &onts, int channel, std::uint32_t id) {
    const auto found =
        std::ranges::find_if(onts, [&](const Ont &ont) { return ont.channel == channel && ont.id == id; });
    return found == onts.end() ? nullptr : &*found;
}

void end_connection(Ont &ont, Moment now, std::uint16_t last_state, std::uint32_t start_time) {
    if (ont.connections.empty() || ont.connections.back().link_down != 0) {
        return;
    }
    const std::uint32_t end = start_time + static_cast<std::uint32_t>(now / 1000);
    if (ont.connections.back().link_up > end) {
        ont.connections.pop_back();
        return;
    }
    ont.connections.back().link_down = end;
    ont.connections.back().last_state = static_cast<std::uint8_t>(last_state);
}

void reregister(Ont &ont, Moment now, Moment duration, std::uint32_t start_time) {
    end_connection(ont, now, ont.code_at(now), start_time);
    ont.registering_until = now + duration;
    if (!ont.enabled || !ont.has_signal) {
        return;
    }
    ont.connections.push_back({start_time + static_cast<std::uint32_t>(ont.registering_until / 1000), 0,
                               static_cast<std::uint8_t>(ont.code)});
    if (ont.connections.size() > ont_connections::max_entries) {
        ont.connections.erase(ont.connections.begin());
    }
}

void lose_signal(Ont &ont, Moment now, std::uint32_t start_time) {
    ont.has_signal = false;
    end_connection(ont, now, ont_code::lost, start_time);
}

std::size_t begun_connections(const Ont &ont, Moment now, std::uint32_t start_time) {
    return static_cast<std::size_t>(std::ranges::count_if(ont.connections, [&](const Connection &connection) {
        return connection.link_up <= start_time + now / 1000;
    }));
}

RecordBytes<ont_list::size> list_record(const Ont &ont, Moment now) {
    RecordBytes<ont_list::size> record = ont.list;
    std::memcpy(record.data() + ont_list::serial.offset, ont.serial.data(), serial_size);
    const std::uint16_t code = ont.code_at(now);
    put(record, ont_list::channel, ont.channel);
    put(record, ont_list::ont_id, ont.id);
    put(record, ont_list::state_code, code);
    store_double(
        record.data(), ont_list::optical_power,
        code == ont_code::working ? optical_power_at(ont, now) : std::numeric_limits<double>::quiet_NaN());
    return record;
}

RecordBytes<ont_state::size> state_record(const Ont &ont, Moment now) {
    RecordBytes<ont_state::size> record = ont.state;
    put(record, ont_state::value_66, static_cast<std::int64_t>(ont.errors.value(now)));
    return record;
}

RecordBytes<ont_i2c::size> i2c_record(const Ont &ont, Moment now) {
    if (ont.code_at(now) == ont_code::working) {
        return optics_at(ont, now);
    }
    RecordBytes<ont_i2c::size> record{};
    put(record, ont_i2c::value_4, no_i2c_reading);
    return record;
}

RecordBytes<ont_uni_ports::size> uni_ports_record(const Ont &ont, Moment now) {
    return ont.code_at(now) == ont_code::working ? ont.uni_ports : RecordBytes<ont_uni_ports::size>{};
}

RecordBytes<ont_connections::size> connections_record(const Ont &ont, std::size_t count) {
    // The record ends inside its tenth entry: filled in whole first, then cut.
    RecordBytes<ont_connections::head_size + ont_connections::max_entries * ont_connections::entry_size>
        whole{};
    for (std::size_t i = 0; i < std::min<std::size_t>(count, ont_connections::max_entries); ++i) {
        const Connection &connection = ont.connections[i];
        const auto entry = [i](Field field) {
            return field.at(static_cast<int>(i), ont_connections::entry_size);
        };
        put(whole, entry(ont_connections::equipment_id), load_text(ont.list.data(), ont_list::text_18));
        put(whole, entry(ont_connections::version), load_text(ont.list.data(), ont_list::text_50));
        put(whole, entry(ont_connections::link_up_time), connection.link_up);
        put(whole, entry(ont_connections::link_down_time), connection.link_down);
        put(whole, entry(ont_connections::last_state), connection.last_state);
    }
    RecordBytes<ont_connections::size> record{};
    std::copy_n(whole.begin(), record.size(), record.begin());
    return record;
}

}  // namespace tarn::chassis
