// Shaping profiles. Their queues are out of reach here; see tarnONTShapingProfileUpstreamTable for the
// cross-connects.
#include "module/tables/tarnONT/profile_rows.h"
#include "wire/records/profile.h"

using namespace tarn;

constexpr Column columns[] = {
    profile_number,
    profile_description,
    profile_name,
    {4, integer, truth(shaping_profile::flag_278), any_integer},
    ShapingProfiles::row_status(10),
};

MODULE_ITERATOR_TABLE(tarnONTShapingProfileTable,
                      ShapingProfiles::table<commit_set<commit_shaping_profiles>>(columns))
