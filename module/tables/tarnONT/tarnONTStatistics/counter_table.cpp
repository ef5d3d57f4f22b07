#include "module/tables/tarnONT/tarnONTStatistics/counter_table.h"
#include "module/store/ont_sections.h"

#include <algorithm>

#include "module/operations/counters.h"
#include "module/operations/ont_queries.h"
#include "wire/records/ont.h"

namespace tarn {

namespace {

std::int64_t &key_of(Row &row) {
    return row.number[0];
}
std::int64_t &position_of(Row &row) {
    return row.number[1];
}

// One request; the card's values beyond the block, and those that it does not send, are left out.
void fetch_block(const CounterBlock &block, GTrafficDirection_enum direction, int slot, int channel,
                 int ont_id, int key, std::uint32_t *to) {
    std::array<std::uint8_t, counters_result_size> result;
    const int error = direction == GPON_DIRECTION_NO_DIRECTION
                          ? abstract_counters_request(result.data(), slot, block.module, channel, key, ont_id)
                          : abstract_counters_request_w_direction(result.data(), slot, block.module,
                                                                  direction, channel, key, ont_id);
    const int values = error == 0 ? result[0] : 0;
    for (int i = 0; i < block.count && block.first + i < values; ++i) {
        to[i] = load_le32(&result[1 + 4 * static_cast<std::size_t>(block.first + i)]);
    }
}

void fetch_key(const CounterTable &counters, int slot, int channel, int ont_id, int key,
               std::uint32_t *values) {
    std::fill_n(values, counters.positions, 0U);
    for (const CounterBlock &block : counters.blocks) {
        fetch_block(block, counters.direction, slot, channel, ont_id, key, values);
        values += block.count;
    }
}

const std::uint8_t *list_record(const std::uint8_t *ont_list, int position) {
    return ont_list + static_cast<std::size_t>(position) * ont_list::size;
}

// In list order, not in that of the serials.
int first_greater(const std::uint8_t *ont_list, const Serial &serial) {
    for (int position = 0; position < max_onts; ++position) {
        if (compare_serials(list_record(ont_list, position), serial.data()) > 0) {
            return position;
        }
    }
    return -1;
}

}  // namespace

std::uint32_t *get_counters(const CounterTable &counters, int slot, const std::uint8_t *ont_entry,
                            int channel, int ont_id, int key) {
    CounterSections *db = slot_sections<CounterSections>(slot);
    if (db == nullptr || key < 0 || key >= counters.keys) {
        return nullptr;
    }
    const Serial serial = serial_at(ont_entry);
    const CounterCache cache = counters.cache(*db);
    const auto values_of = [&](int k) {
        return cache.values.data() + std::ptrdiff_t{k} * counters.positions;
    };
    if (*cache.serial != serial || cache.stamp->expired()) {
        for (int k = 0; k < counters.keys; ++k) {
            fetch_key(counters, slot, channel, ont_id, k, values_of(k));
        }
        cache.stamp->set();
        *cache.serial = serial;
    }
    return values_of(key);
}

const char *counter_name(const CounterTable &counters, int position) {
    const int direction =
        counters.direction == GPON_DIRECTION_NO_DIRECTION ? GPON_DIRECTION_UPLINK : counters.direction;
    for (const CounterBlock &block : counters.blocks) {
        if (position >= 0 && position < block.count) {
            const char *name =
                gpon_stat_common_get_shortname(block.module, direction, block.first + position);
            return name != nullptr ? name : "";
        }
        position -= block.count;
    }
    return "";
}

// ONTs follow each other in list order, which need not be that of their serials.
bool next_counter(Row &row, const CounterTable &counters) {
    OntSections *db = walked_onts(row.slot);
    if (db == nullptr) {
        return false;
    }
    const std::uint8_t *list = db->ont_list[0].data();
    int ont = is_zero_serial(row.serial.data()) ? -1 : find_ont_position(*db, row.serial.data());
    if (ont < 0) {
        ont = first_greater(list, row.serial);
        key_of(row) = 0;
    }
    if (ont < 0) {
        return false;
    }
    key_of(row) = std::max<std::int64_t>(key_of(row), 0);
    if (++position_of(row) >= counters.positions) {
        position_of(row) = 0;
        ++key_of(row);
    }
    if (key_of(row) >= counters.keys) {
        key_of(row) = 0;
        position_of(row) = 0;
        ++ont;
    }
    if (ont >= max_onts || is_zero_serial(db->ont_list[static_cast<std::size_t>(ont)].data())) {
        return false;
    }
    row.record = db->ont_list[static_cast<std::size_t>(ont)].data();
    row.serial = serial_at(row.record);
    return true;
}

int answer_counter_name(const Row &row, const Reply &reply, const CounterTable &counters) {
    const std::string_view name = counter_name(counters, static_cast<int>(row.number[1]));
    return reply.text(name);
}

int answer_counter_value(const Row &row, const Reply &reply, const CounterTable &counters) {
    const std::uint32_t *values = get_counters(
        counters, row.slot, row.record, static_cast<int>(load_integer(row.record, ont_list::channel)),
        static_cast<int>(load_integer(row.record, ont_list::ont_id)), static_cast<int>(row.number[0]));
    if (values == nullptr) {
        return SNMP_NOSUCHINSTANCE;
    }
    return reply.number(static_cast<long>(values[row.number[1]]));
}

}  // namespace tarn
