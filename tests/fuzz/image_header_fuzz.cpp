// Whatever an image begins with, its header is read within bounds; one that is accepted is written the same.
#include <algorithm>
#include <cstdlib>

#include "host/services/image_header.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::span<const std::uint8_t> image(data, size);
    const auto header = tarn::host::parse_image_header(image);
    if (!header) {
        return 0;
    }
    std::vector<std::uint8_t> written = tarn::host::make_image_header(*header);
    written[30] = data[30];  // not looked at
    written[31] = data[31];
    if (!std::ranges::equal(written, image.first(written.size()))) {
        std::abort();
    }
    return 0;
}
