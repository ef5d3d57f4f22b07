#include "host/control/alarms.h"

#include <algorithm>

#include "wire/records/network.h"

namespace tarn::host {
namespace {

using get_alarms_function = void *();
using set_alarms_function = int();

// The module's copy of the alarms, which it keeps; null, and the reason in `error`, when there is none.
std::uint8_t *fetch(const Module &module, std::string &error) {
    auto *get = module.function<get_alarms_function>("slot_lib_get_alarms_config");
    if (get == nullptr) {
        error = "the module has no alarms";
        return nullptr;
    }
    auto *record = static_cast<std::uint8_t *>(get());
    if (record == nullptr ||
        std::all_of(record, record + alarms_config::size, [](auto byte) { return byte == 0; })) {
        error = "the chassis has not sent its alarms";
        return nullptr;
    }
    return record;
}

std::uint8_t *entry_of(std::uint8_t *record, int entry) {
    return record + std::ptrdiff_t{entry} * alarms_config::entry_size;
}

}  // namespace

std::vector<Alarm> read_alarms(const Module &module, std::string &error) {
    std::vector<Alarm> alarms;
    std::uint8_t *record = fetch(module, error);
    for (int entry = 0; record != nullptr && entry < alarms_config::entries; ++entry) {
        const std::uint8_t *place = entry_of(record, entry);
        alarms.push_back({entry, static_cast<std::uint32_t>(load_integer(place, alarms_config::type)),
                          static_cast<std::uint16_t>(load_integer(place, alarms_config::value_9)),
                          static_cast<std::uint16_t>(load_integer(place, alarms_config::value_11))});
    }
    return alarms;
}

int write_alarm(const Module &module, int entry, std::uint16_t first, std::uint16_t second,
                std::string &error) {
    auto *set = module.function<set_alarms_function>("slot_lib_set_alarms_config");
    if (set == nullptr) {
        error = "the module sets no alarms";
        return -1;
    }
    std::uint8_t *record = fetch(module, error);
    if (record == nullptr) {
        return -1;
    }
    store_integer(entry_of(record, entry), alarms_config::value_9, first);
    store_integer(entry_of(record, entry), alarms_config::value_11, second);
    return set();
}

}  // namespace tarn::host
