// The DSCP code points of each queue.
#include "module/switch/switch_ports.h"
#include "module/tables/tarnSwitch/qos_mapping.h"
#include "wire/records/switch.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(tarnQOSDSCPMappingTable,
                      QosMapping<switch_qos::dscp_mask, blade_convert_dscp_64bit_mask_to_snmp,
                                 switch_qos::last_dscp_queue>::table())
