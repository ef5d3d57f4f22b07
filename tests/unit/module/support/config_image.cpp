#include "support/config_image.h"

#include <zlib.h>

#include <algorithm>

#include "wire/bytes.h"

std::uint8_t *ConfigImage::add_ont(int index, const std::string &serial) {
    std::uint8_t *record = ont(index);
    record[4] = 1;
    std::copy(serial.begin(), serial.end(), record + 264);
    return record;
}

Bytes ConfigImage::payload() const {
    const Bytes compressed = deflate_bytes(bytes);
    return image_payload(compressed, static_cast<std::uint32_t>(compressed.size()));
}

void ConfigImage::serve() const {
    board.answer(302, payload());
}

Bytes image_payload(const Bytes &compressed, std::uint32_t stated_length) {
    Bytes payload(1024004, 0);
    std::copy(compressed.begin(), compressed.end(), payload.begin());
    tarn::store_le32(&payload[1024000], stated_length);
    return payload;
}

Bytes deflate_bytes(const Bytes &plain) {
    uLongf size = compressBound(plain.size());
    Bytes compressed(size);
    compress2(compressed.data(), &size, plain.data(), plain.size(), 1);
    compressed.resize(size);
    return compressed;
}
