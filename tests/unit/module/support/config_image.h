// A card's configuration image that a test fills and the board answers with.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_CONFIG_IMAGE_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_CONFIG_IMAGE_H

#include <string>

#include "support/scripted_board.h"

struct ConfigImage {
    Bytes bytes = Bytes(1821429, 0);

    // ONT record by store index, template by number, the network block.
    std::uint8_t *ont(int index) { return &bytes.at(53054 + static_cast<std::size_t>(index) * 2122); }
    std::uint8_t *ont_template(int number) {
        return &bytes.at(1790165 + static_cast<std::size_t>(number) * 473);
    }
    std::uint8_t *network() { return &bytes.at(1181958); }
    // Puts an ONT in use there; the serial is 8 octets.
    std::uint8_t *add_ont(int index, const std::string &serial);

    // The payload of the answer that carries it.
    [[nodiscard]] Bytes payload() const;
    // The board answers with it from now on.
    void serve() const;
};

// The payload that carries these compressed bytes, with this as their stated length.
Bytes image_payload(const Bytes &compressed, std::uint32_t stated_length);
Bytes deflate_bytes(const Bytes &plain);

#endif
