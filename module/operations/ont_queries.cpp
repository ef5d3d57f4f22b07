#include "module/operations/ont_queries.h"

#include <algorithm>
#include <numeric>

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/store/cached_query.h"
#include "module/store/ont_sections.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr std::size_t list_count = payload + 1;
constexpr std::size_t list_records = list_count + 4;

constexpr Query listed{command::get_ont_list, destination::services, Pace{.timeout_ms = 10000},
                       &OntSections::ont_list_stamp};
constexpr Query all_listed{command::get_ont_list, destination::services, Pace{.timeout_ms = 3000},
                           &OntSections::all_ont_list_stamp};

constexpr Pace reading{.timeout_ms = 3000, .on_failure = OnFailure::clears};
constexpr Pace until_answered(int timeout_ms) {
    return {.timeout_ms = timeout_ms, .stamped = Stamped::by_answer, .on_failure = OnFailure::clears};
}
constexpr Query states{command::get_ont_state, destination::services, reading, &OntSections::ont_states};
constexpr Query i2c{command::get_ont_i2c, destination::services, reading, &OntSections::ont_i2c};
constexpr Query uni_ports{command::get_ont_uni_ports_state, destination::services, until_answered(5000),
                          &OntSections::ont_uni_ports};
constexpr Query downstream_ber{command::get_ont_downstream_ber, destination::services,
                               until_answered(default_timeout_ms), &OntSections::ont_downstream_ber};
constexpr Query services_utilization{command::get_ont_services_utilization, destination::services, usual_pace,
                                     &OntSections::ont_services_utilization};

Selector<13> ont_selector(const Serial &serial) {
    Selector<13> selector{};
    std::copy(serial.begin(), serial.end(), selector.begin());
    return selector;
}

// What is cached of the ONT at a list position.
void forget_ont(OntSections &db, std::size_t position) {
    db.ont_states[position] = {};
    db.ont_uni_ports[position] = {};
    db.ont_i2c[position] = {};
    db.ont_downstream_ber[position] = {};
}

// A stable sort gives what an insertion sort gives that moves a record only past greater ones.
void sort_onts(OntSections &db) {
    std::iota(db.ont_list_by_serial.begin(), db.ont_list_by_serial.end(), std::uint16_t{0});
    std::stable_sort(db.ont_list_by_serial.begin(), db.ont_list_by_serial.end(),
                     [&db](std::uint16_t a, std::uint16_t b) {
                         return compare_serials(db.ont_list[a].data(), db.ont_list[b].data()) < 0;
                     });
}

void read_ont_list(OntSections &db, const Answer &answer, const char *operation) {
    const std::size_t stated = answer.get<std::uint32_t>(list_count);
    const std::size_t count =
        answer.records(std::min<std::size_t>(stated, max_onts), list_records, ont_list::size);
    if (count != stated) {
        log_add(log_error, "%s : %zu ONTs stated, %zu taken\n", operation, stated, count);
    }
    std::array<Serial, max_onts> holders;
    std::transform(db.ont_list.begin(), db.ont_list.end(), holders.begin(),
                   [](const auto &record) { return serial_at(record.data()); });
    db.ont_list = {};
    answer.copy(db.ont_list[0].data(), list_records, count * ont_list::size);
    for (std::size_t position = 0; position < holders.size(); ++position) {
        if (serial_at(db.ont_list[position].data()) != holders[position]) {
            forget_ont(db, position);
        }
    }
    sort_onts(db);
}

std::uint8_t *refresh_list(const Query<Stamp, OntSections> &query, int slot, const char *operation) {
    auto *onts = refresh(query, slot, every_channel, list_records, operation, read_ont_list);
    return onts != nullptr ? onts->ont_list[0].data() : nullptr;
}

// The position of an ONT that must be in the list; logged under `operation` when it is not.
int known_position(int slot, const Serial &serial, const char *operation) {
    const int position = get_ont_state_id_by_serial(slot, serial.data());
    if (position == ont_not_found) {
        log_add(log_error, "%s : Can't find ont state with this serial\n", operation);
    }
    return position;
}

// A record of the ONT with this serial.
template <std::size_t Size>
std::uint8_t *refresh_ont(const Query<Sections<Size, max_onts>, OntSections> &query, int slot,
                          const std::uint8_t *serial_bytes, const Caller &caller) {
    const Serial serial = serial_at(serial_bytes);  // may lie in the list that is refreshed next
    const int position = known_position(slot, serial, caller.operation);
    return position != ont_not_found ? refresh(query, slot, position, ont_selector(serial), caller) : nullptr;
}

}  // namespace

