// Checks of texts that become part of a line of a file: what would end the line or the field is refused.
#ifndef TARN_MODULE_TABLES_TARNONT_TARNONTFIRMWARES_LINE_TEXT_H
#define TARN_MODULE_TABLES_TARNONT_TARNONTFIRMWARES_LINE_TEXT_H

#include <string_view>

#include "module/tables/frame/column.h"

namespace tarn {

inline constexpr std::string_view line_breaks{"\r\n\0", 3};
inline constexpr std::string_view field_breaks{"|\r\n\0", 4};

inline std::string_view octets_in(const Binding &value) {
    return {reinterpret_cast<const char *>(value.val.string), value.val_len};
}

inline bool holds_any_of(std::string_view text, std::string_view bytes) {
    return text.find_first_of(bytes) != std::string_view::npos;
}

// The size's own error, or wrongValue.
template <const std::string_view &Forbidden, Check Size>
int text_without(const Binding *value) {
    const int error = check_value(Size, value);
    if (error != SNMP_ERR_NOERROR) {
        return error;
    }
    return holds_any_of(octets_in(*value), Forbidden) ? SNMP_ERR_WRONGVALUE : SNMP_ERR_NOERROR;
}

}  // namespace tarn

#endif
