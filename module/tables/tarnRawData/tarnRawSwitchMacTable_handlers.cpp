// The MAC addresses that a card's switch has learnt, as one text.
#include "module/store/switch_sections.h"
#include "module/switch/switch_mac_table.h"
#include "module/tables/tarnRawData/raw_text_table.h"

using namespace tarn;

MODULE_NEXTGEN_TABLE(
    tarnRawSwitchMacTable,
    RawTextTable<get_raw_switch_mac_table, SwitchSections, &SwitchSections::mac_text_length>::table(
        "tarnRawSwitchMacTable_append_index"))
