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

// A module need not describe its tables.
void compare_columns(const TableSchema &schema, const Module &module) {
    auto *describe = module.function<describe_table_function>("mod_describe_table");
    if (describe == nullptr) {
        return;
    }
    std::vector<column_description> columns(describe(schema.name.c_str(), nullptr, 0));
    (void)describe(schema.name.c_str(), columns.data(), columns.size());
    if (const std::string difference = column_difference(schema, columns);
        !columns.empty() && !difference.empty()) {
        log_add(log_level::warning, "%s: the MIB is not the module's: %s\n", schema.name.c_str(),
                difference.c_str());
    }
}

}  // namespace

std::string column_difference(const TableSchema &schema, std::span<const column_description> columns) {
    auto served = columns.begin();
    for (const Column &column : schema.columns) {
        const std::string name = "column " + std::to_string(column.number);
        if (served != columns.end() && served->number < column.number) {
            return "column " + std::to_string(served->number) + " is not in the MIB";
        }
        if (served == columns.end() || served->number != column.number) {
            return name + " is not the module's";
        }
        if (served->type != column.type) {
            return name + " has another type";
        }
        if (column.writable && served->writable == 0) {
            return name + " cannot be written";
        }
        ++served;
    }
    return served == columns.end() ? "" : "column " + std::to_string(served->number) + " is not in the MIB";
}

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
        compare_columns(schema, module);
        bound.push_back({std::move(schema), callbacks});
    }
    return bound;
}

}  // namespace tarn::host
