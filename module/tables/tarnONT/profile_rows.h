// What the tables of the chassis-wide profiles share: rows, the columns that every kind has, and a SET that
// edits cached profiles and sends each of them once.
#ifndef TARN_MODULE_TABLES_TARNONT_PROFILE_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_PROFILE_ROWS_H

#include "module/config/profiles.h"
#include "module/store/profile_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/profile.h"

namespace tarn {

// The index may be any number, so that creation and deletion answer for one that is out of range.
inline constexpr IndexPart profile_index[] = {number_part(any_unsigned)};

// A kind of profile as its tables use it; `Edited` is the transaction whose state are the profiles that a SET
// has edited. Number 0 of a row is the profile, number 1 in the tables of its entries the entry.
template <auto Get, auto Add, auto Delete, std::size_t Size, auto StampOf, auto &Edited>
struct ProfileKind {
    static constexpr int count = std::tuple_size_v<decltype(Edited.state.flags)>;

    template <int Entries, int Stride>
    using Rows = RecordsInUse<Get, Size, count, profile_head::in_use, Entries, Stride>;

    static Stamp *edited_stamp(const Row &row) {
        ProfileSections *db = chassis_sections<ProfileSections>();
        return db != nullptr && row.number[0] < count ? &(db->*StampOf) : nullptr;
    }
    // 6 deletes, anything else creates; both at once. A deleted profile is not sent again.
    static int set_row_status(Row &row, const Binding &value) {
        if (*value.val.integer == destroy) {
            Stamp *section = edited_stamp(row);
            const bool held = section != nullptr && section->held;
            if (Delete(item_of_number(row)) != 0) {
                return SNMP_ERR_GENERR;
            }
            section->held = held;  // by edits of other profiles
            Edited.state.remove(item_of_number(row));
            return SNMP_ERR_NOERROR;
        }
        const bool absent = row.record != nullptr && load_integer(row.record, profile_head::in_use) == 0;
        if (!absent) {
            return SNMP_ERR_NOCREATION;
        }
        edited_stamp(row)->held = true;  // it is edited, whether or not the card then takes it
        return Add(item_of_number(row)) == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_NOCREATION;
    }
    static constexpr Column row_status(int number) {
        return {number, integer, constant(1), any_integer, set_row_status, true};
    }

    // A table of `Entries` entries in each profile, `Stride` bytes apart; `Commit` sends what a SET has
    // edited.
    template <int Entries, int Stride, int (*Commit)(Row &)>
    static constexpr Table entries_table(Index index, std::span<const Column> columns) {
        return {
            .index = index,
            .columns = columns,
            .rows = rows_of<Rows<Entries, Stride>>,
            .writes = edits_section<Edited, edited_stamp, Commit>.deleting_at_once(),
            .answers = row_when_acting,
        };
    }
    // The table of the profiles themselves.
    template <int (*Commit)(Row &)>
    static constexpr Table table(std::span<const Column> columns) {
        return entries_table<1, 0, Commit>(profile_index, columns);
    }
};

inline constexpr Column profile_number{1, unsigned32, index_number(0, 0)};
inline constexpr Column profile_description{2, octet_string, field(profile_head::description),
                                            octets_up_to(255)};
inline constexpr Column profile_name{3, octet_string, field(profile_head::name), octets_up_to(15)};

// The commit of a whole set, whose flags say what is left to send.
template <int (*Commit)()>
int commit_set(Row & /*row*/) {
    return Commit() == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
}
// The commit of the row's own profile, once.
template <auto &Edited, int (*Set)(int)>
int commit_row(Row &row) {
    return Edited.state.commit_one(item_of_number(row), Set) == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
}

// The kinds that several tables edit.
inline Transaction<CommitSet<shaping_profile::count> &> edited_shaping_profiles{shaping_profiles_to_commit};
inline Transaction<CommitSet<ports_profile::count> &> edited_ports_profiles{ports_profiles_to_commit};
using ShapingProfiles =
    ProfileKind<get_shaping_profiles, add_shaping_profile, delete_shaping_profile, shaping_profile::size,
                &ProfileSections::shaping_stamp, edited_shaping_profiles>;
using PortsProfiles = ProfileKind<get_ports_profiles, add_ports_profile, delete_ports_profile,
                                  ports_profile::size, &ProfileSections::ports_stamp, edited_ports_profiles>;

}  // namespace tarn

#endif
