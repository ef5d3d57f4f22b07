#include "module/common/envelope.h"

#include "module/common/log.h"

using namespace tarn;

namespace {

void stamp(std::uint8_t *request, int slot) {
    store_integer(request, board_header::slot, slot);
    store_integer(request, board_header::version_1, release_numbers[0]);
    store_integer(request, board_header::version_2, release_numbers[1]);
    store_integer(request, board_header::version_3, release_numbers[2]);
    store_integer(request, board_header::version_4, release_numbers[3]);
    store_integer(request, board_header::version_5, release_numbers[4]);
    // The configuration service fronts the switch; only the low byte is the unit.
    std::uint8_t &unit = request[board_header::destination.offset];
    if (unit == destination::ethernet_switch) {
        unit = destination::configuration;
    }
}

const char *error_text(int code) {
    const char *text = ipcGetError(code);
    return text != nullptr ? text : "";
}

std::uint8_t *send(void *request, const char *operation, int slot, int *result, int timeout_ms,
                   bool statistics) {
    stamp(static_cast<std::uint8_t *>(request), slot);
    void *received = nullptr;
    const int sent = ipcSendRequest(request, &received, timeout_ms);
    if (sent < 0) {
        log_add(log_error, "%s : %s 1:(%d)\n", operation, error_text(sent), sent);
        if (result != nullptr) {
            *result = sent;
        }
        return nullptr;
    }
    auto *answer = static_cast<std::uint8_t *>(received);
    if (answer == nullptr) {
        return nullptr;
    }
    const auto status = static_cast<int>(load_integer(answer, board_header::status));
    if (status == board_status::success) {
        return answer;
    }
    if (!(statistics && status == board_status::not_available)) {
        log_add(log_error, "%s : %s 2:(%d)\n", operation, error_text(status), status);
    }
    if (result != nullptr) {
        *result = status;
    }
    bfree(__FILE__, __LINE__, answer);
    return nullptr;
}

}  // namespace

std::uint8_t *ipc_send_request_wrapper(void *request, const char *operation, int slot) {
    return send(request, operation, slot, nullptr, default_timeout_ms, false);
}

std::uint8_t *ipc_send_request_wrapper_custom_timeout(void *request, const char *operation, int slot,
                                                      int timeout_ms) {
    return send(request, operation, slot, nullptr, timeout_ms, false);
}

std::uint8_t *ipc_send_request_wrapper_with_result(void *request, const char *operation, int slot,
                                                   int *result) {
    return send(request, operation, slot, result, default_timeout_ms, false);
}

std::uint8_t *ipc_send_request_wrapper_with_result_custom_timeout(void *request, const char *operation,
                                                                  int slot, int *result, int timeout_ms) {
    return send(request, operation, slot, result, timeout_ms, false);
}

std::uint8_t *ipc_send_request_wrapper_for_stat(void *request, const char *operation, int slot) {
    return send(request, operation, slot, nullptr, default_timeout_ms, true);
}

namespace tarn {

Answer whole_answer(Answer answer, const char *operation, std::size_t minimum) {
    if (!answer || answer.held_from(0, minimum) == minimum) {
        return answer;
    }
    log_add(log_error, "%s : short answer, %zu bytes of %zu\n", operation, answer.held_from(0, minimum),
            minimum);
    return Answer(nullptr);
}

}  // namespace tarn
