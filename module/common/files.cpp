#include "module/common/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

namespace tarn {

namespace {

// Never destroyed: a download's thread may still ask for it while the process ends.
const std::string &root() {
    static const auto *directory = [] {
        const char *named = std::getenv("TARN_ROOT");
        return new std::string(named != nullptr ? named : "");
    }();
    return *directory;
}

// Closes without touching errno.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() {
        const int kept = errno;
        if (number_ >= 0) {
            close(number_);
        }
        errno = kept;
    }
    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool open() const { return number_ >= 0; }

  private:
    int number_;
};

// Where a chain of links leads; the last name need not exist.
std::string target_of(std::string path) {
    constexpr int longest_chain = 40;
    for (int link = 0; link < longest_chain; ++link) {
        char target[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), target, sizeof target);
        if (length < 0) {
            break;
        }
        const std::string_view name(target, static_cast<std::size_t>(length));
        path = name.starts_with('/') ? std::string(name)
                                     : path.substr(0, path.rfind('/') + 1) + std::string(name);
    }
    return path;
}

bool write_all(int file, std::string_view rest) {
    while (!rest.empty()) {
        const ssize_t count = write(file, rest.data(), rest.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

// What cannot be synchronised, a device, is as written as it gets.
bool write_and_sync(int file, std::string_view text) {
    return write_all(file, text) && (fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP);
}

Written write_over(const std::string &path, std::string_view text) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.open() || fstat(file.number(), &status) != 0) {
        return Written::not_opened;
    }
    if (!S_ISREG(status.st_mode)) {
        return write_and_sync(file.number(), text) ? Written::whole : Written::not_whole;
    }
    const auto size = static_cast<off_t>(text.size());
    const int no_room = size > status.st_size ? posix_fallocate(file.number(), 0, size) : 0;
    if (no_room != 0) {
        static_cast<void>(ftruncate(file.number(), status.st_size) == 0);
        errno = no_room;
        return Written::not_whole;
    }
    const bool whole = write_all(file.number(), text) && ftruncate(file.number(), size) == 0;
    return whole && fsync(file.number()) == 0 ? Written::whole : Written::not_whole;
}

void sync_directory(const std::string &directory) {
    const Descriptor opened(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.open()) {
        fsync(opened.number());
    }
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

Written replace_file(const std::string &path, std::string_view text) {
    const std::string target = target_of(path);
    struct stat old {};
    const bool exists = lstat(target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        return write_over(target, text);
    }
    // One that a sudden end left behind is no image to the catalogue.
    const std::string directory = target.substr(0, target.rfind('/') + 1);
    const std::string beside = directory + ".new-" + std::to_string(gettid()) + ".spec";
    unlink(beside.c_str());
    const Descriptor file(open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.open()) {
        return exists ? write_over(target, text) : Written::not_opened;
    }
    if (exists && (fchown(file.number(), old.st_uid, old.st_gid) != 0 ||
                   fchmod(file.number(), old.st_mode & 07777U) != 0)) {
        unlink(beside.c_str());
        return write_over(target, text);
    }
    if (write_and_sync(file.number(), text) && rename(beside.c_str(), target.c_str()) == 0) {
        sync_directory(directory.empty() ? "." : directory);
        return Written::whole;
    }
    const int reason = errno;
    unlink(beside.c_str());
    errno = reason;
    return Written::not_whole;
}

}  // namespace tarn
