#include "module/config/ont_config_store.h"

#include <algorithm>
#include <numeric>

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/config/config_buffer.h"
#include "module/store/cached_query.h"
#include "module/store/ont_config_sections.h"
#include "wire/defaults.h"
#include "wire/records/channel.h"
#include "wire/records/config_image.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

const std::uint8_t *serial_of(const OntConfigSections &db, std::uint16_t index) {
    return db.ont_configs[index].data() + ont_config::serial.offset;
}

const std::uint8_t *serial_at_position(const OntConfigSections &db, int position) {
    return serial_of(db, db.ont_configs_by_serial[static_cast<std::size_t>(position)]);
}

bool is_first_not_below(const OntConfigSections &db, int position, const std::uint8_t *serial) {
    return position < ont_config::count && compare_serials(serial_at_position(db, position), serial) >= 0 &&
           (position == 0 || compare_serials(serial_at_position(db, position - 1), serial) < 0);
}

// A stable sort gives what an insertion sort gives that moves a record only past greater ones.
void sort_configs(OntConfigSections &db) {
    auto &view = db.ont_configs_by_serial;
    std::iota(view.begin(), view.end(), std::uint16_t{0});
    std::stable_sort(view.begin(), view.end(), [&db](std::uint16_t a, std::uint16_t b) {
        return compare_serials(serial_of(db, a), serial_of(db, b)) < 0;
    });
}

// The first record with this serial that passes, by store index; -1: none.
template <class Passes>
int find_ont(int slot, const std::uint8_t *serial_bytes, Passes passes) {
    const Serial serial = serial_at(serial_bytes);  // may lie in the records that are refreshed next
    if (get_all_ont_config(slot) == nullptr) {
        return -1;
    }
    const OntConfigSections &db = *slot_sections<OntConfigSections>(slot);
    const int end = first_ont_above(db, serial.data());
    for (int position = first_ont_not_below(db, serial.data()); position < end; ++position) {
        const std::uint16_t index = db.ont_configs_by_serial[static_cast<std::size_t>(position)];
        if (passes(db.ont_configs[index].data())) {
            return index;
        }
    }
    return -1;
}

}  // namespace

std::uint8_t *get_all_ont_config(int slot) {
    OntConfigSections *db = slot_sections<OntConfigSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    std::uint8_t *records = db->ont_configs[0].data();
    if (refresh_from_image(slot, config_image::ont_records, records, sizeof db->ont_configs,
                           db->ont_configs_stamp)) {
        sort_configs(*db);
    }
    return records;
}

void insert_sort_ont_configs(void *slot_database) {
    sort_configs(sections_in<OntConfigSections>(slot_database));
}

int get_ont_config_index_by_serial(int slot, const std::uint8_t *serial) {
    const int index = find_ont(slot, serial, [](const std::uint8_t *) { return true; });
    return index >= 0 ? index : ont_not_found;
}

std::uint8_t *get_all_ont_config_by_serial(int slot, const std::uint8_t *serial, int *index) {
    const int found = find_ont(slot, serial, ont_in_use);
    if (index != nullptr) {
        *index = found;
    }
    return found >= 0 ? ont_config_at(*slot_sections<OntConfigSections>(slot), found) : nullptr;
}

void init_ont_config(std::uint8_t *record) {
    std::memset(record, 0, ont_config::size);
    write_defaults(record, ont_config::defaults);
    store_text(record, ont_config::password, ont_config::default_password);
}

int set_ont_config_new(int slot, int channel, int id, const std::uint8_t *record) {
    slot = slot_byte(slot);
    if (check_firmware_select(slot, channel, id) != 0) {
        return -1;
    }
    if (channel < 0 || channel >= channels_per_slot) {
        log_add(log_error, "%s : wrong channel index : %d\n", __func__, channel);
        return -1;
    }
    if (id < 0 || id >= ont_config::onts_per_channel) {
        log_add(log_error, "%s : wrong ont id : %d\n", __func__, id);
        return -1;
    }
    OntConfigSections *db = slot_sections<OntConfigSections>(slot);
    if (db == nullptr) {
        return -1;
    }
    constexpr std::size_t record_at = 37;
    Request<record_at + ont_config::size> request(command::set_ont_config, destination::configuration);
    request.put(32, static_cast<std::uint8_t>(channel))
        .put(33, static_cast<std::uint32_t>(id))
        .put_bytes(record_at, record, ont_config::size)
        .put_bytes(record_at, ont_config_at(*db, channel * ont_config::onts_per_channel + id),
                   ont_config::board_word.size);
    if (act(request, __func__, slot) != 0) {
        return -1;
    }
    // Until the card's image comes again, the next edit starts from what it was sent.
    std::memcpy(ont_config_at(*db, channel * ont_config::onts_per_channel + id),
                request.bytes.data() + record_at, ont_config::size);
    sort_configs(*db);
    db->ont_configs_stamp.clear();
    // The configuration holds it now; the card's services follow on their own if they miss this.
    store_integer(request.bytes.data(), board_header::destination, destination::services);
    act(request, __func__, slot);
    return 0;
}

int delete_ont_config(int slot, const std::uint8_t *serial_bytes) {
    const Serial serial = serial_at(serial_bytes);  // may lie in the records that are refreshed next
    if (!may_edit_ont_configs(slot, __func__)) {
        return -1;
    }
    const int index =
        is_zero_serial(serial.data()) ? ont_not_found : get_ont_config_index_by_serial(slot, serial.data());
    if (index == ont_not_found) {
        log_add(log_error, "%s : tried to delete nonexistent config : %02X%02X%02X%02X\n", __func__,
                serial[4], serial[5], serial[6], serial[7]);
        return -1;
    }
    OntConfigSections &db = *slot_sections<OntConfigSections>(slot);
    std::uint8_t *record = ont_config_at(db, index);
    const std::int64_t in_use = load_integer(record, ont_config::in_use);
    store_integer(record, ont_config::in_use, 0);
    const int result = set_ont_config_new(slot, index / ont_config::onts_per_channel,
                                          index % ont_config::onts_per_channel, record);
    if (result != 0) {  // for all that is known, it is still there
        store_integer(record, ont_config::in_use, in_use);
        db.ont_configs_stamp.clear();
    }
    return result;
}

namespace tarn {

bool may_edit_ont_configs(int slot, const char *operation) {
    return get_all_ont_config(slot) != nullptr &&
           may_edit(slot_sections<OntConfigSections>(slot)->ont_configs_stamp, operation, slot_byte(slot));
}

// Walks ask for the same serial, or the next one, again and again; a search goes through records that lie far
// apart.
int first_ont_not_below(const OntConfigSections &db, const std::uint8_t *serial) {
    static int last_found = 0;
    for (const int position : {last_found, last_found + 1}) {
        if (is_first_not_below(db, position, serial)) {
            return last_found = position;
        }
    }
    const auto &view = db.ont_configs_by_serial;
    const auto found = std::lower_bound(view.begin(), view.end(), serial,
                                        [&db](std::uint16_t index, const std::uint8_t *wanted) {
                                            return compare_serials(serial_of(db, index), wanted) < 0;
                                        });
    return last_found = static_cast<int>(found - view.begin());
}

int first_ont_above(const OntConfigSections &db, const std::uint8_t *serial) {
    int position = first_ont_not_below(db, serial);
    while (position < ont_config::count && compare_serials(serial_at_position(db, position), serial) == 0) {
        ++position;
    }
    return position;
}

}  // namespace tarn
