// Text from outside inside a shell command.
#ifndef TARN_MODULE_COMMON_SHELL_H
#define TARN_MODULE_COMMON_SHELL_H

#include <string>
#include <string_view>

namespace tarn {

// The word as the shell must read it to get it back unchanged. A word of harmless bytes stays as it is.
std::string shell_word(std::string_view text);

}  // namespace tarn

#endif
