// A card's ONTs and their readings; the sections of an ONT are found by its position in the list.
#ifndef TARN_MODULE_STORE_ONT_SECTIONS_H
#define TARN_MODULE_STORE_ONT_SECTIONS_H

#include "module/store/sections.h"
#include "wire/records/ont.h"

namespace tarn {

struct OntSections {
    Records<ont_list::size, max_onts> ont_list;
    Stamp ont_list_stamp;
    Stamp all_ont_list_stamp;
    std::array<std::uint16_t, max_onts> ont_list_by_serial;  // positions
    Sections<ont_state::size, max_onts> ont_states;
    Sections<ont_uni_ports::size, max_onts> ont_uni_ports;
    Sections<ont_i2c::size, max_onts> ont_i2c;
    Sections<ont_downstream_ber::size, max_onts> ont_downstream_ber;
    std::array<std::uint8_t, serial_size> services_utilization_serial;  // whose figures follow
    Section<ont_services_utilization::size> ont_services_utilization;
    std::array<std::uint8_t, serial_size> connections_serial;
    std::uint8_t connections_count;
    Section<ont_connections::size> connections;
};

}  // namespace tarn

#endif
