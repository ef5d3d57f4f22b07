// The chassis-wide ONT profiles: five kinds, each an array of records (see the ..._profile descriptions) that
// is cached in the profiles database and edited there before a profile is sent.
#ifndef TARN_MODULE_CONFIG_PROFILES_H
#define TARN_MODULE_CONFIG_PROFILES_H

#include <cstdint>

#include "module/common/exports.h"
#include "module/store/commit_set.h"
#include "wire/records/profile.h"

// For each kind K, with an index of 0 up to the kind's number of profiles:
//   get_K_profiles    the array, refreshed when it has expired; null without the profiles database
//   add_K_profile     makes a profile with the kind's defaults and its index as its name; -1 without a
//                     request where the profile exists
//   set_K_profile     sends a profile as it is cached
//   delete_K_profile  deletes one on the chassis; the cached one stays until it is read again
//   init_K_profile    writes the kind's defaults into a cleared record
// The actions return 0, or -1 for a wrong index or without an answer.
#define TARN_PROFILE_OPERATIONS(K)                      \
    TARN_EXPORT std::uint8_t *get_##K##_profiles(void); \
    TARN_EXPORT int add_##K##_profile(int index);       \
    TARN_EXPORT int set_##K##_profile(int index);       \
    TARN_EXPORT int delete_##K##_profile(int index);    \
    TARN_EXPORT void init_##K##_profile(std::uint8_t *record);

TARN_PROFILE_OPERATIONS(management)
TARN_PROFILE_OPERATIONS(crossconnect)
TARN_PROFILE_OPERATIONS(shaping)
TARN_PROFILE_OPERATIONS(alloc)
TARN_PROFILE_OPERATIONS(ports)
#undef TARN_PROFILE_OPERATIONS

// The profiles that a SET has edited, of the two kinds that several tables edit: forget all, note one, send
// all in ascending order (-1 at the first failure, which leaves the later ones noted).
TARN_EXPORT void reset_shaping_profiles_commit_needs(void);
TARN_EXPORT void set_shaping_profile_to_commit(int index);
TARN_EXPORT int commit_shaping_profiles(void);
TARN_EXPORT void reset_ports_profiles_commit_needs(void);
TARN_EXPORT void set_ports_profile_to_commit(int index);
TARN_EXPORT int commit_ports_profiles(void);

// A profile index as SNMP shows it, and as a record holds it; "none" is 65535 in both.
TARN_EXPORT std::uint32_t profile_pon_to_snmp(std::uint16_t profile);
TARN_EXPORT std::uint16_t profile_snmp_to_pon(std::uint32_t value);

namespace tarn {

extern CommitSet<shaping_profile::count> shaping_profiles_to_commit;
extern CommitSet<ports_profile::count> ports_profiles_to_commit;

}  // namespace tarn

#endif
