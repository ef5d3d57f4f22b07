// Where the module's files are.
#ifndef TARN_MODULE_COMMON_FILES_H
#define TARN_MODULE_COMMON_FILES_H

#include <string>
#include <string_view>

namespace tarn {

// An absolute path below the directory that the environment variable TARN_ROOT named when the first path was
// asked for; the path itself where there is no such variable.
std::string rooted(std::string_view path);

// Whether the path is a regular file; with links_too also a link to one.
bool is_regular_file(const std::string &path, bool links_too);
// Whether there is nothing of this name, not even a link that leads nowhere.
bool is_absent(const std::string &path);

}  // namespace tarn

#endif
