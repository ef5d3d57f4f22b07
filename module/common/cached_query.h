// The caching rule that every query follows: ask the board only when the section's stamp has expired.
#ifndef TARN_MODULE_COMMON_CACHED_QUERY_H
#define TARN_MODULE_COMMON_CACHED_QUERY_H

#include "module/common/envelope.h"
#include "module/common/slot_management_db.h"

namespace tarn {

inline constexpr std::size_t payload = board_header::size;

// A query is `slot` modulo 256 wide.
constexpr int slot_byte(int slot) {
    return slot & 0xFF;
}

// A section that one request fills with `Size` bytes from byte 32 of its answer, stamped after the attempt
// whether or not an answer came. Returns the section's record.
template <std::size_t Size, std::size_t Length>
std::uint8_t *refresh(Section<Size> &section, const Request<Length> &request, const char *operation, int slot,
                      int timeout_ms = default_timeout_ms, const char *file = __builtin_FILE(),
                      int line = __builtin_LINE()) {
    if (section.stamp.expired()) {
        if (const Answer answer = ask(request, operation, slot, payload + Size, timeout_ms, file, line)) {
            answer.copy(section.record.data(), payload, Size);
        }
        section.stamp.set();
    }
    return section.record.data();
}

}  // namespace tarn

#endif
