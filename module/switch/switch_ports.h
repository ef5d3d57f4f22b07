// Names and lists of the switch's ports, and the bit order of masks.
#ifndef TARN_MODULE_SWITCH_SWITCH_PORTS_H
#define TARN_MODULE_SWITCH_SWITCH_PORTS_H

#include <cstdint>

#include "module/common/exports.h"

// Which of the ports 0-12 a card has (1) and has not (0).
extern "C" {
TARN_EXPORT_DATA extern const std::uint8_t tarn_ports_e[13];
TARN_EXPORT_DATA extern const std::uint8_t mere_ports_e[13];
}

// The name of switch port 0-20, in a buffer that the next call overwrites.
TARN_EXPORT const char *get_port_name(int port);
// 1 where the card has the port (modulo 256), otherwise 0.
TARN_EXPORT int is_port_present(int port);

// A port list is four octets, in the order in which the integer lies in memory; the most significant bit of
// an octet comes first. Positions 0-19 are the switch ports 0-19, positions 20-31 the port groups 0-11.
TARN_EXPORT std::uint32_t portlist_switch_to_snmp(std::uint32_t ports, std::uint16_t groups);
TARN_EXPORT std::uint32_t portlist_snmp_to_switch(std::uint32_t list);
// Of the groups, the switch takes only group 0 from a list.
TARN_EXPORT std::uint16_t portlist_snmp_to_switch_groups(std::uint32_t list);

// Reverse the order of the bits in each octet, so that the most significant one stands for the lowest
// priority or code point; and back.
TARN_EXPORT std::uint8_t blade_convert_802_8bit_mask_to_snmp(std::uint8_t mask);
TARN_EXPORT std::uint64_t blade_convert_dscp_64bit_mask_to_snmp(std::uint64_t mask);

#endif
