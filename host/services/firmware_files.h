// Where firmware lies, and what the module asks of its files: directories, sums, headers, removal.
#ifndef TARN_HOST_SERVICES_FIRMWARE_FILES_H
#define TARN_HOST_SERVICES_FIRMWARE_FILES_H

#include <string>

namespace tarn::host {

// The directories of a firmware update over OMCI: the images lie in `ont_path` below `tftp_root`. The module
// takes at most 62 bytes of each.
struct FirmwareDirectories {
    std::string tftp_root;
    std::string ont_path;
};

// The catalogue's directory, /mnt/fs/tools below TARN_ROOT and "cpe".
FirmwareDirectories default_firmware_directories();
void set_firmware_directories(FirmwareDirectories directories);

// The directory of the catalogue of images, below the directory that the environment variable TARN_ROOT
// names.
std::string image_directory();

}  // namespace tarn::host

#endif
