// The alarms of the chassis: the two numbers of each that an operator sets.
#ifndef TARN_HOST_CONTROL_ALARMS_H
#define TARN_HOST_CONTROL_ALARMS_H

#include <cstdint>
#include <string>
#include <vector>

#include "host/loader/module_loader.h"
#include "wire/records/network.h"

namespace tarn::host {

struct Alarm {
    int entry;  // 0-45
    std::uint32_t type;
    std::uint16_t first;
    std::uint16_t second;
};

// All entries as the chassis has them. Empty, and the reason in `error`, when it has not sent them.
std::vector<Alarm> read_alarms(const Module &module, std::string &error);

// Sets the two numbers of an entry in all configured slots and in the chassis; other entries stay. Returns
// what the module does, 0 or a negative number, and the reason in `error` when nothing could be asked for.
int write_alarm(const Module &module, int entry, std::uint16_t first, std::uint16_t second,
                std::string &error);

}  // namespace tarn::host

#endif
