// Which service profiles of the ONT templates override an ONT's own.
#include "module/tables/tarnONT/ont_template_rows.h"

using namespace tarn;
using namespace tarn::ont_template;

namespace {

constexpr Column columns[] = {
    {2, integer, truth(service_profile_325_override), integer_in(1, 2)},
    {3, integer, truth(service_profile_389_override), integer_in(1, 2)},
};

constexpr Table table = template_table<services>("tarnONTTemplateServicesOverridesTable", columns);

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTTemplateServicesOverridesTable, table)
