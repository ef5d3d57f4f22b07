#include "module/config/ont_config_staging.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/config/ont_config_store.h"
#include "module/store/cached_query.h"
#include "module/store/ont_config_sections.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

constexpr int not_given = -1;

Record<ont_config::size> ont_cb;
bool ont_cb_actual;
int ont_cb_slot;
int ont_cb_tree = not_given;
int ont_cb_id = not_given;

}  // namespace

int init_ont_config_buffer(int slot, const std::uint8_t *serial_bytes, int create) {
    const Serial serial = serial_at(serial_bytes);  // may lie in the records that are refreshed next
    slot = slot_byte(slot);
    if (ont_cb_actual) {
        return is_staged(slot, serial.data()) ? 0 : -1;
    }
    if (is_zero_serial(serial.data()) || !may_edit_ont_configs(slot, __func__)) {
        return -1;
    }
    ont_cb_slot = slot;
    ont_cb_tree = not_given;
    ont_cb_id = not_given;
    const int index = get_ont_config_index_by_serial(slot, serial.data());
    if (index != ont_not_found) {
        ont_cb = slot_sections<OntConfigSections>(slot)->ont_configs[static_cast<std::size_t>(index)];
        ont_cb_tree = index / ont_config::onts_per_channel;
        ont_cb_id = index % ont_config::onts_per_channel;
    } else if (create != 0) {
        init_ont_config(ont_cb.data());
        std::copy(serial.begin(), serial.end(), ont_cb.data() + ont_config::serial.offset);
    } else {
        return -1;
    }
    ont_cb_actual = true;
    return 0;
}

std::uint8_t *get_ont_cb(void) {
    return ont_cb.data();
}

void set_ont_cb_id(int id) {
    ont_cb_id = id;
}

void set_ont_cb_tree(int channel) {
    ont_cb_tree = channel;
}

void reorganize_ont_selective_tunnel_vids(void) {
    if (!ont_cb_actual) {
        return;
    }
    constexpr std::int64_t empty = -1;
    for (int service = 0; service < ont_config::services; ++service) {
        const auto vid_at = [service](int place) {
            return ont_config::tunnel_vid.at(service * ont_config::tunnel_places + place,
                                             ont_config::tunnel_vid_size);
        };
        int kept = 0;
        for (int place = 0; place < ont_config::tunnel_places; ++place) {
            const std::int64_t vid = load_integer(ont_cb.data(), vid_at(place));
            if (vid != empty) {
                store_integer(ont_cb.data(), vid_at(kept++), vid);
            }
        }
        while (kept < ont_config::tunnel_places) {
            store_integer(ont_cb.data(), vid_at(kept++), empty);
        }
    }
}

int commit_ont_config(int slot) {
    if (!ont_cb_actual) {
        return 0;
    }
    ont_cb_actual = false;
    if (ont_cb_tree == not_given || ont_cb_id == not_given) {
        log_add(log_error, "%s : id or tree not specified\n", __func__);
        return -1;
    }
    return set_ont_config_new(slot, ont_cb_tree, ont_cb_id, ont_cb.data());
}

void invalidate_config_buffer(void) {
    ont_cb_actual = false;
}

namespace tarn {

bool is_staged(int slot, const std::uint8_t *serial) {
    return ont_cb_actual && ont_cb_slot == slot_byte(slot) &&
           compare_serials(ont_cb.data() + ont_config::serial.offset, serial) == 0;
}

}  // namespace tarn
