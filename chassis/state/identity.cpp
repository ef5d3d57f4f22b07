#include "chassis/state/identity.h"

#include <string>

#include "chassis/state/generator.h"
#include "wire/protocol.h"
#include "wire/records/olt.h"

namespace tarn::chassis {
namespace {

template <std::size_t size>
void put_texts(RecordBytes<size> &record, std::size_t text_size, const std::string (&texts)[identity_texts]) {
    for (std::size_t i = 0; i < identity_texts; ++i) {
        put(record, text_at(static_cast<std::uint16_t>(i * text_size), static_cast<std::uint16_t>(text_size)),
            texts[i]);
    }
}

}  // namespace

Identity make_identity(std::uint64_t seed, int slot) {
    Generator generator(seed, slot, "identity", 0);
    const std::int64_t release = generator.between(1, 9);
    Identity identity;
    // Release; two IPv4 addresses and two pairs of numbers, each pair laid side by side, part by part.
    const std::int64_t words[16] = {0,
                                    release_numbers[1],
                                    release_numbers[2],
                                    release_numbers[3],
                                    192,
                                    10,
                                    168,
                                    20,
                                    slot,
                                    slot,
                                    1,
                                    1,
                                    0x3A,
                                    0x3B,
                                    release,
                                    release + 1};
    for (int n = 0; n < 16; ++n) {
        put(identity.olt, olt_state::word(n), words[n]);
    }
    const std::string minor = std::to_string(release);
    put_texts(identity.versions, version_text_size, {"3.38.1", "1." + minor, "2.0." + minor, "0." + minor});
    put_texts(identity.hardware, hardware_text_size,
              {"TARN-LC8", "LC" + std::to_string(generator.between(100000, 999999)), "rev " + minor,
               "slot " + std::to_string(slot)});
    return identity;
}

}  // namespace tarn::chassis
