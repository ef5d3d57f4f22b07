#include "host/services/block_allocator.h"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <mutex>
#include <utility>

#include "host/services/logger.h"
#include "tarn/host_services.h"

namespace tarn::host {
namespace {

struct Usage {
    std::size_t count = 0;
    std::size_t bytes = 0;
};

// The file name is copied: the module's own text is gone once the module is unloaded.
using Site = std::pair<std::string, int>;
using Sites = std::map<Site, Usage>;

struct alignas(std::max_align_t) BlockHeader {
    Usage *usage;
    std::size_t size;
    std::uint64_t mark;
};

constexpr std::uint64_t block_mark = 0x7461726e626c6f63;

std::mutex sites_mutex;

// Never destroyed: a thread of the module may still free a block while the process ends.
Sites &sites() {
    static auto *all = new Sites;
    return *all;
}

Usage &usage_of(const char *file, int line) {
    // Rows are enumerated a hundred thousand at a time from one line: remember the last place.
    static const char *last_file = nullptr;
    static Site last_site;
    static Usage *last_usage = nullptr;
    if (last_usage != nullptr && file == last_file && line == last_site.second && last_site.first == file) {
        return *last_usage;
    }
    last_site = {file, line};
    last_file = file;
    last_usage = &sites()[last_site];
    return *last_usage;
}

}  // namespace

std::vector<OutstandingBlocks> outstanding_blocks() {
    const std::lock_guard lock(sites_mutex);
    std::vector<OutstandingBlocks> result;
    for (const auto &[site, usage] : sites()) {
        if (usage.count != 0) {
            result.push_back({site.first, site.second, usage.count, usage.bytes});
        }
    }
    return result;
}

std::size_t report_outstanding_blocks() {
    std::size_t blocks = 0;
    for (const OutstandingBlocks &site : outstanding_blocks()) {
        blocks += site.count;
        log_add(log_level::error, "%zu blocks of %zu bytes in all, allocated at %s:%d, were never freed\n",
                site.count, site.bytes, site.file.c_str(), site.line);
    }
    return blocks;
}

}  // namespace tarn::host

using namespace tarn::host;

void *balloc(const char *file, int line, size_t size) {
    if (size > SIZE_MAX - sizeof(BlockHeader)) {
        return nullptr;
    }
    auto *header = static_cast<BlockHeader *>(std::malloc(sizeof(BlockHeader) + size));
    if (header == nullptr) {
        return nullptr;
    }
    const std::lock_guard lock(sites_mutex);
    Usage &usage = usage_of(file == nullptr ? "?" : file, line);
    ++usage.count;
    usage.bytes += size;
    *header = {&usage, size, block_mark};
    return header + 1;
}

void bfree(const char *file, int line, void *pointer) {
    if (pointer == nullptr) {
        return;
    }
    auto *header = static_cast<BlockHeader *>(pointer) - 1;
    {
        const std::lock_guard lock(sites_mutex);
        if (header->mark != block_mark) {
            log_add(log_level::error,
                    "%s:%d frees what was not allocated or is already free; it is left alone\n",
                    file == nullptr ? "?" : file, line);
            return;
        }
        header->mark = 0;
        --header->usage->count;
        header->usage->bytes -= header->size;
    }
    std::free(header);
}
