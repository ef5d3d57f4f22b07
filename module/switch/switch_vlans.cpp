#include "module/switch/switch_vlans.h"

#include <algorithm>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "module/store/switch_sections.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr int vlans_per_request = 500;
constexpr int last_request = 4000;  // asks for what remains

std::uint8_t *get_list(int slot, Section<vlan_list::size> SwitchSections::*list, std::uint8_t unit,
                       const char *operation) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    return refresh(db->*list, Request<payload>(command::get_switch_vlan_list, unit), operation, slot);
}

// The board VLAN number of an identifier; -1 for what is none.
int board_number(int index) {
    const auto number = static_cast<std::uint16_t>(index - 1);
    return number < switch_vlans ? number : -1;
}

std::uint8_t *allocate_record() {
    return static_cast<std::uint8_t *>(balloc(__FILE__, __LINE__, vlan_record::size));
}

// Makes sure that `vlan` has a record.
bool provide_record(std::uint8_t *&vlan, const char *operation) {
    if (vlan == nullptr) {
        vlan = allocate_record();
    }
    if (vlan == nullptr) {
        log_add(log_error, "%s : memory allocation error\n", operation);
    }
    return vlan != nullptr;
}

// Fetches one VLAN where its stamp has expired; false without memory.
bool refresh_vlan(std::uint8_t *&vlan, Stamp &stamp, int number, std::uint8_t unit, int slot,
                  const char *operation) {
    if (!stamp.expired()) {
        return true;
    }
    constexpr std::size_t record = payload + 2;
    Request<record> request(command::get_switch_vlan, unit);
    request.put(payload, static_cast<std::uint16_t>(number));
    if (const Answer answer = ask(request, operation, slot, record + vlan_record::size)) {
        if (!provide_record(vlan, operation)) {
            return false;
        }
        answer.copy(vlan, record, vlan_record::size);
    }
    stamp.set();
    return true;
}

// Takes one VLAN of a block: new ones are cached, absent ones forgotten, cached ones left as they are.
void take_vlan(std::uint8_t *&vlan, const Record<vlan_record::size> &received, const char *operation) {
    if (load_integer(received.data(), vlan_record::present) == 0) {
        bfree(__FILE__, __LINE__, vlan);
        vlan = nullptr;
        return;
    }
    if (vlan != nullptr) {
        return;
    }
    vlan = allocate_record();
    if (vlan == nullptr) {
        log_add(log_error, "%s : memory allocation error.\n", operation);
        return;
    }
    std::copy(received.begin(), received.end(), vlan);
}

// Asks for the VLANs from `first` on. Returns the number to go on with; no more than `first` at the end.
int fetch_block(SwitchSections &db, int slot, int first, const char *operation) {
    constexpr std::size_t first_record = payload + 4;
    const int asked = first == last_request ? switch_vlans - last_request : vlans_per_request;
    Request<first_record> request(command::get_switch_vlans_block, destination::ethernet_switch);
    request.put(payload, static_cast<std::uint16_t>(first))
        .put(payload + 2, static_cast<std::uint16_t>(asked));
    const Answer answer = ask(request, operation, slot, first_record);
    if (!answer) {
        return first;
    }
    const std::size_t stated = answer.get<std::uint16_t>(payload + 2);
    const auto count = static_cast<int>(answer.records(
        std::min<std::size_t>(stated, static_cast<unsigned>(asked)), first_record, vlan_record::size));
    if (count != static_cast<int>(stated)) {
        log_add(log_error, "%s : %zu VLANs stated, %d taken\n", operation, stated, count);
    }
    std::size_t place = first_record;
    for (int number = first; number < std::min(first + count, switch_vlans); ++number) {
        Record<vlan_record::size> record;
        answer.copy(record.data(), place, record.size());
        take_vlan(db.vlans[static_cast<std::size_t>(number)], record, operation);
        place += record.size();
    }
    return answer.get<std::uint16_t>(payload) + count;
}

}  // namespace

std::uint8_t *get_switch_vlan_list(int slot) {
    return get_list(slot, &SwitchSections::vlan_list, destination::ethernet_switch, __func__);
}

