#include "module/operations/firmware_update.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

#include "module/common/log.h"
#include "module/config/ont_config_store.h"
#include "module/store/cached_query.h"
#include "wire/records/ont.h"
#include "wire/records/ont_config.h"

using namespace tarn;

namespace {

// The request that updates one ONT.
using UpdateRequest = Request<438>;
constexpr std::size_t channel_at = 32;
constexpr std::size_t ont_number_at = 33;
constexpr std::size_t file_name_at = 37;
constexpr std::size_t longest_file_name = 127;
constexpr std::size_t tftp_path_at = 165;
constexpr std::size_t image_size_at = 421;
constexpr std::size_t image_crc_at = 425;

constexpr int directory_size = 63;  // of the buffers that the host fills
constexpr int ont_firmware = 3;     // the kind of TFTP path

struct Image {
    std::uint32_t size = 0;  // bytes
    std::uint32_t crc = 0;
};

// False where the ONT is not in the configuration.
bool address_ont(UpdateRequest &request, int slot, const std::uint8_t *serial) {
    const int index = get_ont_config_index_by_serial(slot, serial);
    if (index < 0 || index >= ont_not_found) {
        return false;
    }
    request.put(channel_at, static_cast<std::uint8_t>(index / ont_config::onts_per_channel));
    request.put(ont_number_at, static_cast<std::uint32_t>(index % ont_config::onts_per_channel));
    return true;
}

// Whether a part of the path leads back up.
bool leads_up(std::string_view path) {
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (path.substr(0, end) == "..") {
            return true;
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return false;
}

// The open file, or -1 with errno.
int open_image(const std::string &directory, const char *file_name) {
    if (leads_up(file_name) || std::strlen(file_name) > longest_file_name) {
        errno = EACCES;
        return -1;
    }
    const int file = open((directory + "/" + file_name).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status {};
    if (file >= 0 && (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(file);
        errno = S_ISDIR(status.st_mode) ? EISDIR : EACCES;
        return -1;
    }
    return file;
}

// 0, or errno.
int measure(int file, Image &image) {
    std::uint8_t block[512];
    for (;;) {
        const ssize_t count = read(file, block, sizeof block);
        if (count == 0) {
            return 0;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        image.size += static_cast<std::uint32_t>(count);
        image.crc = static_cast<std::uint32_t>(crc32(image.crc, block, static_cast<uInt>(count)));
    }
}

// 0, or errno.
int read_image(const std::string &directory, const char *file_name, Image &image) {
    const int file = open_image(directory, file_name);
    if (file < 0) {
        return errno;
    }
    const int error = measure(file, image);
    close(file);
    return error;
}

}  // namespace

int update_olt_firmware(int slot) {
    return act(Request<32>(command::update_olt_firmware, destination::services), __func__, slot);
}

int mass_update_ont_firmware(int /*slot*/) {
    return 0;
}

int update_ont_firmware(int slot, const std::uint8_t *serial) {
    UpdateRequest request(command::update_ont_firmware, destination::services);
    if (!address_ont(request, slot, serial)) {
        log_add(log_error, "%s : unable to find ont id\n", __func__);
        return -1;
    }
    return act(request, __func__, slot);
}

int update_ont_firmware_via_OMCI(int slot, const std::uint8_t *serial, const char *file_name) {
    UpdateRequest request(command::update_ont_firmware, destination::services);
    if (!address_ont(request, slot, serial)) {
        log_add(log_error, "%s : unable to get ont id\n", __func__);
        return -1;
    }
    char root[directory_size + 1] = "";
    if (fsa_get_tftpboot_directory(root, directory_size, 0) != 0) {
        log_add(log_error, "%s : Can't get tftp path\n", __func__);
        return -1;
    }
    char path[directory_size + 1] = "";
    if (fsa_get_ont_firmware_tftppath(ont_firmware, path, directory_size) != 0) {
        log_add(log_error, "%s : Can't get ont firmware path\n", __func__);
        return -1;
    }
    Image image;
    if (const int error = read_image(std::string(root) + "/" + path, file_name, image); error != 0) {
        log_add(log_error, "%s : Open file error %d\n", __func__, error);
        return -1;
    }
    request.put_bytes(file_name_at, reinterpret_cast<const std::uint8_t *>(file_name),
                      std::strlen(file_name));
    request.put_bytes(tftp_path_at, reinterpret_cast<const std::uint8_t *>(path), std::strlen(path));
    request.put(image_size_at, image.size).put(image_crc_at, image.crc);
    int status = -1;
    const Answer answer(ipc_send_request_wrapper_with_result(request.bytes.data(), __func__, slot, &status));
    return answer ? 0 : status;
}
