// Which values of the ONT templates override an ONT's own; a column has the number of its value's.
#include "module/tables/tarnONT/ont_template_rows.h"

using namespace tarn;
using namespace tarn::ont_template;

constexpr Column override_column(int number, Field flag) {
    return {number, integer, truth(flag), any_integer};
}
constexpr Column override_325(int number, int service) {
    return override_column(number, service_profile_325_override.at(service, service_profile_size));
}
constexpr Column override_389(int number, int service) {
    return override_column(number, service_profile_389_override.at(service, service_profile_size));
}

constexpr Column columns[] = {
    override_column(4, octets_278_override),
    override_column(6, password_override),
    override_column(7, flag_301_override),
    override_column(9, profile_461_override),
    override_325(11, 0),
    override_325(12, 1),
    override_325(13, 2),
    override_325(14, 3),
    override_325(15, 4),
    override_325(16, 5),
    override_325(17, 6),
    override_325(18, 7),
    override_column(19, profile_321_override),
    override_column(22, flag_305_override),
    override_389(23, 0),
    override_389(24, 1),
    override_389(25, 2),
    override_389(26, 3),
    override_389(27, 4),
    override_389(28, 5),
    override_389(29, 6),
    override_389(30, 7),
    override_column(31, profile_453_override),
    override_column(32, value_465_override),
    override_column(37, value_309_override),
    override_column(38, value_315_override),
    override_column(39, flag_469_override),
};

MODULE_ITERATOR_TABLE(tarnONTTemplateOverridesTable, template_table<1>(columns))
