// Downloads of firmware images: started for an operator, reported as a notification when they end.
#ifndef TARN_HOST_CONTROL_DOWNLOAD_H
#define TARN_HOST_CONTROL_DOWNLOAD_H

#include <string>

#include "host/loader/module_loader.h"

namespace tarn::host {

// Starts the download of `path` from the TFTP server with this IPv4 address. False, and the reason in
// `error`, when the request is wrong or a download is running.
bool start_download(const Module &module, const std::string &server, const std::string &path,
                    std::string &error);

// How the last one went: "never started", "running", "succeeded" or "failed".
std::string download_state(const Module &module);

}  // namespace tarn::host

#endif
