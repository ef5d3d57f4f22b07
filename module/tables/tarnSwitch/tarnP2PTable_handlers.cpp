// Whether a card's switch lets its ports talk to each other. A card that does not answer a SET is not
// reported.
#include "module/tables/tarnSwitch/general_option.h"
#include "wire/records/switch.h"

using namespace tarn;

MODULE_ITERATOR_TABLE(tarnP2PTable, GeneralOption<switch_general::p2p, SNMP_ERR_NOERROR>::table())
