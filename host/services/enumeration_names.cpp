// Display names of the values that line cards send for enumerations.
#include <algorithm>
#include <array>
#include <cstdio>
#include <span>
#include <string_view>

#include "tarn/host_services.h"

namespace {

struct Name {
    int value;
    const char *name;
};

constexpr Name connection_states[] = {
    {3, "registering"}, {7, "working"}, {9, "disabled"}, {11, "loss of signal"}, {13, "not monitored"},
};

struct Enumeration {
    std::string_view name;
    std::span<const Name> values;
};

constexpr Enumeration enumerations[] = {
    {"GPonOntConnectionStateIndicatorType_enum", connection_states},
};

}  // namespace

// A value without a name reads as its number, in a text that the next such call overwrites.
const char *gpon_enum_find_name_by_type(const char *enumeration, int value) {
    const auto *found = std::ranges::find(enumerations, std::string_view(enumeration), &Enumeration::name);
    if (found != std::end(enumerations)) {
        const auto name = std::ranges::find(found->values, value, &Name::value);
        if (name != found->values.end()) {
            return name->name;
        }
    }
    static std::array<char, 32> unnamed;
    std::snprintf(unnamed.data(), unnamed.size(), "unknown (%d)", value);
    return unnamed.data();
}
