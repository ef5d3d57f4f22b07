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

constexpr Query listed{command::get_switch_vlan_list, destination::ethernet_switch, usual_pace,
                       &SwitchSections::vlan_list};
constexpr Query listed_operational{command::get_switch_vlan_list, destination::services, usual_pace,
                                   &SwitchSections::operational_vlan_list};
constexpr Query block{command::get_switch_vlans_block, destination::ethernet_switch, usual_pace,
                      &SwitchSections::vlans_block_stamp};
constexpr Query configured{command::get_switch_vlan, destination::ethernet_switch, usual_pace,
                           &SwitchSections::vlan_stamps};
constexpr Query operational{command::get_switch_vlan, destination::services, usual_pace,
                            &SwitchSections::operational_vlan_stamps};

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

// Fetches one VLAN where its stamp has expired; false without memory, which is not stamped.
template <class Stamps>
bool refresh_vlan(const Query<Stamps, SwitchSections> &query, SwitchSections &sections, std::uint8_t *&vlan,
                  int number, int slot, const Caller &caller) {
    constexpr std::size_t record = payload + 2;
    Selector<2> selector;
    store_le16(selector.data(), static_cast<std::uint16_t>(number));
    bool kept = true;
    ask_when_due(query, (sections.*query.place)[static_cast<std::size_t>(number)], slot, selector,
                 record + vlan_record::size, caller, [&](const Answer &answer) {
                     kept = provide_record(vlan, caller.operation);
                     if (kept) {
                         answer.copy(vlan, record, vlan_record::size);
                     }
                     return kept;
                 });
    return kept;
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
    Request<first_record> request(block.command, block.destination);
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
    return refresh(listed, slot, __func__);
}

std::uint8_t *get_switch_vlan_list_operational(int slot) {
    return refresh(listed_operational, slot, __func__);
}

std::uint8_t **get_switch_vlans_block(int slot) {
    const char *const operation = __func__;
    auto *sections = refresh_in_parts(block, slot, [slot, operation](SwitchSections &db) {
        for (int first = 0, next = 0; first < switch_vlans; first = next) {
            next = fetch_block(db, slot, first, operation);
            if (next <= first) {
                break;
            }
        }
        return true;
    });
    return sections != nullptr ? sections->vlans.data() : nullptr;
}

std::uint8_t **get_switch_vlan(int slot, int index) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    const int number = board_number(index);
    if (db == nullptr || number < 0) {
        return nullptr;
    }
    const auto at = static_cast<std::size_t>(number);
    const bool kept = refresh_vlan(configured, *db, db->vlans[at], number, slot, __func__);
    return kept ? &db->vlans[at] : nullptr;
}

std::uint8_t *get_switch_vlan_operational(int slot, int vlan) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
    const auto at = static_cast<std::size_t>(vlan);
    if (db == nullptr || at >= operational_vlans_limit) {
        return nullptr;
    }
    const bool kept = refresh_vlan(operational, *db, db->operational_vlans[at], vlan, slot, __func__);
    return kept ? db->operational_vlans[at] : nullptr;
}

int init_switch_vlan(int slot, int index) {
    SwitchSections *db = slot_sections<SwitchSections>(slot);
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
