// The chassis-wide profiles: five kinds of ONT profiles, and the OLT profiles, which are only listed.
#ifndef TARN_CHASSIS_STATE_PROFILES_H
#define TARN_CHASSIS_STATE_PROFILES_H

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "wire/records/profile.h"

namespace tarn::chassis {

// In the order of profile_kinds.
inline constexpr std::size_t profile_kind_count = std::size(profile_kinds);

// The records of each kind, one after the other, as the card sends them.
using ProfileStore = std::array<std::vector<std::uint8_t>, profile_kind_count>;

struct OltProfileLists {
    std::vector<std::uint8_t> address_tables;
    std::vector<std::uint8_t> vlans;

    bool operator==(const OltProfileLists &) const = default;
};

// The first `used` profiles of each kind exist, named after their index; a kind holds no more than its count.
ProfileStore make_profiles(int used);
OltProfileLists make_olt_profiles(int used);

// One profile's record.
inline std::span<std::uint8_t> profile_record(ProfileStore &store, std::size_t kind, int index) {
    const std::size_t size = profile_kinds[kind]->size;
    return std::span(store[kind]).subspan(static_cast<std::size_t>(index) * size, size);
}

}  // namespace tarn::chassis

#endif
