// Where a card's contents come from: values that depend on the seed, the slot and what they are for, and on
// nothing else. The same scenario therefore gives the same chassis, and changing one card, or one count,
// leaves everything else as it was.
#ifndef TARN_CHASSIS_STATE_GENERATOR_H
#define TARN_CHASSIS_STATE_GENERATOR_H

#include <cstdint>
#include <string_view>

namespace tarn::chassis {

// A bijective mix of 64 bits.
constexpr std::uint64_t mix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15U;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9U;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBU;
    return x ^ (x >> 31);
}

// The values of one item, for example of ONT 5 of a card: every call gives the next one.
class Generator {
  public:
    Generator(std::uint64_t seed, int slot, std::string_view topic, std::uint64_t item)
        : state_(mix(mix(seed) ^ static_cast<std::uint64_t>(slot))) {
        for (const char c : topic) {
            state_ = mix(state_ ^ static_cast<std::uint8_t>(c));
        }
        state_ = mix(state_ ^ item);
    }

    std::uint64_t bits() { return state_ = mix(state_); }
    // From low to high, both included.
    std::int64_t between(std::int64_t low, std::int64_t high) {
        return low + static_cast<std::int64_t>(bits() % static_cast<std::uint64_t>(high - low + 1));
    }
    bool chance(int percent) { return between(0, 99) < percent; }

  private:
    std::uint64_t state_;
};

}  // namespace tarn::chassis

#endif
