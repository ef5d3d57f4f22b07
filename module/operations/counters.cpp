#include "module/operations/counters.h"

#include <algorithm>

#include "module/store/cached_query.h"

using namespace tarn;

namespace {

constexpr int no_direction = 3;

int request_counters(std::uint8_t *result, int slot, int module, int direction, int channel, int key,
                     int ont_id, const char *operation) {
    std::memset(result, 0, counters_result_size);
    Request<50> request(command::get_counters, destination::services);
    request.put(32, static_cast<std::uint16_t>(module))
        .put(34, static_cast<std::uint16_t>(direction))
        .put(36, static_cast<std::uint8_t>(channel))
        .put(37, static_cast<std::uint32_t>(key))
        .put(41, static_cast<std::uint32_t>(ont_id));
    const Answer answer =
        whole_answer(Answer(ipc_send_request_wrapper_for_stat(request.bytes.data(), operation, slot)),
                     operation, payload + 1);
    if (!answer) {
        return -1;
    }
    const std::size_t stated = answer.get<std::uint8_t>(payload);
    const std::size_t values = answer.records(std::min(stated, max_counter_values), payload + 1, 4);
    result[0] = static_cast<std::uint8_t>(values);
    answer.copy(result + 1, payload + 1, 4 * values);
    return 0;
}

}  // namespace

int abstract_counters_request(std::uint8_t *result, int slot, int module, int channel, int key, int ont_id) {
    return request_counters(result, slot, module, no_direction, channel, key, ont_id, __func__);
}

int abstract_counters_request_w_direction(std::uint8_t *result, int slot, int module, int direction,
                                          int channel, int key, int ont_id) {
    return request_counters(result, slot, module, direction, channel, key, ont_id, __func__);
}
