// The header at the start of a firmware image. All numbers are little-endian:
//
//   0   8 bytes  "TARNIMG1"
//   8   u32      bytes of the header, its description included
//   12  u32      version: major << 24 | minor << 16 | release
//   16  u32      a fourth version number, 0 for none
//   20  u32      bytes of the payload, which follows the header
//   24  u32      CRC-32 of the payload
//   28  u16      bytes of the description, at most 1023
//   30  u16      0
//   32           the description, without a NUL
#ifndef TARN_HOST_SERVICES_IMAGE_HEADER_H
#define TARN_HOST_SERVICES_IMAGE_HEADER_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarn::host {

inline constexpr std::size_t image_fixed_header_size = 32;
inline constexpr std::size_t longest_image_description = 1023;

struct ImageHeader {
    std::uint32_t version = 0;
    std::uint32_t fourth_number = 0;
    std::uint32_t payload_size = 0;
    std::uint32_t payload_crc = 0;
    std::string description;
};

// None unless `bytes`, the start of an image, hold a whole header.
std::optional<ImageHeader> parse_image_header(std::span<const std::uint8_t> bytes);
// The header's bytes; a description beyond its longest is cut.
std::vector<std::uint8_t> make_image_header(const ImageHeader &header);

}  // namespace tarn::host

#endif
