// General settings of how a card's switch queues traffic.
#include "module/tables/tarnSwitch/qos_commit.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

// Only a value of the wrong type is held against the range of the queues.
int check_value_0(const Binding *value) {
    const int error = netsnmp_check_vb_uint(value);
    if (error == SNMP_ERR_NOERROR || value->type != ASN_INTEGER) {
        return error;
    }
    const long number = *value->val.integer;
    return number < 0 || number >= switch_qos::queues ? SNMP_ERR_WRONGVALUE : error;
}

constexpr Column columns[] = {
    {2, unsigned32, field(switch_qos::value_0), checked_by(check_value_0)},
    {3, integer, field(switch_qos::value_64), integer_in(0, 3)},
    {4, integer, truth(switch_qos::flag_65), integer_in(1, 2)},
};

EditedSlots edited;

constexpr Table table{
    .index = slot_index,
    .columns = columns,
    .rows = found_record_of_slot<qos_section>,
    .writes = edits_qos<edited>,
    .answers = row_when_acting.with(reserving, no_row_data, SNMP_NOSUCHOBJECT)
                   .with(acting, no_row_data, SNMP_NOSUCHINSTANCE),
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnQOSConfigTable, table)
