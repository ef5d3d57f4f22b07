// The interval over which the cards measure the traffic of their switch ports, one for the whole chassis. It
// is held in memory and goes to a card with every request for a port's utilization.
#include "module/store/utilization_sections.h"
#include "module/tables/frame/scalar.h"
#include "module/tables/scalars.h"

using namespace tarn;

namespace {

// The scalar stays registered when the chassis-wide stores stop; there is no interval then.
int get_interval(const Reply &reply) {
    const UtilizationSections *db = chassis_sections<UtilizationSections>();
    if (db == nullptr) {
        return SNMP_ERR_GENERR;
    }
    return reply.number(db->utilization_interval);
}

int check_interval(const Binding *value) {
    if (chassis_sections<UtilizationSections>() == nullptr) {
        return SNMP_ERR_GENERR;
    }
    return check_value(unsigned_within(0, 65535, SNMP_ERR_WRONGVALUE), value);
}

int set_interval(const Binding &value) {
    UtilizationSections *db = chassis_sections<UtilizationSections>();
    if (db == nullptr) {
        return SNMP_ERR_GENERR;
    }
    db->utilization_interval = static_cast<std::uint16_t>(*value.val.integer);
    return SNMP_ERR_NOERROR;
}

constexpr Scalar interval{"tarnPortsUtilizationInterval", unsigned32, get_interval,
                          checked_by(check_interval), set_interval};

}  // namespace

MODULE_SCALAR(tarnPortsUtilizationInterval, interval)
MODULE_SCALARS(tarnPortsUtilizationInterval, reset_nothing, tarnPortsUtilizationInterval_entry)
