// A board request under construction and the answer to it.
#ifndef TARN_MODULE_COMMON_REQUEST_H
#define TARN_MODULE_COMMON_REQUEST_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "tarn/host_services.h"
#include "wire/protocol.h"

namespace tarn {

inline constexpr std::size_t payload = board_header::size;

// A cleared request of `Length` bytes, header included, with command, kind, destination and length set.
// Offsets of the payload are counted from the start of the request, as on the wire.
template <std::size_t Length>
struct Request {
    static_assert(Length >= board_header::size);
    std::array<std::uint8_t, Length> bytes{};

    Request(std::uint16_t command_code, std::uint8_t to) {
        store_integer(bytes.data(), board_header::command, command_code);
        store_integer(bytes.data(), board_header::kind, 1);
        store_integer(bytes.data(), board_header::destination, to);
        store_integer(bytes.data(), board_header::length, Length);
    }

    template <class T>
    Request &put(std::size_t offset, T value) {
        store_le(&bytes.at(offset), value);
        return *this;
    }

    Request &put_bytes(std::size_t offset, const std::uint8_t *from, std::size_t count) {
        std::memcpy(&bytes.at(offset), from, count);
        return *this;
    }
};

// An answer, freed when it goes out of scope under the name of the caller's file and line. What lies beyond
// the size that its header states reads as zero. A transport that states no size (less than a header) is
// trusted to have delivered the whole layout.
class Answer {
  public:
    explicit Answer(std::uint8_t *answer, const char *caller_file = __builtin_FILE(),
                    int caller_line = __builtin_LINE())
        : bytes(answer), file(caller_file), line(caller_line) {
        if (bytes != nullptr) {
            const std::size_t stated = load_le32(bytes + board_header::length.offset);
            limit = stated >= board_header::size ? stated : SIZE_MAX;
        }
    }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
    Answer(Answer &&other) noexcept
        : bytes(std::exchange(other.bytes, nullptr)),
          limit(other.limit),
          file(other.file),
          line(other.line) {}
    Answer &operator=(Answer &&) = delete;
    ~Answer() {
        if (bytes != nullptr) {
            bfree(file, line, bytes);
        }
    }

    explicit operator bool() const { return bytes != nullptr; }
    [[nodiscard]] const std::uint8_t *data() const { return bytes; }

    template <class T>
    [[nodiscard]] T get(std::size_t offset) const {
        std::array<std::uint8_t, sizeof(T)> field{};
        copy(field.data(), offset, field.size());
        return load_le<T>(field.data());
    }

    // Copies `count` bytes from `offset`; bytes that the answer does not hold become zero.
    void copy(std::uint8_t *to, std::size_t offset, std::size_t count) const {
        const std::size_t held = held_from(offset, count);
        std::memcpy(to, bytes + offset, held);
        std::memset(to + held, 0, count - held);
    }

    // How many whole records of `size` bytes stand from `offset`: `stated`, but no more than the answer
    // holds.
    [[nodiscard]] std::size_t records(std::size_t stated, std::size_t offset, std::size_t size) const {
        return held_from(offset, stated * size) / size;
    }

    // How many of the `count` bytes from `offset` the answer holds.
    [[nodiscard]] std::size_t held_from(std::size_t offset, std::size_t count) const {
        const std::size_t rest = offset < limit ? limit - offset : 0;
        return count < rest ? count : rest;
    }

  private:
    std::uint8_t *bytes;
    std::size_t limit = 0;
    const char *file;
    int line;
};

}  // namespace tarn

#endif
