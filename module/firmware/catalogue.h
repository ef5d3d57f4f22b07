// What the listing and the download share: the catalogue's owner and the directory's paths.
#ifndef TARN_MODULE_FIRMWARE_CATALOGUE_H
#define TARN_MODULE_FIRMWARE_CATALOGUE_H

#include <memory>
#include <string>
#include <string_view>

#include "tarn/firmware_records.h"

namespace tarn {

// The record that the host and the download thread see. Whoever holds the last reference destroys it, so that
// a download outlives the stop of the chassis-wide stores.
using Catalogue = std::shared_ptr<AcsFirmwareCache>;

// The current one; null while the chassis-wide stores are down.
Catalogue current_catalogue();

std::string firmware_path(std::string_view name);

// The part after the last "/" or "\".
std::string_view file_name_of(std::string_view path);

}  // namespace tarn

#endif
