#include "chassis/state/multicast.h"

#include "chassis/state/generator.h"

namespace tarn::chassis {
namespace {

constexpr std::int64_t most_clients = 4;
constexpr Moment minute = 60'000;
constexpr std::uint32_t first_group = 239U << 24U | 1U << 16U;   // 239.1.0.0
constexpr std::uint32_t first_client = 10U << 24U;               // 10.0.0.0
constexpr std::uint32_t source = 10U << 24U | 255U << 16U | 1U;  // 10.255.0.1

// A channel's rate is the same for whoever watches it.
std::uint32_t bandwidth_of(const Card &card, std::uint32_t group) {
    return static_cast<std::uint32_t>(Generator(card.seed, 0, "multicast rate", group).between(2000, 12000));
}

std::uint16_t first_vlan(Card &card, Moment now) {
    const auto &vlans = card.config.running(now).ethernet_switch.vlans;
    return vlans.empty() ? std::uint16_t{0} : static_cast<std::uint16_t>(vlans.begin()->first + 1);
}

}  // namespace

std::vector<JoinedGroup> joined_groups(Card &card, const Ont &ont, Moment now) {
    std::vector<JoinedGroup> joined;
    if (ont.code_at(now) != ont_code::working) {
        return joined;
    }
    Generator habits(card.seed, card.slot, "multicast", load_le64(ont.serial.data()));
    const std::int64_t clients = habits.between(0, most_clients);
    for (std::int64_t client = 0; client < clients; ++client) {
        const auto stays = static_cast<Moment>(habits.between(5, 60)) * minute;
        const auto phase = static_cast<Moment>(habits.between(0, 59)) * minute;
        const Moment changes = (now + phase) / stays;
        const Moment joined_at = changes * stays;
        const auto zapped = static_cast<std::uint64_t>(client) << 32U | changes;
        Generator choice(card.seed, card.slot, "multicast choice",
                         mix(load_le64(ont.serial.data())) ^ zapped);
        JoinedGroup group;
        group.client = first_client | static_cast<std::uint32_t>(card.slot + 1) << 16U |
                       static_cast<std::uint32_t>(ont.channel) << 10U | (ont.id & 0x7FU) << 2U |
                       static_cast<std::uint32_t>(client);
        group.group = first_group | static_cast<std::uint32_t>(choice.between(1, 200));
        group.source = source;
        group.joined = joined_at > phase ? joined_at - phase : 0;
        group.vlan = first_vlan(card, now);
        group.bandwidth = bandwidth_of(card, group.group);
        group.joins = static_cast<std::uint32_t>(changes - phase / stays + 1);
        joined.push_back(group);
    }
    return joined;
}

}  // namespace tarn::chassis
