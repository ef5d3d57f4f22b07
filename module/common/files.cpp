#include "module/common/files.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

namespace tarn {

namespace {

const std::string &root() {
    static const std::string directory = [] {
        const char *named = std::getenv("TARN_ROOT");
        return std::string(named != nullptr ? named : "");
    }();
    return directory;
}

}  // namespace

std::string rooted(std::string_view path) {
    return root() + std::string(path);
}

bool is_regular_file(const std::string &path, bool links_too) {
    struct stat status {};
    const int result = links_too ? stat(path.c_str(), &status) : lstat(path.c_str(), &status);
    return result == 0 && S_ISREG(status.st_mode);
}

bool is_absent(const std::string &path) {
    struct stat status {};
    return lstat(path.c_str(), &status) != 0 && errno == ENOENT;
}

}  // namespace tarn
