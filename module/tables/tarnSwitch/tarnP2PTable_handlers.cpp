// Whether a card's switch lets its ports talk to each other. A card that does not answer a SET is not
// reported.
#include "module/tables/tarnSwitch/general_option.h"
#include "wire/records/switch.h"

using namespace tarn;

namespace {

constexpr Table table = GeneralOption<switch_general::p2p, SNMP_ERR_NOERROR>::table("tarnP2PTable");

}  // namespace

MODULE_ITERATOR_TABLE(tarnP2PTable, table)
