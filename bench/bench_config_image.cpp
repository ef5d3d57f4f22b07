// What the fetch of a configuration image costs, against zlib's one call for the same bytes.
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "chassis/state/card.h"
#include "chassis/state/scenario.h"
#include "module/config/config_buffer.h"
#include "support/scripted_board.h"
#include "wire/bytes.h"
#include "wire/records/config_image.h"

namespace {

constexpr double largest_ratio = 1.15;
constexpr int rounds = 40;

double cpu_seconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// The image of a card with all its 532 ONTs, as the simulated chassis sends it.
Bytes image_of_a_full_card() {
    tarn::chassis::CardPlan plan;
    plan.onts_per_channel.fill(128);
    tarn::chassis::Card card = tarn::chassis::make_card(tarn::chassis::default_scenario(), 0, plan);
    return tarn::chassis::image_payload(card.config.working(0).provisioning);
}

}  // namespace

int main() {
    const Bytes payload = image_of_a_full_card();
    const std::uint32_t compressed = tarn::load_le32(&payload.at(1024000));
    Bytes plain(tarn::config_image::size);
    board.answer(302, payload);
    init_config_buffer();

    // In turns, the cheapest of each: whatever else the machine does only adds to the cost.
    double fetch = std::numeric_limits<double>::max();
    double inflate = fetch;
    for (int round = 0; round < rounds; ++round) {
        const double start = cpu_seconds();
        get_all_config(0);
        const double fetched = cpu_seconds();
        uLongf size = plain.size();
        if (uncompress(plain.data(), &size, payload.data(), compressed) != Z_OK) {
            (void)std::fprintf(stderr, "the image can't be inflated\n");
            return EXIT_FAILURE;
        }
        const double inflated = cpu_seconds();
        fetch = std::min(fetch, fetched - start);
        inflate = std::min(inflate, inflated - fetched);
        board.sent.clear();
    }
    if (!std::equal(plain.begin(), plain.end(), get_all_config(0)) || !board.log.empty()) {
        (void)std::fprintf(stderr, "the fetched image is not the one that was sent\n");
        return EXIT_FAILURE;
    }
    std::printf("%u bytes compressed; fetch %.2f ms, zlib's one call %.2f ms; ratio %.2f (at most %.2f)\n",
                compressed, 1e3 * fetch, 1e3 * inflate, fetch / inflate, largest_ratio);
    return fetch / inflate <= largest_ratio ? EXIT_SUCCESS : EXIT_FAILURE;
}
