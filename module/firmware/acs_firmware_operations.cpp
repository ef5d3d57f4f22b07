#include "module/firmware/acs_firmware_operations.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <new>

#include "module/common/cache.h"
#include "module/common/files.h"
#include "module/common/log.h"
#include "module/configfile/configfile.h"
#include "module/configfile/param_set.h"
#include "module/firmware/catalogue.h"

using namespace tarn;

namespace {

Catalogue catalogue;

constexpr std::string_view directory = "/mnt/fs/tools/cpe/";
constexpr std::string_view version_priority_file = "versions-prio.txt";
constexpr std::string_view spec_suffix = ".spec";
constexpr int md5_digits = 32;
constexpr std::size_t longest_file_name = sizeof(AcsFirmwareFile::file_name) - 1;

void destroy(AcsFirmwareCache *cache) {
    pthread_mutex_destroy(&cache->lock);
    delete cache;
}

// Cuts the text to what the field holds before its NUL.
template <std::size_t Size>
void copy_text(char (&to)[Size], std::string_view text) {
    const std::size_t length = std::min(text.size(), Size - 1);
    std::memcpy(to, text.data(), length);
    std::memset(to + length, 0, Size - length);
}

char *new_text(std::string_view text, const char *caller, int line = __builtin_LINE()) {
    auto *copy = static_cast<char *>(balloc(__FILE__, line, text.size() + 1));
    if (copy == nullptr) {
        log_add(log_error, "%s : memory allocation error. Tried to allocate %d bytes\n", caller,
                static_cast<int>(text.size() + 1));
        return nullptr;
    }
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

std::string spec_path(std::string_view image) {
    return firmware_path(image) + std::string(spec_suffix);
}

bool is_spec_name(std::string_view name) {
    return name.size() > spec_suffix.size() && name.ends_with(spec_suffix);
}

// Runs a write of a parameter file, which is never written into a device.
template <class Write>
int write_spec(const std::string &path, const char *caller, Write write) {
    const std::uint32_t error =
        is_regular_file(path, true) || is_absent(path) ? write() : param_error::open_for_writing;
    if (error == param_error::ok) {
        return 0;
    }
    log_add(log_error, "%s : cf_SetParam() failed 1, err=%s(%d).\n", caller, cf_ErrorToStr(error),
            static_cast<int>(error));
    return -1;
}

std::string_view text_or_empty(const char *text) {
    return text != nullptr ? text : "";
}

// Logs and refuses a name that would lead elsewhere.
bool refuses_name(std::string_view name, const char *caller) {
    if (is_firmware_file_name(name)) {
        return false;
    }
    log_add(log_error, "%s : refused file name of %d bytes\n", caller, static_cast<int>(name.size()));
    return true;
}

void read_header(const std::string &path, AcsFirmwareFile &file) {
    std::uint32_t version = 0;
    std::uint32_t fourth = 0;
    std::uint32_t ignored = 0;
    char *description = nullptr;
    copy_text(file.version, "");
    copy_text(file.description, "");
    if (is_regular_file(path, true) &&
        fp_GetHeaderInfo(path.c_str(), 0, 0, &version, &fourth, &ignored, &description) == 0) {
        const auto [major, minor, release] = std::array{version >> 24, version >> 16 & 255, version & 65535};
        const int length =
            std::snprintf(file.version, sizeof file.version, "%u.%u.%u", major, minor, release);
        if (fourth != 0) {
            std::snprintf(file.version + length, sizeof file.version - static_cast<std::size_t>(length),
                          ".%i", static_cast<int>(fourth));
        }
        if (description != nullptr) {
            std::replace(description, description + std::strlen(description), '\n', ' ');
            copy_text(file.description, description);
        }
    }
    std::free(description);
}

void read_spec(const std::string &path, AcsFirmwareSpecific &spec) {
    ParamEntry vendor;
    ParamEntry equipment;
    ParamEntry version;
    ParamEntry md5;
    spec.has_spec = 0;
    const std::uint32_t error =
        is_regular_file(path, true)
            ? cf_GetParam(path.c_str(), "VENDOR", vendor.value, "EQUIPMENT_LIST", equipment.value,
                          "SOFTWARE_VERSION", version.value, "MD5_SUM", md5.value, nullptr)
            : param_error::open_for_reading;
    if (error == param_error::ok) {
        log_add(log_information, "%s : from spec!\n", "get_files_list");
        spec.has_spec = 1;
        copy_text(spec.software_version, version.value);
        copy_text(spec.vendor, vendor.value);
        copy_text(spec.equipment_list, equipment.value);
    } else if (error != param_error::open_for_reading) {
        log_add(log_error, "%s : unable to open %s : %d\n", "get_files_list", path.c_str(),
                static_cast<int>(error));
    }
}

}  // namespace

namespace tarn {

Catalogue current_catalogue() {
    return catalogue;
}

std::string firmware_path(std::string_view name) {
    return rooted(directory) + std::string(name);
}

std::string_view file_name_of(std::string_view path) {
    return path.substr(path.find_last_of("/\\") + 1);
}

bool is_firmware_file_name(std::string_view name) {
    return !name.empty() && name.size() <= longest_file_name && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\r\n\0", 4)) == std::string_view::npos;
}

bool is_image_name(std::string_view name) {
    return is_firmware_file_name(name) && !is_spec_name(name) && name != version_priority_file;
}

std::string_view listed_name(const AcsFirmwareFile &file) {
    return {file.file_name, strnlen(file.file_name, sizeof file.file_name)};
}

bool may_be_cut(const AcsFirmwareFile &file) {
    return listed_name(file).size() >= longest_file_name;
}

std::optional<std::string> specific_text(std::string_view name) {
    std::ifstream file(spec_path(name), std::ios::binary);
    if (refuses_name(name, __func__) || !file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

int restore_specific_text(std::string_view name, const std::optional<std::string> &text) {
    if (!text.has_value()) {
        return delete_specific_file(std::string(name).c_str());
    }
    expire_files_list();
    if (!refuses_name(name, __func__) && replace_file(spec_path(name), *text) == Written::whole) {
        return 0;
    }
    log_add(log_error, "%s : unable to restore %s\n", __func__, spec_path(name).c_str());
    return -1;
}

void renew_specific_sum(std::string_view name) {
    const std::string spec = spec_path(name);
    if (is_absent(spec)) {
        return;
    }
    char md5[md5_digits + 1];
    if (fsa_calc_md5sum(firmware_path(name).c_str(), md5, sizeof md5) != 0) {
        log_add(log_error, "%s : unable to calculate MD5 for %s\n", __func__, firmware_path(name).c_str());
        md5[0] = '\0';
    }
    static_cast<void>(
        write_spec(spec, __func__, [&] { return cf_SetParam(spec.c_str(), "MD5_SUM", md5, nullptr); }));
}

void expire_files_list() {
    if (catalogue != nullptr) {
        catalogue->files_stamp = {};
    }
}

}  // namespace tarn

void init_acs_firmware_operations(void) {}

void init_acs_firmware_operations_manual(void) {
    deinit_acs_firmware_operations_manual();
    auto *cache = new (std::nothrow) AcsFirmwareCache{};
    if (cache == nullptr) {
        log_add(log_error, "%s : memory allocation error. Tried to allocate %d bytes\n", __func__,
                static_cast<int>(sizeof(AcsFirmwareCache)));
        return;
    }
    pthread_mutex_init(&cache->lock, nullptr);
    catalogue = Catalogue(cache, destroy);
}

void deinit_acs_firmware_operations_manual(void) {
    if (catalogue == nullptr) {
        return;
    }
    pthread_mutex_lock(&catalogue->lock);
    pthread_mutex_unlock(&catalogue->lock);
    catalogue.reset();
}

AcsFirmwareCache *get_acs_firmware_cache(void) {
    return catalogue.get();
}

char *get_acs_firmware_name(const char *name) {
    return new_text(firmware_path(text_or_empty(name)), __func__);
}

char *get_sub_str(const char *text, int start, int n) {
    std::string_view part = "";
    if (text != nullptr && start >= 0 && n > 0) {
        part = text;
        part =
            part.substr(std::min(part.size(), static_cast<std::size_t>(start)), static_cast<std::size_t>(n));
    }
    return new_text(part, __func__);
}

char *get_filename_from_path(const char *path) {
    if (path == nullptr || std::string_view(path).ends_with('/') || std::string_view(path).ends_with('\\')) {
        return nullptr;
    }
    return new_text(file_name_of(path), __func__);
}

int check_if_spec_file(const char *name) {
    return is_spec_name(text_or_empty(name)) ? 1 : 0;
}

void get_files_list(void) {
    snmp_log(LOG_INFO, "%s : called\n", __func__);
    AcsFirmwareCache *cache = catalogue.get();
    if (cache == nullptr || check_cache(cache->files_stamp.tv_sec, cache->files_stamp.tv_nsec) == 0) {
        return;
    }
    const std::string path = firmware_path("");
    const std::unique_ptr<DIR, int (*)(DIR *)> opened(opendir(path.c_str()), closedir);
    if (opened == nullptr) {
        log_add(log_error, "%s : unable to open %s\n", __func__, path.c_str());
        return;
    }
    std::size_t n = 0;
    while (const dirent *entry = readdir(opened.get())) {
        const std::string_view name = entry->d_name;
        if (name == "." || name == ".." || name == version_priority_file || is_spec_name(name)) {
            continue;
        }
        if (n == TARN_FIRMWARE_IMAGES) {
            log_add(log_error, "%s : more than %d images in %s\n", __func__, TARN_FIRMWARE_IMAGES,
                    path.c_str());
            break;
        }
        copy_text(cache->files[n].file_name, name);
        read_header(firmware_path(name), cache->files[n]);
        read_spec(spec_path(cache->files[n].file_name), cache->specifics[n]);
        ++n;
    }
    cache->files_count = static_cast<std::uint8_t>(n);
    clock_gettime(CLOCK_MONOTONIC, &cache->files_stamp);
}

int create_specific_file(const char *file_name) {
    const std::string_view name = text_or_empty(file_name);
    if (refuses_name(name, __func__)) {
        return -1;
    }
    const std::string image = firmware_path(name);
    char md5[md5_digits + 1];
    if (!is_regular_file(image, true) || fsa_calc_md5sum(image.c_str(), md5, sizeof md5) != 0) {
        log_add(log_error, "%s : unable to calculate MD5 for %s\n", __func__, image.c_str());
        return -1;
    }
    const std::string spec = spec_path(name);
    const int result = write_spec(spec, __func__, [&] {
        return cf_SetParam(spec.c_str(), "VENDOR", "", "EQUIPMENT_LIST", "", "SOFTWARE_VERSION", "",
                           "MD5_SUM", md5, nullptr);
    });
    if (result == 0) {
        expire_files_list();
    }
    return result;
}

int set_specific_parameters(int index) {
    const auto position = static_cast<unsigned>(index);
    if (catalogue == nullptr || position >= TARN_FIRMWARE_IMAGES) {
        return -1;
    }
    const std::string_view name = listed_name(catalogue->files[position]);
    if (refuses_name(name, __func__)) {
        return -1;
    }
    const AcsFirmwareSpecific &specific = catalogue->specifics[position];
    const std::string spec = spec_path(name);
    return write_spec(spec, __func__, [&] {
        return cf_SetParam(spec.c_str(), "VENDOR", specific.vendor, "EQUIPMENT_LIST", specific.equipment_list,
                           "SOFTWARE_VERSION", specific.software_version, nullptr);
    });
}

int delete_specific_file(const char *file_name) {
    const std::string_view name = text_or_empty(file_name);
    if (refuses_name(name, __func__)) {
        return -1;
    }
    const int result = unlink(spec_path(name).c_str());
    expire_files_list();
    return result;
}

int remove_firmware_file(int index) {
    if (catalogue == nullptr || index < 0 || index >= catalogue->files_count) {
        return -1;
    }
    const AcsFirmwareFile &file = catalogue->files[index];
    const std::string_view name = listed_name(file);
    if (refuses_name(name, __func__) || may_be_cut(file)) {
        return -1;
    }
    const int result = unlink(firmware_path(name).c_str());
    expire_files_list();
    return result;
}
