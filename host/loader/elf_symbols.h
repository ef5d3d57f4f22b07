// What a loaded library exports.
#ifndef TARN_HOST_LOADER_ELF_SYMBOLS_H
#define TARN_HOST_LOADER_ELF_SYMBOLS_H

#include <string_view>
#include <vector>

namespace tarn::host {

// The names that the library defines and exports; they live as long as the library is loaded. Empty for a
// library without a GNU hash table. `handle` is dlopen's.
std::vector<std::string_view> defined_symbols(void *handle);

}  // namespace tarn::host

#endif