std::uint8_t *get_switch_vlan_list_operational(int slot) {
    return get_list(slot, &SwitchSections::operational_vlan_list, destination::services, __func__);
}

std::uint8_t **get_switch_vlans_block(int slot) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->vlans_block_stamp.expired()) {
        int first = 0;
        while (first < switch_vlans) {
            const int next = fetch_block(*db, slot, first, __func__);
            if (next <= first) {
                break;
            }
            first = next;
        }
        db->vlans_block_stamp.set();
    }
    return db->vlans.data();
}

std::uint8_t **get_switch_vlan(int slot, int index) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    const int number = board_number(index);
    if (db == nullptr || number < 0) {
        return nullptr;
    }
    const auto at = static_cast<std::size_t>(number);
    const bool kept = refresh_vlan(db->vlans[at], db->vlan_stamps[at], number, destination::ethernet_switch,
                                   slot, __func__);
    return kept ? &db->vlans[at] : nullptr;
}

std::uint8_t *get_switch_vlan_operational(int slot, int vlan) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    const auto at = static_cast<std::size_t>(vlan);
    if (db == nullptr || at >= operational_vlans_limit) {
        return nullptr;
    }
    const bool kept = refresh_vlan(db->operational_vlans[at], db->operational_vlan_stamps[at], vlan,
                                   destination::services, slot, __func__);
    return kept ? db->operational_vlans[at] : nullptr;
}

int init_switch_vlan(int slot, int index) {
    SwitchSections *db = slot_sections<SwitchSections>(slot_byte(slot));
    const int number = board_number(index);
    if (db == nullptr || number < 0) {
        return -1;
    }
    std::uint8_t *&vlan = db->vlans[static_cast<std::size_t>(number)];
    if (!provide_record(vlan, __func__)) {
        return -1;
    }
    std::fill_n(vlan, vlan_record::size, std::uint8_t{0});
    store_integer(vlan, vlan_record::present, 1);
    store_integer(vlan, vlan_record::value_50, 3);
    store_integer(vlan, vlan_record::value_52, 1);
    store_integer(vlan, vlan_record::value_53, 125);
    store_integer(vlan, vlan_record::value_55, 10);
    store_integer(vlan, vlan_record::value_56, 2);
    return 0;
}

int set_switch_vlan(int slot, int index) {
    slot = slot_byte(slot);
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    const int number = board_number(index);
    if (db == nullptr || number < 0 || db->vlans[static_cast<std::size_t>(number)] == nullptr) {
        log_add(log_error, "%s : attempt to commit nonexistent config\n", __func__);
        return -1;
    }
    Request<payload + 2 + vlan_record::size> request(command::set_switch_vlan, destination::ethernet_switch);
    request.put(payload, static_cast<std::uint16_t>(number))
        .put_bytes(payload + 2, db->vlans[static_cast<std::size_t>(number)], vlan_record::size);
    if (act(request, __func__, slot) != 0) {
        return -1;
    }
    db->unsent_vlans.remove(number);
    db->vlan_list.stamp.clear();
    return 0;
}

namespace tarn {

int vlans_listed(const std::uint8_t *list) {
    return static_cast<int>(std::min<std::int64_t>(load_integer(list, vlan_list::count), switch_vlans));
}

void note_unsent_vlan(int slot, int index) {
    if (SwitchSections *db = slot_sections<SwitchSections>(slot)) {
        db->unsent_vlans.add(board_number(index));
    }
}

void drop_unsent_vlans() {
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        SwitchSections *db = slot_sections<SwitchSections>(slot);
        if (db == nullptr || db->unsent_vlans.empty()) {
            continue;
        }
        for (std::size_t number = 0; number < db->vlans.size(); ++number) {
            if (db->unsent_vlans.flags[number]) {
                bfree(__FILE__, __LINE__, db->vlans[number]);
                db->vlans[number] = nullptr;
                db->vlan_stamps[number].clear();
            }
        }
        db->unsent_vlans.reset();
        db->vlans_block_stamp.clear();
        db->vlan_list.stamp.clear();
    }
}

}  // namespace tarn
