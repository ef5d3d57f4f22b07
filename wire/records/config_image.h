// The inflated image of a card's whole configuration.
#ifndef TARN_WIRE_RECORDS_CONFIG_IMAGE_H
#define TARN_WIRE_RECORDS_CONFIG_IMAGE_H

#include "wire/record.h"

namespace tarn {

// The inflated image of a card's whole configuration; only these regions are read.
namespace config_image {
inline constexpr std::size_t size = 1821429;
inline constexpr RecordKind layout{size};
inline constexpr std::size_t ont_records = 53054;
inline constexpr std::size_t network = 1181958;
inline constexpr std::size_t templates = 1790165;
// In the answer that carries it: the compressed image from byte 32, its length in a 32-bit word here.
inline constexpr std::size_t compressed_length = 1024032;
}  // namespace config_image

}  // namespace tarn

#endif
