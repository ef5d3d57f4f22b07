// Switches the automatic firmware updates.
#include "module/operations/auto_update.h"
#include "module/tables/frame/scalar.h"
#include "module/tables/scalars.h"

using namespace tarn;

namespace {

int get_enabled(const Reply &reply) {
    return reply.number(get_ont_fw_autoupdate());
}

int set_enabled(const Binding &value) {
    const int result = set_ont_fw_autoupdate_enabled(static_cast<int>(*value.val.integer));
    return result == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR;
}

constexpr Scalar enabled{.name = "tarnONTAutoUpdateEnabled",
                         .type = integer,
                         .get = get_enabled,
                         .check = integer_in(0, 2),
                         .set = set_enabled,
                         .unknown_mode = SNMP_ERR_NOERROR};

}  // namespace

MODULE_SCALAR(tarnONTAutoUpdateEnabled, enabled)
MODULE_SCALARS(tarnONTAutoUpdateEnabled, reset_nothing, tarnONTAutoUpdateEnabled_entry)
