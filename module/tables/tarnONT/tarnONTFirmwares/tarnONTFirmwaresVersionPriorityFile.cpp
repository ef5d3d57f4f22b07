// The file that says which firmware version goes before which, whole.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "module/common/files.h"
#include "module/common/log.h"
#include "module/tables/frame/scalar.h"
#include "module/tables/scalars.h"

using namespace tarn;

namespace {

constexpr std::string_view priority_file = "/mnt/fs/tools/cpe/versions-prio.txt";
constexpr const char *remount = "sudo mount /dev/mtdblock6 /mnt/ext/ -o remount,ro,exec,noatime";
constexpr std::size_t longest_read = 16384;
constexpr int longest_written = 16383;

// What was read or written last, which is the answer while there is no file.
char text[longest_read + 1];

int get_text(const Reply &reply) {
    const int file = open(rooted(priority_file).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) {
        std::size_t length = 0;
        ssize_t count = 0;
        while ((count = read(file, text + length, longest_read - length)) > 0) {
            length += static_cast<std::size_t>(count);
        }
        text[length] = '\0';
        close(file);
    }
    return reply.text(text);
}

int set_text(const Binding &value) {
    std::string written(reinterpret_cast<const char *>(value.val.string), value.val_len);
    std::copy(written.begin(), written.end(), text);
    text[written.size()] = '\0';
    if (!written.ends_with('\n')) {
        written += '\n';
    }
    const std::string path = rooted(priority_file);
    const Written result = replace_file(path, written);
    if (result != Written::whole) {
        log_add(log_error, "%s : unable to write %s : %s\n", "handle_tarnONTFirmwaresVersionPriorityFile",
                path.c_str(), std::strerror(errno));
    }
    if (result == Written::not_opened) {
        return SNMP_ERR_RESOURCEUNAVAILABLE;
    }
    // The partition is writable only as long as it must be. Elsewhere there is none to remount.
    static_cast<void>(std::system(remount) == 0);
    return result == Written::whole ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR;
}

constexpr Scalar priority{"tarnONTFirmwaresVersionPriorityFile", octet_string, get_text,
                          octets_up_to(longest_written), set_text};

void reset_text() {
    text[0] = '\0';
}

}  // namespace

MODULE_SCALAR(tarnONTFirmwaresVersionPriorityFile, priority)
MODULE_SCALARS(tarnONTFirmwaresVersionPriorityFile, reset_text, tarnONTFirmwaresVersionPriorityFile_entry)
