// The two profiles of each service of the ONT templates.
#include "module/tables/tarnONT/ont_config_rows.h"
#include "module/tables/tarnONT/ont_template_rows.h"

using namespace tarn;
using namespace tarn::ont_template;

constexpr Column columns[] = {
    {2, unsigned32, profile(service_profile_325), any_unsigned32},
    {3, unsigned32, profile(service_profile_389), any_unsigned32},
};

MODULE_ITERATOR_TABLE(tarnONTTemplateServicesValuesTable, template_table<services>(columns))
