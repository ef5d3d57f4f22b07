/* Where the objects of TARN-MIB stand that belong to no table. */
#ifndef TARN_MIB_OBJECTS_H
#define TARN_MIB_OBJECTS_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string_view>

#include "tarn/host_services.h"

namespace tarn {

// 32473 is the enterprise number that is set aside for documentation.
inline constexpr std::array<oid, 9> mib_root = {1, 3, 6, 1, 4, 1, 32473, 1, 22};

struct MibObject {
    std::string_view name;
    std::size_t length = 0;
    std::array<oid, mib_root.size() + 5> identifier{};  // the first `length` of them; then 0, the instance
};

constexpr MibObject mib_object(std::string_view name, std::initializer_list<oid> below_root) {
    MibObject object{.name = name, .length = mib_root.size() + below_root.size(), .identifier = {}};
    const auto end = std::copy(mib_root.begin(), mib_root.end(), object.identifier.begin());
    std::copy(below_root.begin(), below_root.end(), end);
    return object;
}

inline constexpr MibObject mib_objects[] = {
    mib_object("tarnONTFirmwareDownloadEnd", {0, 1}),  // the notification, with the next two
    mib_object("tarnONTFirmwareDownloadStatus", {3, 30, 40}),
    mib_object("tarnONTFirmwareDownloadText", {3, 30, 41}),
    mib_object("tarnONTFirmwaresVersionPriorityFile", {3, 30, 8}),
    mib_object("tarnONTFirmwareUpdateViaOMCISlot", {3, 30, 11, 1}),
    mib_object("tarnONTFirmwareUpdateViaOMCISerial", {3, 30, 11, 2}),
    mib_object("tarnONTFirmwareUpdateViaOMCIFilename", {3, 30, 11, 3}),
    mib_object("tarnONTFirmwareUpdateViaOMCIAction", {3, 30, 11, 4}),
    mib_object("tarnONTAutoUpdateEnabled", {3, 30, 23}),
    mib_object("tarnONTDisableSlot", {3, 30000, 1}),
    mib_object("tarnONTDisableONTSerial", {3, 30000, 2}),
    mib_object("tarnONTDisableChannel", {3, 30000, 3}),
    mib_object("tarnONTDisableActionDisable", {3, 30000, 4}),
    mib_object("tarnONTDisableActionEnable", {3, 30000, 5}),
    mib_object("tarnPortsUtilizationInterval", {4, 50, 1}),
};

// The object of this name; one without length where there is none.
constexpr MibObject find_mib_object(std::string_view name) {
    const auto *found = std::ranges::find(mib_objects, name, &MibObject::name);
    return found != std::end(mib_objects) ? *found : MibObject{};
}

}  // namespace tarn

#endif
