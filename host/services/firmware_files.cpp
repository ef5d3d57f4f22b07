#include "host/services/firmware_files.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "host/services/image_header.h"
#include "host/services/logger.h"
#include "tarn/host_services.h"

namespace tarn::host {
namespace {

constexpr int ont_firmware = 3;  // the kind of TFTP path that is known

std::string root() {
    const char *named = std::getenv("TARN_ROOT");
    return named != nullptr ? named : "";
}

FirmwareDirectories directories = default_firmware_directories();

class FileDescriptor {
  public:
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() {
        if (number_ >= 0) {
            (void)close(number_);
        }
    }
    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] bool is_regular() const {
        struct stat status {};
        return number_ >= 0 && fstat(number_, &status) == 0 && S_ISREG(status.st_mode);
    }

  private:
    int number_;
};

// The number of bytes read, less than the size only at the end of the file; -1 on failure.
ssize_t read_block(const FileDescriptor &file, std::uint8_t *to, std::size_t size) {
    std::size_t held = 0;
    while (held < size) {
        const ssize_t count = read(file.number(), to + held, size - held);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        held += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(held);
}

// 0, or -1 where the text does not fit.
int copy_text(const std::string &text, char *buffer, int size) {
    if (size <= 0 || text.size() >= static_cast<std::size_t>(size)) {
        log_add(log_level::error, "%s: longer than %d bytes\n", text.c_str(), size - 1);
        return -1;
    }
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return 0;
}

std::string hexadecimal(const unsigned char *bytes, unsigned count) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

}  // namespace

FirmwareDirectories default_firmware_directories() {
    return {root() + "/mnt/fs/tools", "cpe"};
}

void set_firmware_directories(FirmwareDirectories chosen) {
    directories = std::move(chosen);
}

std::string image_directory() {
    return root() + "/mnt/fs/tools/cpe/";
}

}  // namespace tarn::host

using namespace tarn::host;

int fsa_get_tftpboot_directory(char *buffer, int size, int /*flags*/) {
    return copy_text(directories.tftp_root, buffer, size);
}

int fsa_get_ont_firmware_tftppath(int kind, char *buffer, int size) {
    return kind == ont_firmware ? copy_text(directories.ont_path, buffer, size) : -1;
}

int fsa_calc_md5sum(const char *path, char *buffer, int size) {
    const FileDescriptor file(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> sum(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!file.is_regular() || sum == nullptr || EVP_DigestInit_ex(sum.get(), EVP_md5(), nullptr) != 1) {
        return -1;
    }
    std::array<std::uint8_t, 65536> block{};
    ssize_t count = 0;
    while ((count = read_block(file, block.data(), block.size())) > 0) {
        if (EVP_DigestUpdate(sum.get(), block.data(), static_cast<std::size_t>(count)) != 1) {
            return -1;
        }
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (count < 0 || EVP_DigestFinal_ex(sum.get(), digest.data(), &length) != 1) {
        return -1;
    }
    return copy_text(hexadecimal(digest.data(), length), buffer, size);
}

int fp_GetHeaderInfo(const char *path, int /*reserved_1*/, int /*reserved_2*/, uint32_t *packed_version,
                     uint32_t *fourth_number, uint32_t *ignored, char **description) {
    const FileDescriptor file(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    std::array<std::uint8_t, image_fixed_header_size + longest_image_description> start{};
    const ssize_t count = file.is_regular() ? read_block(file, start.data(), start.size()) : -1;
    if (count < 0) {
        return -1;
    }
    const auto header = parse_image_header({start.data(), static_cast<std::size_t>(count)});
    char *text = header ? strdup(header->description.c_str()) : nullptr;
    if (text == nullptr) {
        return -1;
    }
    *packed_version = header->version;
    *fourth_number = header->fourth_number;
    *ignored = header->payload_size;
    *description = text;
    return 0;
}

// Never leaves the directory of the images, and never removes anything but a file or a link.
int hub_remove_cpe_firmware_file(const char *file_name) {
    const std::string_view name(file_name);
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string_view::npos) {
        log_add(log_level::error, "%s: not the name of an image\n", file_name);
        return -1;
    }
    const std::string path = image_directory();
    const FileDescriptor directory(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.number() < 0 || unlinkat(directory.number(), file_name, 0) != 0) {
        log_add(log_level::error, "%s%s: cannot be removed: %s\n", path.c_str(), file_name,
                std::strerror(errno));
        return -1;
    }
    log_add(log_level::information, "%s%s: removed\n", path.c_str(), file_name);
    return 0;
}

// The module asks for it before it updates an ONT, and leaves the result alone.
void *get_table_handlers(int /*slot*/) {
    return nullptr;
}
