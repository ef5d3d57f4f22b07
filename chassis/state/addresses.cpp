#include "chassis/state/addresses.h"

#include <algorithm>
#include <iterator>

#include "chassis/state/generator.h"
#include "wire/records/address.h"

namespace tarn::chassis {
namespace {

const Ont &choose(const std::vector<Ont> &onts, Generator &generator) {
    return onts[generator.bits() % onts.size()];
}

// A locally administered unicast address, its last bytes from `bits`.
void put_mac(std::uint8_t *to, int slot, std::uint64_t bits) {
    to[0] = 0x02;
    to[1] = static_cast<std::uint8_t>(slot);
    for (std::size_t i = 2; i < 6; ++i) {
        to[i] = static_cast<std::uint8_t>(bits >> (8 * (i - 2)));
    }
}

}  // namespace

std::vector<AddressEntry> make_addresses(std::uint64_t seed, int slot, const std::vector<Ont> &onts,
                                         int count) {
    if (onts.empty()) {
        return {};
    }
    std::vector<AddressEntry> entries(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Generator generator(seed, slot, "address", i);
        const Ont &ont = choose(onts, generator);
        AddressEntry &entry = entries[i];
        put(entry, ont_address::value_0, generator.between(0, 3));
        put(entry, ont_address::value_2, generator.between(0, 15));
        put(entry, ont_address::value_4, generator.between(1, 4094));
        put(entry, ont_address::value_6, generator.between(1, 4094));
        put_mac(entry.data() + ont_address::mac.offset, slot, generator.bits());
        put(entry, ont_address::flag_14, generator.chance(80) ? 1 : 0);
        put(entry, ont_address::flag_16, generator.chance(10) ? 1 : 0);
        put(entry, ont_address::value_18, static_cast<std::int64_t>(ont.id));
        put(entry, ont_address::channel, ont.channel);
        std::ranges::copy(ont.serial, entry.begin() + ont_address::serial.offset);
        put(entry, ont_address::value_29, generator.between(256, 4095));
        put(entry, ont_address::value_31, generator.between(0, 7));
        put(entry, ont_address::value_33, generator.between(0, 300));
        put(entry, ont_address::value_35, generator.between(0, 7));
    }
    return entries;
}

std::vector<PppoeSession> make_pppoe_sessions(std::uint64_t seed, int slot, const std::vector<Ont> &onts,
                                              int count, int vlans) {
    std::vector<Ont> working;
    std::ranges::copy_if(onts, std::back_inserter(working),
                         [](const Ont &ont) { return ont.code_at(0) == ont_code::working; });
    if (working.empty()) {
        return {};
    }
    std::vector<PppoeSession> sessions(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        Generator generator(seed, slot, "pppoe", i);
        const Ont &ont = choose(working, generator);
        sessions[i].channel = ont.channel;
        sessions[i].ont_id = ont.id;
        auto &record = sessions[i].record;
        std::ranges::copy(ont.serial, record.begin() + pppoe_session::serial.offset);
        put(record, pppoe_session::channel, ont.channel);
        put(record, pppoe_session::ont_id, ont.id);
        put_mac(record.data() + pppoe_session::client_mac.offset, slot, generator.bits());
        put(record, pppoe_session::session_id, static_cast<std::int64_t>(i + 1));
        put(record, pppoe_session::duration, generator.between(1, 86400));
        put(record, pppoe_session::vlan, generator.between(1, std::max(vlans, 1)));
        put(record, pppoe_session::service, generator.between(1, 4));
    }
    return sessions;
}

}  // namespace tarn::chassis
