#include "module/config/profiles.h"

#include <charconv>

#include "module/store/cached_query.h"
#include "module/store/profile_sections.h"
#include "wire/defaults.h"
#include "wire/records/profile.h"

using namespace tarn;

namespace {

// A kind and where it is cached.
template <std::size_t Size, std::size_t Count>
struct Cached {
    const ProfileDescription &kind;
    Records<Size, Count> ProfileSections::*records;
    Query<Stamp, ProfileSections> listed;
};

template <std::size_t Size, std::size_t Count>
constexpr Cached<Size, Count> cached_in(const ProfileDescription &kind,
                                        Records<Size, Count> ProfileSections::*records,
                                        Stamp ProfileSections::*stamp) {
    return {kind, records, {kind.list, destination::configuration, usual_pace, stamp}};
}

// The cached profile; null for a wrong index or without the database.
template <std::size_t Size, std::size_t Count>
std::uint8_t *profile_of(const Cached<Size, Count> &cached, int index) {
    ProfileSections *db = chassis_sections<ProfileSections>();
    const auto place = static_cast<std::size_t>(index);
    return db != nullptr && place < Count ? (db->*cached.records)[place].data() : nullptr;
}

template <std::size_t Size, std::size_t Count>
std::uint8_t *get(const Cached<Size, Count> &cached, const Caller &caller) {
    const auto take = [&cached](ProfileSections &profiles, const Answer &answer, const char * /*operation*/) {
        answer.copy((profiles.*cached.records)[0].data(), payload, Size * Count);
    };
    auto *profiles =
        refresh(cached.listed, chassis_slot::profiles, everything, payload + Size * Count, caller, take);
    return profiles != nullptr ? (profiles->*cached.records)[0].data() : nullptr;
}

// Sends a profile (`record` null: its index alone); when answered, the array is read again.
template <std::size_t Size, std::size_t Count, std::size_t Length>
int send(const Cached<Size, Count> &cached, Request<Length> request, int index, const std::uint8_t *record,
         const char *operation) {
    request.put(payload, static_cast<std::uint16_t>(index));
    if (record != nullptr) {
        request.put_bytes(payload + 2, record, Size);
    }
    if (act(request, operation, chassis_slot::profiles) != 0) {
        return -1;
    }
    (chassis_sections<ProfileSections>()->*cached.listed.place).clear();
    return 0;
}

template <std::size_t Size, std::size_t Count>
int send_record(const Cached<Size, Count> &cached, std::uint16_t code, int index, const std::uint8_t *record,
                const char *operation) {
    return send(cached, Request<payload + 2 + Size>(code, destination::configuration), index, record,
                operation);
}

template <std::size_t Size, std::size_t Count>
int add(const Cached<Size, Count> &cached, int index, const char *operation) {
    std::uint8_t *record = profile_of(cached, index);
    if (record == nullptr || load_integer(record, profile_head::in_use) != 0) {
        return -1;
    }
    std::array<char, 12> name{};
    std::to_chars(name.data(), name.data() + name.size(), index);
    std::memset(record, 0, Size);
    store_integer(record, profile_head::in_use, 1);
    store_text(record, profile_head::name, name.data());
    write_defaults(record, cached.kind.defaults);
    return send_record(cached, cached.kind.add, index, record, operation);
}

template <std::size_t Size, std::size_t Count>
int set(const Cached<Size, Count> &cached, int index, const char *operation) {
    const std::uint8_t *record = profile_of(cached, index);
    return record != nullptr ? send_record(cached, cached.kind.set, index, record, operation) : -1;
}

template <std::size_t Size, std::size_t Count>
int remove(const Cached<Size, Count> &cached, int index, const char *operation) {
    if (profile_of(cached, index) == nullptr ||
        send(cached, Request<payload + 2>(cached.kind.remove, destination::configuration), index, nullptr,
             operation) != 0) {
        return -1;
    }
    (chassis_sections<ProfileSections>()->*cached.listed.place).filled = false;  // the cached profile stays
    return 0;
}

}  // namespace

#define PROFILE_KIND(K)                                                                            \
    namespace {                                                                                    \
    constexpr auto K##_cached =                                                                    \
        cached_in(K##_profile::kind, &ProfileSections::K##_profiles, &ProfileSections::K##_stamp); \
    }                                                                                              \
    std::uint8_t *get_##K##_profiles(void) {                                                       \
        return get(K##_cached, __func__);                                                          \
    }                                                                                              \
    int add_##K##_profile(int index) {                                                             \
        return add(K##_cached, index, __func__);                                                   \
    }                                                                                              \
    int set_##K##_profile(int index) {                                                             \
        return set(K##_cached, index, __func__);                                                   \
    }                                                                                              \
    int delete_##K##_profile(int index) {                                                          \
        return remove(K##_cached, index, __func__);                                                \
    }                                                                                              \
    void init_##K##_profile(std::uint8_t *record) {                                                \
        write_defaults(record, K##_profile::defaults);                                             \
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
