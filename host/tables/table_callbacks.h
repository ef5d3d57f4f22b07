// The functions with which the module serves one table, in one of two styles.
#ifndef TARN_HOST_TABLES_TABLE_CALLBACKS_H
#define TARN_HOST_TABLES_TABLE_CALLBACKS_H

#include "tarn/module_api.h"

namespace tarn::host {

struct TableCallbacks {
    // Iterator style: rows are enumerated, a request comes with its row.
    next_index_function *next_index = nullptr;
    module_handler_function *module_handler = nullptr;
    // OID-exact style: rows are found from an instance's OID.
    get_next_entry_function *get_next_entry = nullptr;
    table_handler_nextgen_function *table_handler_nextgen = nullptr;

    [[nodiscard]] bool is_iterator() const { return next_index != nullptr && module_handler != nullptr; }
    [[nodiscard]] bool is_nextgen() const {
        return get_next_entry != nullptr && table_handler_nextgen != nullptr;
    }
};

}  // namespace tarn::host

#endif
