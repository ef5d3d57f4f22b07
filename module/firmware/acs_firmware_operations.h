// The catalogue of ONT firmware images, their parameter files, and the download of a new image.
#ifndef TARN_MODULE_FIRMWARE_ACS_FIRMWARE_OPERATIONS_H
#define TARN_MODULE_FIRMWARE_ACS_FIRMWARE_OPERATIONS_H

#include <optional>
#include <string>
#include <string_view>

#include "module/common/exports.h"
#include "tarn/firmware_records.h"

TARN_EXPORT void init_acs_firmware_operations_manual(void);
// Does not wait for a download: its thread keeps the catalogue until it is done.
TARN_EXPORT void deinit_acs_firmware_operations_manual(void);
TARN_EXPORT void init_acs_firmware_operations(void);
// Null while the chassis-wide stores are down.
TARN_EXPORT AcsFirmwareCache *get_acs_firmware_cache(void);

// Texts that the caller frees with bfree; null without memory.
// The firmware directory, which ends in "/", followed by the name.
TARN_EXPORT char *get_acs_firmware_name(const char *name);
// `n` characters from `start`, or what there is of them.
TARN_EXPORT char *get_sub_str(const char *text, int start, int n);
// The part after the last "/" or "\"; null for a null path or one that ends with a separator.
TARN_EXPORT char *get_filename_from_path(const char *path);
// Whether the name is that of an image's parameter file.
TARN_EXPORT int check_if_spec_file(const char *name);

// Lists the directory again when the last listing is stale. At most 64 images.
TARN_EXPORT void get_files_list(void);

// Write, update and remove the parameter file of an image; 0 or -1. A name that leads out of the directory
// is refused, and so is a parameter file that is not a regular file.
TARN_EXPORT int create_specific_file(const char *file_name);
TARN_EXPORT int set_specific_parameters(int index);
TARN_EXPORT int delete_specific_file(const char *file_name);
// Removes an image of the catalogue, not its parameter file; 0 or -1.
TARN_EXPORT int remove_firmware_file(int index);

// Fetches remote_path from server_address into the directory, in a thread of its own, which reports its end
// with send_acs_firmware_download_trap. 0 when started, -1 when one is running or there is no catalogue.
TARN_EXPORT int download_acs_firmware(void);
// The thread's body; `catalogue` is the thread's own reference, or null for the current catalogue.
TARN_EXPORT void *acs_firmware_download_thread_proc(void *catalogue);

namespace tarn {

// Whether a text names a file of the firmware directory and nothing else.
bool is_firmware_file_name(std::string_view name);
// The same, and neither a parameter file nor the version priority file.
bool is_image_name(std::string_view name);
// The name in a record of the catalogue. One that fills its field may be the beginning of a longer name, and
// so another file's.
std::string_view listed_name(const AcsFirmwareFile &file);
bool may_be_cut(const AcsFirmwareFile &file);
// What an image's parameter file holds, and its way back; nothing where there is no such file. 0 or -1.
std::optional<std::string> specific_text(std::string_view name);
int restore_specific_text(std::string_view name, const std::optional<std::string> &text);
// Makes the next get_files_list read the directory.
void expire_files_list();
// The image was replaced: its side file, where there is one, states the new one's sum, or none.
void renew_specific_sum(std::string_view name);

}  // namespace tarn

#endif
