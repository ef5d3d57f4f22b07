// What a new ONT record and a new profile of each kind hold. Every byte that is not listed is 0.
#ifndef TARN_MODULE_CONFIG_CONFIG_DEFAULTS_H
#define TARN_MODULE_CONFIG_CONFIG_DEFAULTS_H

#include <span>

#include "module/config/config_records.h"

namespace tarn {

// `value` in a field and in the same field of the entries behind it, `count` in all, `stride` bytes apart.
struct Default {
    Field field;
    std::int64_t value;
    int count = 1;
    int stride = 0;
};

// Writes the listed fields and nothing else.
constexpr void write_defaults(std::uint8_t *record, std::span<const Default> defaults) {
    for (const Default &entry : defaults) {
        for (int i = 0; i < entry.count; ++i) {
            store_integer(record, entry.field.at(i, entry.stride), entry.value);
        }
    }
}

namespace ont_config {
inline constexpr std::string_view default_password = "1111111111";
inline constexpr Default defaults[] = {
    {in_use, 1},
    {flag_262, 1},
    {flag_286, 1},
    {value_288, 0xFFFFFFFF},
    {value_292, 60},
    {crossconnect_value_2, -1, crossconnects, crossconnect_size},
    {crossconnect_value_4, 255, crossconnects, crossconnect_size},
    {crossconnect_value_5, -1, crossconnects, crossconnect_size},
    {tunnel_vid, -1, services *tunnel_places, tunnel_vid_size},
    {service_profile_1756, 0xFFFF, services, service_profile_size},
    {service_profile_1788, 0xFFFF, services, service_profile_size},
    {profile_1824, 0xFFFF},
    {profile_1826, 0xFFFF},
    {value_1832, 4},
    {profile_1834, 0xFFFF},
    {opaque_value_0, 1, opaque_entries, opaque_entry_size},
    {opaque_value_76, 600, opaque_entries, opaque_entry_size},
    {value_2065, 1},
    {uni_value_9, 2, uni_ports, uni_port_size},
};
}  // namespace ont_config

namespace management_profile {
inline constexpr Default defaults[] = {{flag_278, 1}};
}

namespace crossconnect_profile {
inline constexpr Default defaults[] = {
    {value_278, 0}, {value_280, 1}, {value_281, 0},   {value_283, 1},   {value_285, 255},
    {value_286, 1}, {value_288, 0}, {value_290, 255}, {value_291, 127},
};
}

namespace shaping_profile {
inline constexpr Default defaults[] = {
    {short_value, 2488320, crossconnects, short_entry_size},
    {long_value_2, 1244160, crossconnects, long_entry_size},
    {long_value_6, 1244160, crossconnects, long_entry_size},
};
}

namespace alloc_profile {
inline constexpr Default defaults[] = {
    {value_282, 48600}, {value_286, 8}, {value_291, 64}, {value_295, 1273856}};
}

namespace ports_profile {
inline constexpr Default defaults[] = {
    {value_280, 3},
    {value_290, 125},
    {value_294, 100},
    {value_298, 10},
    {uni_value_1423, 2488320, uni_ports, uni_port_size},
    {uni_value_1427, 2488320, uni_ports, uni_port_size},
    {uni_value_1433, 2488320, uni_ports, uni_port_size},
    {uni_value_1437, 2488320, uni_ports, uni_port_size},
};
}

}  // namespace tarn

#endif
