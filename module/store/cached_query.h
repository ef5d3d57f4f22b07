// The caching rule that every query follows: ask the board only when the section's stamp has expired.
#ifndef TARN_MODULE_STORE_CACHED_QUERY_H
#define TARN_MODULE_STORE_CACHED_QUERY_H

#include "module/common/envelope.h"
#include "module/common/log.h"
#include "module/store/sections.h"

namespace tarn {

inline constexpr std::size_t payload = board_header::size;

// Fills `size` bytes from byte 32 of the answer to one request, when their stamp has expired. They are
// stamped after the attempt whether or not an answer came; true when one did.
template <std::size_t Length>
bool refresh(std::uint8_t *to, std::size_t size, Stamp &stamp, const Request<Length> &request,
             const char *operation, int slot, int timeout_ms = default_timeout_ms,
             const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (!stamp.expired()) {
        return false;
    }
    const Answer answer = ask(request, operation, slot, payload + size, timeout_ms, file, line);
    if (answer) {
        answer.copy(to, payload, size);
        stamp.filled = true;
    }
    stamp.set();
    return static_cast<bool>(answer);
}

// The same for a section, whose record it returns.
template <std::size_t Size, std::size_t Length>
std::uint8_t *refresh(Section<Size> &section, const Request<Length> &request, const char *operation, int slot,
                      int timeout_ms = default_timeout_ms, const char *file = __builtin_FILE(),
                      int line = __builtin_LINE()) {
    refresh(section.record.data(), Size, section.stamp, request, operation, slot, timeout_ms, file, line);
    return section.record.data();
}

// Whether a section may be edited and sent back: not unless it shows what the card has, which is logged.
inline bool may_edit(const Stamp &section, const char *operation, int slot) {
    const bool allowed = section.held || section.filled;
    if (!allowed) {
        const bool card = slot < chassis_slot::line_cards;
        log_add(log_error, "%s : %s %d has not sent its configuration, which is not overwritten\n", operation,
                card ? "slot" : "address", card ? slot + 1 : slot);
    }
    return allowed;
}

}  // namespace tarn

#endif
