#include "ctl/serial.h"

#include <algorithm>
#include <stdexcept>

namespace tarn::ctl {
namespace {

constexpr std::size_t vendor_letters = 4;
constexpr std::size_t digits_in_all = 16;
constexpr std::string_view hex = "0123456789abcdef";

char lower(char c) {
    return c >= 'A' && c <= 'F' ? static_cast<char>(c + 0x20) : c;
}

bool all_hex(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return hex.find(lower(c)) != std::string_view::npos; });
}

}  // namespace

std::string serial_digits(std::string_view text) {
    std::string digits;
    std::string_view rest = text;
    if (text.size() != digits_in_all || !all_hex(text)) {
        for (const char letter : text.substr(0, vendor_letters)) {
            const auto byte = static_cast<unsigned char>(letter);
            digits += {hex[byte >> 4], hex[byte & 0x0F]};
        }
        rest.remove_prefix(std::min(rest.size(), vendor_letters));
    }
    for (const char c : rest) {
        if (c != '-' && c != ':') {
            digits += lower(c);
        }
    }
    if (digits.size() != digits_in_all || !all_hex(digits)) {
        throw std::invalid_argument('"' + std::string(text) +
                                    "\" is no serial number such as ABCD-01:23:45:67");
    }
    return digits;
}

std::string serial_text(std::string_view digits) {
    std::string text;
    for (std::size_t i = 0; i < 2 * vendor_letters && digits.size() == digits_in_all; i += 2) {
        text += static_cast<char>(hex.find(digits[i]) << 4 | hex.find(digits[i + 1]));
    }
    const bool printable = std::ranges::all_of(text, [](char c) { return c > ' ' && c <= '~'; });
    if (text.empty() || !printable) {
        return std::string(digits);
    }
    for (std::size_t i = 2 * vendor_letters; i < digits_in_all; i += 2) {
        text += (i == 2 * vendor_letters ? '-' : ':');
        text += digits.substr(i, 2);
    }
    return text;
}

}  // namespace tarn::ctl
