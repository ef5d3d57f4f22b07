// The values of the ONT templates; a column has the number of the ONT configuration's column that it is for.
#include "module/tables/tarnONT/ont_config_rows.h"
#include "module/tables/tarnONT/ont_template_rows.h"

using namespace tarn;
using namespace tarn::ont_template;

namespace {

// Clears ten octets of the eleven, then copies.
int set_password(Row &row, const Binding &value) {
    store_text(row.record, text_at(password.offset, 10),
               {reinterpret_cast<const char *>(value.val.string), value.val_len});
    return SNMP_ERR_NOERROR;
}

// Only the flag: the other octets of a new template are what the record held.
int set_row_status(Row &row, const Binding &value) {
    if (*value.val.integer == create_and_go || *value.val.integer == destroy) {
        store_integer(row.record, in_use, *value.val.integer == create_and_go ? 1 : 0);
    }
    return SNMP_ERR_NOERROR;
}

constexpr Source service_325(int service) {
    return profile(service_profile_325.at(service, service_profile_size));
}
constexpr Source service_389(int service) {
    return profile(service_profile_389.at(service, service_profile_size));
}

constexpr Column columns[] = {
    {2, octet_string, field(name), octets_up_to(15)},
    {3, octet_string, field(description), octets_up_to(255)},
    {4, octet_string, field(octets_278), octets_of(8)},
    {6, octet_string, field(password), octets_up_to(10), set_password},
    {7, integer, truth(flag_301), any_integer},
    {9, unsigned32, profile(profile_461), any_unsigned32},
    {11, unsigned32, service_325(0), any_unsigned32},
    {12, unsigned32, service_325(1), any_unsigned32},
    {13, unsigned32, service_325(2), any_unsigned32},
    {14, unsigned32, service_325(3), any_unsigned32},
    {15, unsigned32, service_325(4), any_unsigned32},
    {16, unsigned32, service_325(5), any_unsigned32},
    {17, unsigned32, service_325(6), any_unsigned32},
    {18, unsigned32, service_325(7), any_unsigned32},
    {19, unsigned32, profile(profile_321), any_unsigned32},
    {22, integer, truth(flag_305), any_integer},
    {23, unsigned32, service_389(0), any_unsigned32},
    {24, unsigned32, service_389(1), any_unsigned32},
    {25, unsigned32, service_389(2), any_unsigned32},
    {26, unsigned32, service_389(3), any_unsigned32},
    {27, unsigned32, service_389(4), any_unsigned32},
    {28, unsigned32, service_389(5), any_unsigned32},
    {29, unsigned32, service_389(6), any_unsigned32},
    {30, unsigned32, service_389(7), any_unsigned32},
    {31, unsigned32, profile(profile_453), any_unsigned32},
    {32, integer, field(value_465), integer_in(0, 3)},
    {37, unsigned32, field(value_309), any_unsigned32},
    {38, unsigned32, field(value_315), any_unsigned32},
    {39, integer, truth(flag_469), any_integer},
    {100, integer, constant(1), any_integer, set_row_status, true},
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTTemplateValuesTable, template_table<1>(columns, SNMP_ERR_NOERROR))
