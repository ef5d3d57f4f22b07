// Whatever stands in a parameter file, it is read within bounds, and what is written of it is read back
// equal.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "module/configfile/param_set.h"

using namespace tarn;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    std::FILE *from = fmemopen(const_cast<std::uint8_t *>(data), size, "r");
    ParamSet read;
    if (from == nullptr || ReadAllParams(from, read) != param_error::ok) {
        std::abort();
    }
    std::fclose(from);

    char *text = nullptr;
    std::size_t length = 0;
    std::FILE *to = open_memstream(&text, &length);
    if (to == nullptr || WriteAllParams(to, read) != param_error::ok) {
        std::abort();
    }
    ParamSet again{};
    std::fclose(to);
    from = length > 0 ? fmemopen(text, length, "r") : nullptr;
    if (from != nullptr) {
        ReadAllParams(from, again);
        std::fclose(from);
    }
    std::free(text);
    for (int i = 0; i < read.count; ++i) {
        const ParamEntry &entry = read.entries[static_cast<std::size_t>(i)];
        const char *value = GetValue(again, entry.name);
        // A name that begins a comment is one no longer; a line beyond 1023 characters is cut.
        const std::size_t room = 1022 - std::strlen(entry.name);
        if (entry.name[0] != '#' && (value == nullptr || std::strncmp(value, entry.value, room) != 0)) {
            std::abort();
        }
    }
    return 0;
}