namespace tarn {

OntOrder onts_from(const OntSections &db, const std::uint8_t *serial) {
    const OntOrder order = db.ont_list_by_serial;
    return {std::lower_bound(order.begin(), order.end(), serial,
                             [&db](std::uint16_t position, const std::uint8_t *wanted) {
                                 return compare_serials(db.ont_list[position].data(), wanted) < 0;
                             }),
            order.end()};
}

OntOrder onts_after(const OntSections &db, const std::uint8_t *serial) {
    const OntOrder order = db.ont_list_by_serial;
    return {std::upper_bound(order.begin(), order.end(), serial,
                             [&db](const std::uint8_t *wanted, std::uint16_t position) {
                                 return compare_serials(wanted, db.ont_list[position].data()) < 0;
                             }),
            order.end()};
}

int find_ont_position(const OntSections &db, const std::uint8_t *serial) {
    static std::size_t hint =
        0;  // place in the order that was found last: walks ask for it again or the next
    const OntOrder order = db.ont_list_by_serial;
    const auto compare_at = [&](std::size_t place) {
        return compare_serials(db.ont_list[order[place]].data(), serial);
    };
    for (std::size_t place = hint; place <= hint + 1 && place < order.size(); ++place) {
        if (compare_at(place) == 0 && (place == 0 || compare_at(place - 1) < 0)) {
            hint = place;
            return order[place];
        }
    }
    const OntOrder rest = onts_from(db, serial);
    const std::size_t place = order.size() - rest.size();
    if (rest.empty() || compare_at(place) != 0) {
        return -1;
    }
    hint = place;
    return order[place];
}

}  // namespace tarn

std::uint8_t *get_ont_list(int slot) {
    return refresh_list(listed, slot, __func__);
}

std::uint8_t *get_all_ont_list(int slot) {
    return refresh_list(all_listed, slot, __func__);
}

void insert_sort_ont_states(void *slot_database) {
    sort_onts(sections_in<OntSections>(slot_database));
}

int get_ont_state_id_by_serial(int slot, const std::uint8_t *serial_bytes) {
    const Serial serial = serial_at(serial_bytes);
    if (get_ont_list(slot) == nullptr) {
        return ont_not_found;
    }
    // The first free position ends the list.
    const OntSections &db = *slot_sections<OntSections>(slot);
    const int position = find_ont_position(db, serial.data());
    const int first = db.ont_list_by_serial.front();
    const bool has_end = is_zero_serial(db.ont_list[static_cast<std::size_t>(first)].data());
    return position < 0 || (has_end && position > first) ? ont_not_found : position;
}

std::uint8_t *get_all_ont_state_list_by_serial(int slot, const std::uint8_t *serial_bytes) {
    const Serial serial = serial_at(serial_bytes);
    if (get_all_ont_list(slot) == nullptr) {
        return nullptr;
    }
    OntSections &db = *slot_sections<OntSections>(slot);
    const int position = find_ont_position(db, serial.data());
    return position < 0 ? nullptr : db.ont_list[static_cast<std::size_t>(position)].data();
}

std::uint8_t *get_ont_state(int slot, const std::uint8_t *serial) {
    return refresh_ont(states, slot, serial, __func__);
}

std::uint8_t *get_ont_state_check_state(int slot, const std::uint8_t *list_record) {
    if (load_integer(list_record, ont_list::state_code) != ont_list::state_not_asked) {
        return get_ont_state(slot, list_record);
    }
    const Serial serial = serial_at(list_record);
    const int position = known_position(slot, serial, __func__);
    if (position == ont_not_found) {
        return nullptr;
    }
    return slot_sections<OntSections>(slot)->ont_states[static_cast<std::size_t>(position)].record.data();
}

std::uint8_t *get_ont_i2c(int slot, const std::uint8_t *serial) {
    return refresh_ont(i2c, slot, serial, __func__);
}

std::uint8_t *get_ont_uni_ports_state(int slot, const std::uint8_t *serial) {
    return refresh_ont(uni_ports, slot, serial, __func__);
}

std::uint8_t *get_ont_downstream_ber(int slot, const std::uint8_t *serial) {
    return refresh_ont(downstream_ber, slot, serial, __func__);
}

std::uint8_t *get_ont_services_utilization(int slot, const std::uint8_t *serial_bytes) {
    const Serial serial = serial_at(serial_bytes);
    OntSections *db = slot_sections<OntSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->services_utilization_serial != serial) {
        db->services_utilization_serial = serial;
        db->ont_services_utilization = {};
    }
    return refresh(services_utilization, slot, __func__, ont_selector(serial));
}
