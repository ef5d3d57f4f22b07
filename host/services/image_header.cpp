#include "host/services/image_header.h"

#include <algorithm>
#include <cstring>

#include "wire/record.h"

namespace tarn::host {
namespace {

constexpr std::string_view magic = "TARNIMG1";
constexpr Field header_size = u32_at(8);
constexpr Field version = u32_at(12);
constexpr Field fourth_number = u32_at(16);
constexpr Field payload_size = u32_at(20);
constexpr Field payload_crc = u32_at(24);
constexpr Field description_size = u16_at(28);

std::uint32_t load(std::span<const std::uint8_t> bytes, Field field) {
    return static_cast<std::uint32_t>(load_integer(bytes.data(), field));
}

}  // namespace

std::optional<ImageHeader> parse_image_header(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < image_fixed_header_size || !std::equal(magic.begin(), magic.end(), bytes.begin())) {
        return std::nullopt;
    }
    const std::size_t text_size = load(bytes, description_size);
    const std::size_t whole = image_fixed_header_size + text_size;
    if (text_size > longest_image_description || load(bytes, header_size) != whole || bytes.size() < whole) {
        return std::nullopt;
    }
    const auto text = bytes.subspan(image_fixed_header_size, text_size);
    return ImageHeader{load(bytes, version), load(bytes, fourth_number), load(bytes, payload_size),
                       load(bytes, payload_crc), std::string(text.begin(), text.end())};
}

std::vector<std::uint8_t> make_image_header(const ImageHeader &header) {
    const std::string_view text = std::string_view(header.description).substr(0, longest_image_description);
    std::vector<std::uint8_t> bytes(image_fixed_header_size + text.size());
    std::copy(magic.begin(), magic.end(), bytes.begin());
    store_integer(bytes.data(), header_size, static_cast<std::int64_t>(bytes.size()));
    store_integer(bytes.data(), version, header.version);
    store_integer(bytes.data(), fourth_number, header.fourth_number);
    store_integer(bytes.data(), payload_size, header.payload_size);
    store_integer(bytes.data(), payload_crc, header.payload_crc);
    store_integer(bytes.data(), description_size, static_cast<std::int64_t>(text.size()));
    std::copy(text.begin(), text.end(), bytes.begin() + image_fixed_header_size);
    return bytes;
}

}  // namespace tarn::host
