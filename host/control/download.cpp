#include "host/control/download.h"

#include <arpa/inet.h>
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <array>
#include <cstring>
#include <iterator>

#include "host/services/agent_thread.h"
#include "host/services/logger.h"
#include "tarn/firmware_records.h"
#include "tarn/host_services.h"
#include "tarn/mib_objects.h"

namespace tarn::host {
namespace {

using GetCache = AcsFirmwareCache *();
using Start = int();

constexpr oid trap_name[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
constexpr MibObject download_end = find_mib_object("tarnONTFirmwareDownloadEnd");
constexpr MibObject download_status = find_mib_object("tarnONTFirmwareDownloadStatus");
constexpr MibObject download_text = find_mib_object("tarnONTFirmwareDownloadText");

class CacheLock {
  public:
    explicit CacheLock(AcsFirmwareCache &cache) : cache_(cache) { (void)pthread_mutex_lock(&cache_.lock); }
    CacheLock(const CacheLock &) = delete;
    CacheLock &operator=(const CacheLock &) = delete;
    ~CacheLock() { (void)pthread_mutex_unlock(&cache_.lock); }

  private:
    AcsFirmwareCache &cache_;
};

AcsFirmwareCache *cache_of(const Module &module) {
    GetCache *get = module.function<GetCache>("get_acs_firmware_cache");
    return get != nullptr ? get() : nullptr;
}

// The running thread reads the request, so it is written between downloads only.
bool write_request(AcsFirmwareCache &cache, const in_addr &server, const std::string &path) {
    const CacheLock lock(cache);
    if (cache.download_state == acs_download_running) {
        return false;
    }
    std::memcpy(cache.server_address, &server, sizeof cache.server_address);
    std::memset(cache.remote_path, 0, sizeof cache.remote_path);
    std::memcpy(cache.remote_path, path.data(), path.size());
    return true;
}

void send_notification(int status, const std::string &text) {
    const long held = status;
    netsnmp_variable_list *variables = nullptr;
    (void)snmp_varlist_add_variable(&variables, trap_name, std::size(trap_name), ASN_OBJECT_ID,
                                    download_end.identifier.data(), download_end.length * sizeof(oid));
    // The values are the objects' only instances, .0.
    (void)snmp_varlist_add_variable(&variables, download_status.identifier.data(), download_status.length + 1,
                                    ASN_INTEGER, &held, sizeof held);
    (void)snmp_varlist_add_variable(&variables, download_text.identifier.data(), download_text.length + 1,
                                    ASN_OCTET_STR, text.data(), text.size());
    send_v2trap(variables);
    snmp_free_varbind(variables);
    log_add(log_level::information, "download of %s: %s\n", text.c_str(),
            status == 0 ? "succeeded" : "failed");
}

}  // namespace

bool start_download(const Module &module, const std::string &server, const std::string &path,
                    std::string &error) {
    AcsFirmwareCache *cache = cache_of(module);
    Start *start = module.function<Start>("download_acs_firmware");
    in_addr address{};
    if (cache == nullptr || start == nullptr) {
        error = "the module keeps no firmware";
    } else if (inet_pton(AF_INET, server.c_str(), &address) != 1) {
        error = server + ": not an IPv4 address";
    } else if (path.empty() || path.size() >= sizeof cache->remote_path ||
               path.find('\0') != std::string::npos) {
        error = "the path must have 1 to " + std::to_string(sizeof cache->remote_path - 1) + " bytes";
    } else if (!write_request(*cache, address, path) || start() != 0) {
        error = "a download is running";
    } else {
        return true;
    }
    return false;
}

std::string download_state(const Module &module) {
    constexpr std::array names = {"never started", "running", "succeeded", "failed"};
    AcsFirmwareCache *cache = cache_of(module);
    if (cache == nullptr) {
        return names[0];
    }
    const CacheLock lock(*cache);
    return cache->download_state < names.size() ? names[cache->download_state] : "unknown";
}

}  // namespace tarn::host

void send_acs_firmware_download_trap(int status, const char *text) {
    tarn::host::leave_for_agent(
        [status, report = std::string(text)] { tarn::host::send_notification(status, report); });
}
