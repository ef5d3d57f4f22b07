// The tables by name, and what their descriptions say of their columns, for a host that compares it with its
// MIB.
#include <string_view>

#include "module/common/exports.h"
#include "module/tables/frame/registry.h"
#include "module/tables/frame/table.h"
#include "tarn/module_api.h"

using namespace tarn;

namespace tarn {

const Table *find_table(std::string_view name) {
    const auto *table = Registered<Table>::first;
    while (table != nullptr && name != table->description.name) {
        table = table->next;
    }
    return table != nullptr ? &table->description : nullptr;
}

}  // namespace tarn

TARN_EXPORT std::size_t mod_describe_table(const char *name, column_description *columns, std::size_t room) {
    const Table *table = find_table(name);
    if (table == nullptr) {
        return 0;
    }
    std::size_t count = 0;
    for (const Column &column : table->columns) {
        if (!is_readable(column)) {
            continue;
        }
        if (count < room) {
            columns[count] = {static_cast<std::uint32_t>(column.number), column.type,
                              static_cast<std::uint8_t>(is_writable(column) ? 1 : 0)};
        }
        ++count;
    }
    return count;
}
