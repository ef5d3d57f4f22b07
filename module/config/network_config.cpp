#include "module/config/network_config.h"

#include "module/common/log.h"
#include "module/config/config_buffer.h"
#include "module/store/cached_query.h"
#include "module/store/network_sections.h"
#include "module/store/sent_section.h"
#include "wire/records/config_image.h"
#include "wire/records/network.h"

using namespace tarn;

namespace {

using Block = Section<network_config::size>;

std::uint8_t *refresh_block(Block &block, int address) {
    refresh_from_image(address, config_image::network, block.record.data(), block.record.size(), block.stamp);
    return block.record.data();
}

int send_block(const std::uint8_t *block, const char *operation, int address) {
    Request<payload + network_config::size> request(command::set_network_cfg, destination::configuration);
    request.put_bytes(payload, block, network_config::size);
    return act(request, operation, address);
}

// As a string copy does, so that what stands after the NUL stays; at most the field.
void copy_name(const std::uint8_t *from, std::uint8_t *to, Field name) {
    const std::string_view text = load_text(from, name);
    const std::size_t length = std::min<std::size_t>(text.size(), name.size - 1U);
    std::memcpy(to + name.offset, text.data(), length);
    to[name.offset + length] = 0;
}

void merge_terminal_vlans(const std::uint8_t *chassis, std::uint8_t *slot) {
    using namespace network_config;
    for (int i = 0; i < terminal_vlans; ++i) {
        if (load_integer(chassis, vlan_in_use.at(i, terminal_vlan_size)) == 0) {
            store_integer(slot, vlan_in_use.at(i, terminal_vlan_size), 0);
            store_integer(slot, vlan_value_23.at(i, terminal_vlan_size), 1);
            store_integer(slot, vlan_value_25.at(i, terminal_vlan_size), 0xFF);
        }
        copy_name(chassis, slot, vlan_name.at(i, terminal_vlan_size));
    }
}

}  // namespace

std::uint8_t *get_gpon_network_cfg(int slot) {
    NetworkSections *db = slot_sections<NetworkSections>(slot);
    return db != nullptr ? refresh_block(db->network_config, slot) : nullptr;
}

int set_gpon_network_cfg(int slot) {
    NetworkSections *db = slot_sections<NetworkSections>(slot);
    if (db == nullptr) {
        log_add(log_error, "%s : skipping slot %d\n", __func__, slot + 1);
        return 0;
    }
    db->network_config.stamp.clear();
    return settle(db->network_config.stamp, send_block(db->network_config.record.data(), __func__, slot));
}

std::uint8_t *get_common_network_cfg(void) {
    ChassisNetworkSections *db = chassis_sections<ChassisNetworkSections>();
    return db != nullptr ? refresh_block(db->common_network_config, chassis_slot::chassis_network) : nullptr;
}

int set_common_network_cfg(void) {
    ChassisNetworkSections *db = chassis_sections<ChassisNetworkSections>();
    if (db == nullptr) {
        return -1;
    }
    auto &[block, stamp] = db->common_network_config;
    stamp.clear();
    if (settle(stamp, send_block(block.data(), __func__, chassis_slot::chassis_network)) != 0) {
        return -1;
    }
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (slot_isconfigured(slot) != 0 && update_slots_terminal_vlans(slot) != 0) {
            log_add(log_error, "%s : failed to update terminal vlans to slot %d\n", __func__, slot + 1);
            return -1;
        }
    }
    return 0;
}

int update_slots_terminal_vlans(int slot) {
    const ChassisNetworkSections *db = chassis_sections<ChassisNetworkSections>();
    if (db == nullptr) {
        return -1;
    }
    const Request<32> request(command::get_terminal_vlans, destination::configuration);
    Record<network_config::size> block;
    {
        const Answer answer = ask(request, __func__, slot, payload + network_config::size);
        if (!answer) {
            return -1;
        }
        answer.copy(block.data(), payload, block.size());
    }
    merge_terminal_vlans(db->common_network_config.record.data(), block.data());
    return send_block(block.data(), __func__, slot);
}
