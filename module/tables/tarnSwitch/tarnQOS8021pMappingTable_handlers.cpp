// The IEEE 802.1p priorities of each queue.
#include "module/switch/switch_ports.h"
#include "module/tables/tarnSwitch/qos_mapping.h"
#include "wire/records/switch.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(tarnQOS8021pMappingTable,
                      QosMapping<switch_qos::priority_mask, blade_convert_802_8bit_mask_to_snmp,
                                 switch_qos::last_priority_queue>::table())
