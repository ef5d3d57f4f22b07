#include "chassis/state/faults.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "wire/protocol.h"

namespace tarn::chassis {
namespace {

constexpr std::uint32_t any = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t ten_minutes = 600000;

constexpr FaultName names[] = {
    {FaultKind::silent, "silent", "", 0, 0},
    {FaultKind::slow, "slow", "milliseconds", 1, ten_minutes},
    {FaultKind::status, "status", "status", 1, 255},
    {FaultKind::truncated, "truncated", "bytes", board_header::size, max_message_size},
    {FaultKind::wrong_count, "wrong_count", "count", 0, any},
    {FaultKind::wrong_length, "wrong_length", "length", 0, any},
    {FaultKind::corrupt, "corrupt", "offset", board_header::size, max_message_size},
    {FaultKind::dropped, "dropped", "", 0, 0},
};

std::optional<std::int64_t> number_within(const NumberOf &number, std::string_view key, std::int64_t low,
                                          std::int64_t high) {
    const std::optional<std::int64_t> value = number(key);
    if (value && (*value < low || *value > high)) {
        throw std::invalid_argument(std::string(key) + " must lie between " + std::to_string(low) + " and " +
                                    std::to_string(high) + ", not " + std::to_string(*value));
    }
    return value;
}

void apply(const Fault &fault, FaultEffects &effects) {
    switch (fault.kind) {
        case FaultKind::silent:
            effects.silent = true;
            break;
        case FaultKind::slow:
            effects.delay_ms = std::max(effects.delay_ms, fault.value);
            break;
        case FaultKind::status:
            effects.status = static_cast<std::uint8_t>(fault.value);
            break;
        case FaultKind::truncated:
            effects.truncated = fault.value;
            break;
        case FaultKind::wrong_count:
            effects.count = fault.value;
            break;
        case FaultKind::wrong_length:
            effects.length = fault.value;
            break;
        case FaultKind::corrupt:
            effects.corrupt = fault.value;
            break;
        case FaultKind::dropped:
            effects.dropped = true;
            break;
    }
    effects.names += (effects.names.empty() ? "" : ", ") + std::string(fault_name(fault.kind).name);
}

}  // namespace

std::span<const FaultName> fault_names() {
    return names;
}

const FaultName &fault_name(FaultKind kind) {
    return *std::ranges::find_if(names, [kind](const FaultName &name) { return name.kind == kind; });
}

Fault parse_fault(std::string_view kind, const NumberOf &number) {
    const auto *const name =
        std::ranges::find_if(names, [kind](const FaultName &n) { return n.name == kind; });
    if (name == std::end(names)) {
        throw std::invalid_argument("unknown kind of fault \"" + std::string(kind) + '"');
    }
    Fault fault;
    fault.kind = name->kind;
    for (const FaultName &other : names) {
        if (other.value_name.empty()) {
            continue;
        }
        if (&other != name) {
            if (number(other.value_name)) {
                throw std::invalid_argument("a fault of kind " + std::string(kind) + " takes no " +
                                            std::string(other.value_name));
            }
            continue;
        }
        const auto value = number_within(number, name->value_name, name->lowest, name->highest);
        if (!value) {
            throw std::invalid_argument("a fault of kind " + std::string(kind) + " needs " +
                                        std::string(name->value_name));
        }
        fault.value = static_cast<std::uint32_t>(*value);
    }
    if (const auto slot = number_within(number, "slot", 0, chassis_slot::chassis_network)) {
        fault.slot = static_cast<int>(*slot);
    }
    if (const auto command = number_within(number, "command", 0, 65535)) {
        fault.command = static_cast<std::uint16_t>(*command);
    }
    if (const auto times = number_within(number, "times", 1, any)) {
        fault.times = static_cast<std::uint32_t>(*times);
    }
    return fault;
}

int Faults::add(Fault fault) {
    fault.id = next_id_++;
    faults_.push_back(fault);
    return fault.id;
}

std::size_t Faults::clear(std::optional<int> id, std::optional<int> slot) {
    return std::erase_if(faults_, [&](const Fault &fault) {
        return (!id || fault.id == *id) && (!slot || fault.slot == slot);
    });
}

FaultEffects Faults::hit(int slot, std::uint16_t command) {
    FaultEffects effects;
    for (Fault &fault : faults_) {
        const bool meant = fault.command ? *fault.command == command : command != command::link;
        if (!meant || (fault.slot && *fault.slot != slot)) {
            continue;
        }
        ++fault.hits;
        if (fault.times) {
            --*fault.times;
        }
        apply(fault, effects);
    }
    std::erase_if(faults_, [](const Fault &fault) { return fault.times == 0U; });
    return effects;
}

}  // namespace tarn::chassis
