#include "chassis/state/profiles.h"

#include <algorithm>
#include <string>

#include "wire/defaults.h"
#include "wire/records/profile.h"

namespace tarn::chassis {
namespace {

std::vector<std::uint8_t> make_list(std::size_t size, int count, int used, const std::string &prefix) {
    std::vector<std::uint8_t> list(size * static_cast<std::size_t>(count));
    for (int index = 0; index < std::min(used, count); ++index) {
        std::uint8_t *record = &list[static_cast<std::size_t>(index) * size];
        store_integer(record, olt_profile::in_use, 1);
        store_text(record, olt_profile::name, prefix + std::to_string(index));
    }
    return list;
}

}  // namespace

ProfileStore make_profiles(int used) {
    ProfileStore store;
    for (std::size_t kind = 0; kind < profile_kind_count; ++kind) {
        const ProfileDescription &description = *profile_kinds[kind];
        store[kind].resize(description.size * static_cast<std::size_t>(description.count));
        for (int index = 0; index < std::min(used, description.count); ++index) {
            std::uint8_t *record = profile_record(store, kind, index).data();
            store_integer(record, profile_head::in_use, 1);
            store_text(record, profile_head::name, std::to_string(index));
            store_text(record, profile_head::description, std::string(description.name) + " profile");
            write_defaults(record, description.defaults);
        }
    }
    return store;
}

OltProfileLists make_olt_profiles(int used) {
    return {make_list(olt_address_table_profile::size, olt_address_table_profile::count, used, "addresses-"),
            make_list(olt_vlan_profile::size, olt_vlan_profile::count, used, "vlans-")};
}

}  // namespace tarn::chassis
