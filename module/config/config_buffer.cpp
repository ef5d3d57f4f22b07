#include "module/config/config_buffer.h"

#include <cstdint>
#include <cstdlib>

#include "module/common/log.h"
#include "module/config/config_records.h"
#include "tarn/host_services.h"

using namespace tarn;

namespace {

std::uint8_t *config_buffer;

}  // namespace

void init_config_buffer(void) {
    if (config_buffer != nullptr) {
        return;
    }
    // The system's allocator: the buffer is no answer and outlives every request.
    config_buffer = static_cast<std::uint8_t *>(std::calloc(1, config_image::size));
    if (config_buffer == nullptr) {
        log_add(log_error, "%s : !!!!! MEMORY ALLOCATION ERROR !!!!!\n", __func__);
    }
}

void deinit_config_buffer(void) {
    std::free(config_buffer);
    config_buffer = nullptr;
}
