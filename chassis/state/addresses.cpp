#include "chassis/state/addresses.h"

#include <algorithm>

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
                                              int count) {
    if (onts.empty()) {
        return {};
    }
    std::vector<PppoeSession> sessions(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        Generator generator(seed, slot, "pppoe", i);
        const Ont &ont = choose(onts, generator);
        sessions[i].channel = ont.channel;
        std::uint8_t *record = sessions[i].record.data();
        std::ranges::copy(ont.serial, record);
        record[8] = ont.channel;
        store_le32(record + 9, ont.id);
        put_mac(record + 13, slot, generator.bits());
        store_le16(record + 19, static_cast<std::uint16_t>(i + 1));
        store_le32(record + 21, static_cast<std::uint32_t>(generator.between(1, 86400)));
    }
    return sessions;
}

}  // namespace tarn::chassis
