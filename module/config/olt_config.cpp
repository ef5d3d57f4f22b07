#include "module/config/olt_config.h"

#include "module/store/cached_query.h"
#include "module/store/olt_sections.h"
#include "module/store/profile_sections.h"
#include "module/store/sent_section.h"
#include "wire/records/olt.h"

using namespace tarn;

namespace {

constexpr Query config{command::get_olt_cfg, destination::configuration, usual_pace,
                       &OltSections::olt_config};
constexpr Query address_table_profiles{command::get_olt_address_table_profiles, destination::configuration,
                                       usual_pace, &OltProfileSections::olt_address_table_profiles};
constexpr Query vlan_profiles{command::get_olt_vlan_profiles, destination::configuration, usual_pace,
                              &OltProfileSections::olt_vlan_profiles};

}  // namespace

std::uint8_t *get_olt_cfg(int slot) {
    auto *olt = slot_sections<OltSections>(slot);
    if (olt == nullptr) {
        return nullptr;
    }
    std::uint8_t *record = olt->olt_config.record.data();
    return load_integer(record, olt_config::hold) != 0
               ? record
               : refresh(config, slot, __func__, everything, olt_config::size);
}

int set_olt_cfg(int slot) {
    OltSections *db = slot_sections<OltSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    Request<payload + olt_config::size> request(command::set_olt_cfg, destination::configuration);
    request.put_bytes(payload, db->olt_config.record.data(), olt_config::size);
    return settle(db->olt_config.stamp, act(request, __func__, slot));
}

std::uint8_t *get_olt_address_table_profiles(void) {
    return refresh(address_table_profiles, chassis_slot::olt_profiles, __func__);
}

std::uint8_t *get_olt_vlan_profiles(void) {
    return refresh(vlan_profiles, chassis_slot::olt_profiles, __func__);
}
