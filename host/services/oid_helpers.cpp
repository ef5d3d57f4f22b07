#include "tarn/host_services.h"

void create_pair(struct oid_pair *pair, const netsnmp_variable_list *binding) {
    pair->name = binding->name;
    pair->length = binding->name_length;
}

int get_int_from_oid(const oid *name, size_t length, int position) {
    if (position < 0 || static_cast<size_t>(position) >= length) {
        return 0;
    }
    return static_cast<int>(static_cast<uint32_t>(name[position]));
}

int get_colnum_from_oid(const oid *name, size_t length) {
    constexpr int column_position = 12;
    return get_int_from_oid(name, length, column_position);
}
