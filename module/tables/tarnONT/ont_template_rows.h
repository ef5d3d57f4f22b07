// What the tables of the ONT templates share: rows, and a SET that edits cached templates and sends each of
// them once. Number 0 of a row is the template, number 1 in the services' tables the service.
#ifndef TARN_MODULE_TABLES_TARNONT_ONT_TEMPLATE_ROWS_H
#define TARN_MODULE_TABLES_TARNONT_ONT_TEMPLATE_ROWS_H

#include "module/config/ont_templates.h"
#include "module/store/template_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/template.h"

namespace tarn {

// Both a service's profiles and their flags lie so far apart; entry 0 of a template is the template.
inline constexpr int template_stride = ont_template::service_profile_size;

// The templates that a SET creates, whichever of its variables come first; those that it edits are noted
// in the profiles database.
struct EditedTemplates {
    CommitSet<ont_template::count> created;

    static void add(int index) { add_template_to_commit(index); }
    void forget() {
        created.reset();
        cleanup_templates_commit_needs();
    }
};
inline Transaction<EditedTemplates> edited_templates;

template <int Entries>
using Templates = RecordsInUse<get_ont_templates, ont_template::size, ont_template::count,
                               ont_template::in_use, Entries, template_stride>;

inline bool template_in_use(const Row &row) {
    return load_integer(row.record - row.number[1] * template_stride, ont_template::in_use) != 0;
}

inline int stage_template(Row &row, const Column &column, const Binding &value) {
    const int index = item_of_number(row);
    const bool edited =
        chassis_sections<TemplateSections>()->templates_to_commit.contains(index);  // as one that it destroys
    if (!column.creates && !template_in_use(row) && !edited &&
        !edited_templates.state.created.contains(index)) {
        return SNMP_ERR_INCONSISTENTNAME;
    }
    return note_item<edited_templates, item_of_number>(row, column, value);
}

inline void foresee_template(const Row &row, const Column &column, const Binding &value) {
    if (column.creates && *value.val.integer == create_and_go) {
        edited_templates.state.created.add(item_of_number(row));
    }
}

inline Stamp *templates_stamp(const Row & /*row*/) {
    TemplateSections *db = chassis_sections<TemplateSections>();
    return db != nullptr ? &db->templates_stamp : nullptr;
}

inline int commit_templates(Row & /*row*/) {
    return commit_ont_templates() == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_COMMITFAILED;
}

inline constexpr IndexPart template_index[] = {number_part(ont_template::count)};
inline constexpr IndexPart template_service_index[] = {number_part(ont_template::count),
                                                       ordinal_part(ont_template::services)};

template <int Entries>
inline constexpr Writes edits_templates =
    edits_section<edited_templates, templates_stamp, commit_templates>
        .found_by(find_place_in<Templates<Entries>>)
        .foreseen_by(foresee_template)
        .staged_by(stage_template);

// A table with `Entries` rows a template; `refused` answers the action of a column that is not there.
template <int Entries>
constexpr Table template_table(std::span<const Column> columns, int refused = SNMP_ERR_NOTWRITABLE) {
    return {
        .index = Entries == 1 ? Index{template_index} : Index{template_service_index},
        .columns = columns,
        .rows = rows_of<Templates<Entries>>,
        .writes = edits_templates<Entries>,
        .answers = row_first.with(reserving, no_row, accepted).with(acting, no_column, refused),
    };
}

}  // namespace tarn

#endif
