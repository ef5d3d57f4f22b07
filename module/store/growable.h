// A growable array inside a slot database, from the system's heap (the block allocator cannot resize). Plain
// data, so that a cleared database holds empty arrays.
#ifndef TARN_MODULE_STORE_GROWABLE_H
#define TARN_MODULE_STORE_GROWABLE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace tarn {

template <std::size_t Size>
struct Growable {
    std::uint8_t *bytes;
    std::size_t capacity;  // elements

    // Makes room for exactly `elements`. False without memory; the old array stays as it is.
    bool resize(std::size_t elements) {
        if (elements == 0) {
            release();
            return true;
        }
        void *moved = std::realloc(bytes, elements * Size);
        if (moved == nullptr) {
            return false;
        }
        bytes = static_cast<std::uint8_t *>(moved);
        capacity = elements;
        return true;
    }

    void release() {
        std::free(bytes);
        bytes = nullptr;
        capacity = 0;
    }

    [[nodiscard]] std::uint8_t *at(std::size_t index) const { return bytes + index * Size; }
};

}  // namespace tarn

#endif
