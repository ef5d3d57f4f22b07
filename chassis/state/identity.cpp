#include "chassis/state/identity.h"

#include <string>

#include "chassis/state/generator.h"
#include "wire/protocol.h"
#include "wire/records/olt.h"

namespace tarn::chassis {
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
    put(identity.versions, board_versions::software, "3.38.1");
    put(identity.versions, board_versions::boot_loader, "1." + minor);
    put(identity.versions, board_versions::kernel, "2.0." + minor);
    put(identity.versions, board_versions::logic, "0." + minor);
    put(identity.hardware, board_hardware::type, "TARN-LC8");
    put(identity.hardware, board_hardware::serial_number,
        "LC" + std::to_string(generator.between(100000, 999999)));
    put(identity.hardware, board_hardware::revision, "rev " + minor);
    put(identity.hardware, board_hardware::place, "slot " + std::to_string(slot + 1));
    return identity;
}

}  // namespace tarn::chassis
