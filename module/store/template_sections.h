// The ONT templates of the chassis.
#ifndef TARN_MODULE_STORE_TEMPLATE_SECTIONS_H
#define TARN_MODULE_STORE_TEMPLATE_SECTIONS_H

#include "module/store/commit_set.h"
#include "module/store/sections.h"
#include "wire/records/template.h"

namespace tarn {

struct TemplateSections {
    Records<ont_template::size, ont_template::count> templates;
    Stamp templates_stamp;
    CommitSet<ont_template::count> templates_to_commit;
};

}  // namespace tarn

#endif
