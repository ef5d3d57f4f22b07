// The addresses and sessions that a card has learnt.
#ifndef TARN_MODULE_STORE_ADDRESS_SECTIONS_H
#define TARN_MODULE_STORE_ADDRESS_SECTIONS_H

#include "module/store/growable.h"
#include "module/store/sections.h"
#include "wire/records/address.h"

namespace tarn {

struct AddressSections {
    Growable<ont_address::size> addresses;
    std::uint16_t address_count;
    Growable<sizeof(std::uint32_t)> addresses_by_serial;  // positions
    Stamp addresses_stamp;
    Growable<1> address_text;  // NUL-terminated
    std::size_t address_text_length;
    Stamp address_text_stamp;

    void release() {
        addresses.release();
        addresses_by_serial.release();
        address_count = 0;
        address_text.release();
        address_text_length = 0;
    }
};

struct SessionSections {
    Growable<pppoe_session::size> pppoe_sessions;
    std::uint16_t pppoe_session_count;
    Stamp pppoe_stamp;
    Stamp igmp_stamp;

    void release() {
        pppoe_sessions.release();
        pppoe_session_count = 0;
    }
};

}  // namespace tarn

#endif
