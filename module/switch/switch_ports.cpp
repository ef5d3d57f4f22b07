#include "module/switch/switch_ports.h"

#include <bit>
#include <cstdio>

#include "wire/records/switch.h"

using namespace tarn;

namespace {

static_assert(std::endian::native == std::endian::little, "octet k of a port list is byte k of its integer");

constexpr unsigned first_group = 20;

// Ports in a row that are named alike; the number in the name is the port minus `base`.
struct PortNames {
    int first;
    int last;
    const char *kind;
    int base;
};

constexpr PortNames port_names[] = {
    {0, 0, "front-port", 0}, {1, 2, "pon-port", 1},        {3, 4, "mgmt-pon-port", 3},
    {7, 12, "pon-port", 5},  {13, 14, "port-channel", 12}, {20, 20, "slot-channel", 20},
};

constexpr std::uint64_t reverse_bits_of_octets(std::uint64_t octets) {
    octets = (octets & 0x5555555555555555) << 1 | (octets >> 1 & 0x5555555555555555);
    octets = (octets & 0x3333333333333333) << 2 | (octets >> 2 & 0x3333333333333333);
    return (octets & 0x0F0F0F0F0F0F0F0F) << 4 | (octets >> 4 & 0x0F0F0F0F0F0F0F0F);
}

}  // namespace

extern "C" {
const std::uint8_t tarn_ports_e[13] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
const std::uint8_t mere_ports_e[13] = {1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 1, 1};
}

const char *get_port_name(int port) {
    static char name[32];
    std::snprintf(name, sizeof name, "unknown");
    for (const PortNames &names : port_names) {
        if (port >= names.first && port <= names.last) {
            std::snprintf(name, sizeof name, "%s %d", names.kind, port - names.base);
        }
    }
    return name;
}

int is_port_present(int port) {
    const auto index = static_cast<std::uint8_t>(port);
    return index < switch_ports ? tarn_ports_e[index] : 0;
}

std::uint32_t portlist_switch_to_snmp(std::uint32_t ports, std::uint16_t groups) {
    return static_cast<std::uint32_t>(
        reverse_bits_of_octets(ports | static_cast<std::uint32_t>(groups) << first_group));
}

std::uint32_t portlist_snmp_to_switch(std::uint32_t list) {
    constexpr std::uint32_t ports = (1U << first_group) - 1;
    return static_cast<std::uint32_t>(reverse_bits_of_octets(list)) & ports;
}

std::uint16_t portlist_snmp_to_switch_groups(std::uint32_t list) {
    return reverse_bits_of_octets(list) >> first_group & 1;
}

std::uint8_t blade_convert_802_8bit_mask_to_snmp(std::uint8_t mask) {
    return static_cast<std::uint8_t>(reverse_bits_of_octets(mask));
}

std::uint64_t blade_convert_dscp_64bit_mask_to_snmp(std::uint64_t mask) {
    return reverse_bits_of_octets(mask);
}
