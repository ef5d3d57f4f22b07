// Whether a card's switch snoops on IGMP.
#include "module/tables/tarnSwitch/general_option.h"
#include "wire/records/switch.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(tarnSwitchIGMPSnoopingTable,
                      GeneralOption<switch_general::igmp_snooping, SNMP_ERR_GENERR>::table())
