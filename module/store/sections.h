// What the databases of slots and of the chassis are made of: cached answers, gathered by topic. A topic is a
// plain struct in a header of its own, ..._sections.h, all zero when nothing is known; where it holds memory
// it has a `release`. Nothing but slot_database.cpp sees the topics together.
#ifndef TARN_MODULE_STORE_SECTIONS_H
#define TARN_MODULE_STORE_SECTIONS_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "module/common/cache.h"

namespace tarn {

template <std::size_t Size>
using Record = std::array<std::uint8_t, Size>;
template <std::size_t Size, std::size_t Count>
using Records = std::array<Record<Size>, Count>;

// One cached answer.
template <std::size_t Size>
struct Section {
    Record<Size> record;
    Stamp stamp;
};
template <std::size_t Size, std::size_t Count>
using Sections = std::array<Section<Size>, Count>;

// Operations take a slot modulo 256.
constexpr int slot_byte(int slot) {
    return slot & 0xFF;
}

// A topic of a line card's slot, modulo 256; null for a slot that has no database. A topic of the chassis is
// the same at every slot.
template <class Topic>
Topic *slot_sections(int slot);
// A topic of the chassis; null without the profiles database.
template <class Topic>
Topic *chassis_sections();
// A topic of a slot's database as get_slot_mandb returns it.
template <class Topic>
Topic &sections_in(void *slot_database);

}  // namespace tarn

#endif
