// Which service profiles of the ONT templates override an ONT's own.
#include "module/tables/tarnONT/ont_template_rows.h"

using namespace tarn;
using namespace tarn::ont_template;

constexpr Column columns[] = {
    {2, integer, truth(service_profile_325_override), integer_in(1, 2)},
    {3, integer, truth(service_profile_389_override), integer_in(1, 2)},
};

MODULE_ITERATOR_TABLE(tarnONTTemplateServicesOverridesTable, template_table<services>(columns))
