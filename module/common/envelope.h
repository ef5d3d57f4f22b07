// The one way in which a request is sent to a card and its answer checked.
#ifndef TARN_MODULE_COMMON_ENVELOPE_H
#define TARN_MODULE_COMMON_ENVELOPE_H

#include "module/common/exports.h"
#include "module/common/request.h"

// Each stamps slot and release into the request's header, sends it and returns the answer, which the caller
// frees with bfree, or null. Failures are logged here, once, under the operation's name. The time-out is in
// milliseconds, 30000 where there is no parameter. *result receives the negative transport result or the
// answer's error status; success leaves it alone.
TARN_EXPORT std::uint8_t *ipc_send_request_wrapper(void *request, const char *operation, int slot);
TARN_EXPORT std::uint8_t *ipc_send_request_wrapper_custom_timeout(void *request, const char *operation,
                                                                  int slot, int timeout_ms);
TARN_EXPORT std::uint8_t *ipc_send_request_wrapper_with_result(void *request, const char *operation, int slot,
                                                               int *result);
TARN_EXPORT std::uint8_t *ipc_send_request_wrapper_with_result_custom_timeout(void *request,
                                                                              const char *operation, int slot,
                                                                              int *result, int timeout_ms);
// Like the first, but status 1 (nothing to report) is not logged.
TARN_EXPORT std::uint8_t *ipc_send_request_wrapper_for_stat(void *request, const char *operation, int slot);

namespace tarn {

inline constexpr int default_timeout_ms = 30000;

// The answer itself when it holds at least `minimum` bytes, otherwise none, with a log line.
Answer whole_answer(Answer answer, const char *operation, std::size_t minimum);

// Sends a request and returns its answer, which tests false when there is none. An answer of fewer than
// `minimum` bytes, header included, is logged and counts as none.
template <std::size_t Length>
Answer ask(Request<Length> request, const char *operation, int slot, std::size_t minimum,
           int timeout_ms = default_timeout_ms, const char *file = __builtin_FILE(),
           int line = __builtin_LINE()) {
    return whole_answer(
        Answer(ipc_send_request_wrapper_custom_timeout(request.bytes.data(), operation, slot, timeout_ms),
               file, line),
        operation, minimum);
}

// An action, whose answer carries nothing: 0 when it was answered, -1 otherwise.
template <std::size_t Length>
int act(Request<Length> request, const char *operation, int slot, const char *file = __builtin_FILE(),
        int line = __builtin_LINE()) {
    return ask(std::move(request), operation, slot, 0, default_timeout_ms, file, line) ? 0 : -1;
}

}  // namespace tarn

#endif
