#include "module/config/profiles.h"

#include <charconv>

#include "module/store/cached_query.h"
#include "module/store/profile_sections.h"
#include "wire/defaults.h"
#include "wire/records/profile.h"

using namespace tarn;

namespace {

// Where a kind is cached, its four commands and its defaults.
template <std::size_t Size, std::size_t Count>
struct Kind {
    Records<Size, Count> ProfileSections::*records;
    Stamp ProfileSections::*stamp;
    std::uint16_t get, add, set, remove;
    std::span<const Default> defaults;
};
template <std::size_t Size, std::size_t Count>
Kind(Records<Size, Count> ProfileSections::*, Stamp ProfileSections::*, std::uint16_t, std::uint16_t,
     std::uint16_t, std::uint16_t, std::span<const Default>) -> Kind<Size, Count>;

// The cached profile; null for a wrong index or without the database.
template <std::size_t Size, std::size_t Count>
std::uint8_t *cached(const Kind<Size, Count> &kind, int index) {
    ProfileSections *db = chassis_sections<ProfileSections>();
    const auto place = static_cast<std::size_t>(index);
    return db != nullptr && place < Count ? (db->*kind.records)[place].data() : nullptr;
}

template <std::size_t Size, std::size_t Count>
std::uint8_t *get(const Kind<Size, Count> &kind, const char *operation) {
    ProfileSections *db = chassis_sections<ProfileSections>();
    if (db == nullptr) {
        return nullptr;
    }
    std::uint8_t *records = (db->*kind.records)[0].data();
    refresh(records, Size * Count, db->*kind.stamp, Request<32>(kind.get, destination::configuration),
            operation, chassis_slot::profiles);
    return records;
}

// Sends a profile (`record` null: its index alone); when answered, the array is read again.
template <std::size_t Size, std::size_t Count, std::size_t Length>
int send(const Kind<Size, Count> &kind, Request<Length> request, int index, const std::uint8_t *record,
         const char *operation) {
    request.put(payload, static_cast<std::uint16_t>(index));
    if (record != nullptr) {
        request.put_bytes(payload + 2, record, Size);
    }
    if (act(request, operation, chassis_slot::profiles) != 0) {
        return -1;
    }
    (chassis_sections<ProfileSections>()->*kind.stamp).clear();
    return 0;
}

template <std::size_t Size, std::size_t Count>
int send_record(const Kind<Size, Count> &kind, std::uint16_t code, int index, const std::uint8_t *record,
                const char *operation) {
    return send(kind, Request<payload + 2 + Size>(code, destination::configuration), index, record,
                operation);
}

template <std::size_t Size, std::size_t Count>
int add(const Kind<Size, Count> &kind, int index, const char *operation) {
    std::uint8_t *record = cached(kind, index);
    if (record == nullptr || load_integer(record, profile_head::in_use) != 0) {
        return -1;
    }
    std::array<char, 12> name{};
    std::to_chars(name.data(), name.data() + name.size(), index);
    std::memset(record, 0, Size);
    store_integer(record, profile_head::in_use, 1);
    store_text(record, profile_head::name, name.data());
    write_defaults(record, kind.defaults);
    return send_record(kind, kind.add, index, record, operation);
}

template <std::size_t Size, std::size_t Count>
int set(const Kind<Size, Count> &kind, int index, const char *operation) {
    const std::uint8_t *record = cached(kind, index);
    return record != nullptr ? send_record(kind, kind.set, index, record, operation) : -1;
}

template <std::size_t Size, std::size_t Count>
int remove(const Kind<Size, Count> &kind, int index, const char *operation) {
    if (cached(kind, index) == nullptr ||
        send(kind, Request<payload + 2>(kind.remove, destination::configuration), index, nullptr,
             operation) != 0) {
        return -1;
    }
    (chassis_sections<ProfileSections>()->*kind.stamp).filled = false;  // the cached profile stays
    return 0;
}

}  // namespace

#define PROFILE_KIND(K)                                                                    \
    namespace {                                                                            \
    constexpr Kind K##_kind{&ProfileSections::K##_profiles, &ProfileSections::K##_stamp,   \
                            command::get_##K##_profiles,    command::add_##K##_profile,    \
                            command::set_##K##_profile,     command::delete_##K##_profile, \
                            K##_profile::defaults};                                        \
    }                                                                                      \
    std::uint8_t *get_##K##_profiles(void) {                                               \
        return get(K##_kind, __func__);                                                    \
    }                                                                                      \
    int add_##K##_profile(int index) {                                                     \
        return add(K##_kind, index, __func__);                                             \
    }                                                                                      \
    int set_##K##_profile(int index) {                                                     \
        return set(K##_kind, index, __func__);                                             \
    }                                                                                      \
    int delete_##K##_profile(int index) {                                                  \
        return remove(K##_kind, index, __func__);                                          \
    }                                                                                      \
    void init_##K##_profile(std::uint8_t *record) {                                        \
        write_defaults(record, K##_profile::defaults);                                     \
    }

PROFILE_KIND(management)
PROFILE_KIND(crossconnect)
PROFILE_KIND(shaping)
PROFILE_KIND(alloc)
PROFILE_KIND(ports)

namespace tarn {

CommitSet<shaping_profile::count> shaping_profiles_to_commit;
CommitSet<ports_profile::count> ports_profiles_to_commit;

}  // namespace tarn

void reset_shaping_profiles_commit_needs(void) {
    shaping_profiles_to_commit.reset();
}

void set_shaping_profile_to_commit(int index) {
    shaping_profiles_to_commit.add(index);
}

int commit_shaping_profiles(void) {
    return shaping_profiles_to_commit.commit(set_shaping_profile);
}

void reset_ports_profiles_commit_needs(void) {
    ports_profiles_to_commit.reset();
}

void set_ports_profile_to_commit(int index) {
    ports_profiles_to_commit.add(index);
}

int commit_ports_profiles(void) {
    return ports_profiles_to_commit.commit(set_ports_profile);
}

std::uint32_t profile_pon_to_snmp(std::uint16_t profile) {
    return profile;
}

std::uint16_t profile_snmp_to_pon(std::uint32_t value) {
    return static_cast<std::uint16_t>(value);
}
