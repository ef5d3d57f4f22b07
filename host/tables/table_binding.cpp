#include "host/tables/table_binding.h"

#include <algorithm>

#include "host/services/logger.h"

namespace tarn::host {
namespace {

TableCallbacks find_callbacks(const std::string &table, const Module &module) {
    return {module.function<next_index_function>(table + "_next_index"),
            module.function<module_handler_function>(table + "_module_handler"),
            module.function<get_next_entry_function>(table + "_get_next_entry"),
            module.function<table_handler_nextgen_function>(table + "_table_handler_nextgen")};
}

}  // namespace

std::vector<BoundTable> bind_tables(std::vector<TableSchema> schemas, const Module &module) {
    std::vector<BoundTable> bound;
    for (const std::string &name : module.table_names()) {
        const auto described =
            std::any_of(schemas.begin(), schemas.end(),
                        [&name](const TableSchema &schema) { return schema.name == name; });
        if (!described) {
            log_add(log_level::warning,
                    "%s: the module serves it, the MIB does not describe it; it is left out\n", name.c_str());
        }
    }
    for (TableSchema &schema : schemas) {
        const TableCallbacks callbacks = find_callbacks(schema.name, module);
        if (!callbacks.is_iterator() && !callbacks.is_nextgen()) {
            log_add(log_level::warning,
                    "%s: the MIB describes it, the module does not serve it; it is left out\n",
                    schema.name.c_str());
            continue;
        }
        if (auto *init = module.function<init_handlers_function>("init_" + schema.name + "_handlers");
            init != nullptr) {
            init();
        }
        bound.push_back({std::move(schema), callbacks});
    }
    return bound;
}

}  // namespace tarn::host
