#include "module/config/ont_templates.h"

#include "module/config/config_buffer.h"
#include "module/store/cached_query.h"
#include "module/store/template_sections.h"
#include "wire/records/config_image.h"
#include "wire/records/template.h"

using namespace tarn;

std::uint8_t *get_ont_templates(void) {
    TemplateSections *db = chassis_sections<TemplateSections>();
    if (db == nullptr) {
        return nullptr;
    }
    refresh_from_image(chassis_slot::profiles, config_image::templates, db->templates[0].data(),
                       sizeof db->templates, db->templates_stamp);
    return db->templates[0].data();
}

int set_ont_template(int index, const std::uint8_t *template_record) {
    if (index < 0 || index >= ont_template::count) {
        return -1;
    }
    Request<payload + 2 + ont_template::size> request(command::set_ont_template, destination::configuration);
    request.put(payload, static_cast<std::uint16_t>(index))
        .put_bytes(payload + 2, template_record, ont_template::size);
    return act(request, __func__, chassis_slot::profiles);
}

void cleanup_templates_commit_needs(void) {
    if (TemplateSections *db = chassis_sections<TemplateSections>()) {
        db->templates_to_commit.reset();
    }
}

void add_template_to_commit(int index) {
    if (TemplateSections *db = chassis_sections<TemplateSections>()) {
        db->templates_to_commit.add(index);
    }
}

int commit_ont_templates(void) {
    TemplateSections *db = chassis_sections<TemplateSections>();
    if (db == nullptr) {
        return 0;
    }
    db->templates_stamp.clear();
    return db->templates_to_commit.commit([db](int index) {
        return set_ont_template(index, db->templates[static_cast<std::size_t>(index)].data());
    });
}
