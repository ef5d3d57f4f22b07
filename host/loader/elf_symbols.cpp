#include "host/loader/elf_symbols.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cstdint>

namespace tarn::host {
namespace {

// The number of dynamic symbols is told by nothing but the hash table: the last chain's last entry.
std::uint32_t symbol_count(const std::uint32_t *hash) {
    const std::uint32_t buckets = hash[0];
    const std::uint32_t first_hashed = hash[1];
    const std::uint32_t bloom_words = hash[2];
    const std::uint32_t *bucket = hash + 4 + bloom_words * (sizeof(ElfW(Addr)) / sizeof(std::uint32_t));
    const std::uint32_t *chain = bucket + buckets;
    std::uint32_t last = *std::max_element(bucket, bucket + buckets);
    if (last < first_hashed) {
        return first_hashed;
    }
    while ((chain[last - first_hashed] & 1U) == 0) {
        ++last;
    }
    return last + 1;
}

// A dynamic entry's address; the loader has made it absolute.
template <class T>
const T *at(const ElfW(Dyn) & entry) {
    return reinterpret_cast<const T *>(entry.d_un.d_ptr);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

std::vector<std::string_view> defined_symbols(void *handle) {
    link_map *map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, static_cast<void *>(&map)) != 0) {
        return {};
    }
    const ElfW(Sym) *symbols = nullptr;
    const char *strings = nullptr;
    const std::uint32_t *hash = nullptr;
    for (const ElfW(Dyn) *entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_SYMTAB) {
            symbols = at<ElfW(Sym)>(*entry);
        } else if (entry->d_tag == DT_STRTAB) {
            strings = at<char>(*entry);
        } else if (entry->d_tag == DT_GNU_HASH) {
            hash = at<std::uint32_t>(*entry);
        }
    }
    std::vector<std::string_view> names;
    if (symbols == nullptr || strings == nullptr || hash == nullptr || hash[0] == 0) {
        return names;
    }
    const std::uint32_t count = symbol_count(hash);
    for (std::uint32_t i = 0; i < count; ++i) {
        if (symbols[i].st_shndx != SHN_UNDEF) {
            names.emplace_back(strings + symbols[i].st_name);
        }
    }
    return names;
}

}  // namespace tarn::host
