#include "module/config/olt_config.h"

#include "module/store/cached_query.h"
#include "module/store/olt_sections.h"
#include "module/store/profile_sections.h"
#include "module/store/sent_section.h"
#include "wire/records/olt.h"

using namespace tarn;

namespace {

template <std::size_t Size, std::size_t Count>
std::uint8_t *get_list(Records<Size, Count> OltProfileSections::*list, Stamp OltProfileSections::*stamp,
                       std::uint16_t code, const char *operation) {
    OltProfileSections *db = chassis_sections<OltProfileSections>();
    if (db == nullptr) {
        return nullptr;
    }
    std::uint8_t *records = (db->*list)[0].data();
    refresh(records, Size * Count, db->*stamp, Request<32>(code, destination::configuration), operation,
            chassis_slot::olt_profiles);
    return records;
}

}  // namespace

std::uint8_t *get_olt_cfg(int slot) {
    slot = slot_byte(slot);
    OltSections *db = slot_sections<OltSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    std::uint8_t *record = db->olt_config.data();
    if (load_integer(record, olt_config::hold) == 0) {
        refresh(record, olt_config::size, db->olt_config_stamp,
                Request<32>(command::get_olt_cfg, destination::configuration), __func__, slot);
    }
    return record;
}

int set_olt_cfg(int slot) {
    slot = slot_byte(slot);
    OltSections *db = slot_sections<OltSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    Request<payload + olt_config::size> request(command::set_olt_cfg, destination::configuration);
    request.put_bytes(payload, db->olt_config.data(), olt_config::size);
    return settle(db->olt_config_stamp, act(request, __func__, slot));
}

std::uint8_t *get_olt_address_table_profiles(void) {
    return get_list(&OltProfileSections::olt_address_table_profiles,
                    &OltProfileSections::olt_address_table_stamp, command::get_olt_address_table_profiles,
                    __func__);
}

std::uint8_t *get_olt_vlan_profiles(void) {
    return get_list(&OltProfileSections::olt_vlan_profiles, &OltProfileSections::olt_vlan_stamp,
                    command::get_olt_vlan_profiles, __func__);
}
