// The download of an image from a TFTP server, in a thread of its own.
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <new>

#include "module/common/log.h"
#include "module/common/shell.h"
#include "module/firmware/acs_firmware_operations.h"
#include "module/firmware/catalogue.h"
#include "module/firmware/transfers.h"
#include "tarn/host_services.h"

using namespace tarn;

namespace {

constexpr const char *thread_proc = "acs_firmware_download_thread_proc";

struct DownloadRequest {
    std::string remote_path;
    std::string server;  // dotted
};

DownloadRequest request_of(const AcsFirmwareCache &cache) {
    const std::uint8_t *octets = cache.server_address;
    char server[16];
    std::snprintf(server, sizeof server, "%d.%d.%d.%d", octets[0], octets[1], octets[2], octets[3]);
    return {{cache.remote_path, strnlen(cache.remote_path, sizeof cache.remote_path)}, server};
}

std::string temporary_path(std::string_view name) {
    return "/tmp/" + std::string(name);
}

// What the TFTP client left: one plain file, not a link that somebody else put there.
bool is_plain_file(const std::string &path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}

// Fetches the file into /tmp. The lock is held by the caller and released while the transfer runs.
bool fetch(AcsFirmwareCache &cache, const DownloadRequest &request, const std::string &temporary) {
    pthread_mutex_unlock(&cache.lock);
    if (!is_plain_file(temporary)) {
        unlink(temporary.c_str());
    }
    const int status =
        run_transfer_command("cd /tmp; tftp -gr " + shell_word(request.remote_path) + " " + request.server);
    pthread_mutex_lock(&cache.lock);
    if (status != 0) {
        log_add(log_error, "%s : tftp result = %d\n", thread_proc, status);
    }
    return status == 0;
}

bool move_into_directory(const std::string &name, const std::string &temporary) {
    const std::string directory = firmware_path("");
    if (!is_plain_file(temporary) ||
        run_transfer_command("mv /tmp/" + shell_word(name) + " " + shell_word(directory)) != 0) {
        log_add(log_error, "%s : unable to move firmware\n", thread_proc);
        return false;
    }
    // The card's file system has no such user everywhere; the image is good all the same.
    static_cast<void>(run_transfer_command("chown admin " + shell_word(directory + "/" + name) + "\n"));
    renew_specific_sum(name);
    return true;
}

bool download(AcsFirmwareCache &cache, const DownloadRequest &request) {
    const std::string name(file_name_of(request.remote_path));
    if (!is_image_name(name)) {
        log_add(log_error, "%s : unable to determine filename\n", thread_proc);
        return false;
    }
    const std::string temporary = temporary_path(name);
    if (fetch(cache, request, temporary) && move_into_directory(name, temporary)) {
        return true;
    }
    unlink(temporary.c_str());
    // The TFTP client knows one separator only and may have named the file otherwise.
    const std::string fetched = request.remote_path.substr(request.remote_path.rfind('/') + 1);
    unlink(temporary_path(fetched).c_str());
    return false;
}

}  // namespace

void *acs_firmware_download_thread_proc(void *reference) {
    const std::unique_ptr<Catalogue> own(static_cast<Catalogue *>(reference));
    const Catalogue cache = own != nullptr ? *own : current_catalogue();
    if (cache == nullptr) {
        return nullptr;
    }
    const DownloadRequest request = request_of(*cache);
    const std::string report = (request.remote_path + " " + request.server).substr(0, 255);
    pthread_mutex_lock(&cache->lock);
    const bool succeeded = download(*cache, request);
    cache->download_state = succeeded ? acs_download_succeeded : acs_download_failed;
    pthread_mutex_unlock(&cache->lock);
    send_acs_firmware_download_trap(succeeded ? 0 : 1, report.c_str());
    return nullptr;
}

namespace {

// What a download's thread is given; a clean-up waits until it is gone.
struct Download {
    Transfer transfer;
    std::unique_ptr<Catalogue> catalogue;
};

void *download_thread(void *reference) {
    const std::unique_ptr<Download> download(static_cast<Download *>(reference));
    return acs_firmware_download_thread_proc(download->catalogue.release());
}

}  // namespace

int download_acs_firmware(void) {
    const Catalogue cache = current_catalogue();
    if (cache == nullptr) {
        return -1;
    }
    pthread_mutex_lock(&cache->lock);
    const bool running = cache->download_state == acs_download_running;
    if (!running) {
        cache->download_state = acs_download_running;
    }
    pthread_mutex_unlock(&cache->lock);
    if (running) {
        return -1;
    }
    std::unique_ptr<Download> own(new (std::nothrow) Download);
    if (own != nullptr) {
        own->catalogue.reset(new (std::nothrow) Catalogue(cache));
    }
    pthread_t thread{};
    if (own == nullptr || own->catalogue == nullptr ||
        pthread_create(&thread, nullptr, download_thread, own.get()) != 0) {
        log_add(log_error, "%s : unable to start the download\n", __func__);
        pthread_mutex_lock(&cache->lock);
        cache->download_state = acs_download_failed;
        pthread_mutex_unlock(&cache->lock);
        return -1;
    }
    static_cast<void>(own.release());
    pthread_detach(thread);
    return 0;
}
