#include "module/config/config_buffer.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>

#include "module/common/log.h"
#include "module/store/cached_query.h"
#include "wire/records/config_image.h"

using namespace tarn;

namespace {

std::uint8_t *config_buffer;

// Whose image the buffer holds, and how many bytes of it: none after a damaged one.
struct {
    int address;
    std::size_t size;
} buffered;

constexpr std::size_t max_compressed = config_image::compressed_length - payload;

// zlib writes straight into the buffer. It may end a little after it: card software of old inflated in steps
// of 1024 bytes, so an image that exceeds the buffer by less than the last step counts as whole.
constexpr std::size_t step = 1024;
constexpr std::size_t spill_size = step - config_image::size % step;

// Returns zlib's last code; Z_STREAM_END when the image is whole. `inflated` are the bytes in the buffer.
int inflate_image(const std::uint8_t *from, std::size_t count, std::size_t &inflated) {
    z_stream stream{};
    int code = inflateInit_(&stream, "1.2.5", sizeof stream);
    if (code != Z_OK || count == 0) {
        inflateEnd(&stream);
        return code;
    }
    stream.next_in = const_cast<Bytef *>(from);  // zlib only reads it
    stream.avail_in = static_cast<uInt>(count);
    stream.next_out = config_buffer;
    stream.avail_out = config_image::size;
    code = inflate(&stream, Z_NO_FLUSH);
    inflated = config_image::size - stream.avail_out;
    if (code == Z_OK && stream.avail_out == 0) {
        std::array<Bytef, spill_size> spill;
        stream.next_out = spill.data();
        stream.avail_out = spill_size;
        const int end = inflate(&stream, Z_NO_FLUSH);
        code = end == Z_BUF_ERROR ? code : end;
    }
    inflateEnd(&stream);
    return code;
}

// Fetches an image into the buffer; false when it did not come whole, which is logged.
bool fetch_image(int address, const char *operation) {
    const Request<32> request(command::get_all_config, destination::configuration);
    const Answer answer =
        ask(request, operation, address, config_image::compressed_length + sizeof(std::uint32_t));
    if (!answer) {
        return false;
    }
    const std::size_t stated = answer.get<std::uint32_t>(config_image::compressed_length);
    std::size_t inflated = 0;
    const int code = inflate_image(answer.data() + payload, std::min(stated, max_compressed), inflated);
    if (code != Z_STREAM_END) {
        log_add(log_error, "%s : decompression error : %d\n", operation, code);
        inflated = 0;
    }
    buffered = {address, inflated};
    return code == Z_STREAM_END;
}

bool buffer_missing(const char *operation) {
    if (config_buffer == nullptr) {
        log_add(log_error, "%s : memory allocation error\n", operation);
    }
    return config_buffer == nullptr;
}

}  // namespace

void init_config_buffer(void) {
    if (config_buffer != nullptr) {
        return;
    }
    // The system's allocator: the buffer is no answer and outlives every request. Cleared, because a card
    // that never answers has the buffer served as it is.
    config_buffer = static_cast<std::uint8_t *>(std::calloc(1, config_image::size));
    if (config_buffer == nullptr) {
        log_add(log_error, "%s : !!!!! MEMORY ALLOCATION ERROR !!!!!\n", __func__);
    }
}

void deinit_config_buffer(void) {
    std::free(config_buffer);
    config_buffer = nullptr;
    buffered = {};
}

std::uint8_t *get_all_config(int address) {
    if (!buffer_missing(__func__)) {
        fetch_image(slot_byte(address), __func__);
    }
    return config_buffer;
}

namespace tarn {

bool refresh_from_image(int address, std::size_t offset, std::uint8_t *to, std::size_t count, Stamp &stamp) {
    address = slot_byte(address);
    if (!stamp.expired()) {
        return false;
    }
    constexpr const char *operation = "get_all_config";
    if (buffer_missing(operation)) {
        return false;
    }
    const bool came = fetch_image(address, operation);
    stamp.set();
    const bool own = buffered.address == address && buffered.size >= offset + count;
    if (!own || (stamp.filled && !came)) {
        return false;
    }
    std::memcpy(to, config_buffer + offset, count);
    stamp.filled = came;
    return true;
}

}  // namespace tarn
