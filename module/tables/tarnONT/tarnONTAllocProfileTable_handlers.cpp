// Alloc profiles.
#include "module/store/profile_sections.h"
#include "module/tables/tarnONT/profile_rows.h"

using namespace tarn;
using namespace tarn::alloc_profile;

namespace {

Transaction<CommitSet<count>> edited;
using Profiles = ProfileKind<get_alloc_profiles, add_alloc_profile, delete_alloc_profile, size,
                             &ProfileSections::alloc_stamp, edited>;

constexpr Column columns[] = {
    profile_number,
    profile_description,
    profile_name,
    {4, integer, field(value_278), any_integer},
    {5, integer, field(value_280), any_integer},
    {6, unsigned32, field(value_282), any_unsigned32},
    {7, unsigned32, field(value_286), any_unsigned32},
    {8, unsigned32, field(value_287), any_unsigned32},
    {9, unsigned32, field(value_291), any_unsigned32},
    {10, unsigned32, field(value_295), any_unsigned32},
    Profiles::row_status(20),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTAllocProfileTable,
                      Profiles::table<commit_row<edited, set_alloc_profile>>(columns))
