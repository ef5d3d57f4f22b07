// Where the module's files are.
#ifndef TARN_MODULE_COMMON_FILES_H
#define TARN_MODULE_COMMON_FILES_H

#include <cstdint>
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

enum class Written : std::uint8_t { whole, not_opened, not_whole };

// Replaces what the file holds, in one step: the text is written beside it, brought to the disk and renamed,
// so that a full disk or a sudden end leaves the old text. A symbolic link is followed; mode and owner stay.
// Where the directory or the owner forbids that, the file itself is written over once there is room for the
// text; so is what is no regular file. errno says why it failed.
Written replace_file(const std::string &path, std::string_view text);

}  // namespace tarn

#endif
