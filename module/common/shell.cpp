#include "module/common/shell.h"

namespace tarn {

namespace {

constexpr std::string_view harmless =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_@%+=:,./-";

}  // namespace

std::string shell_word(std::string_view text) {
    if (!text.empty() && text.find_first_not_of(harmless) == std::string_view::npos) {
        return std::string(text);
    }
    std::string word = "'";
    for (const char c : text) {
        if (c == '\'') {
            word += "'\\''";
        } else {
            word += c;
        }
    }
    return word + "'";
}

}  // namespace tarn
