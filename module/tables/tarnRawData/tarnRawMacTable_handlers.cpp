// The addresses learnt behind a card's ONTs, as one text.
#include "module/operations/address_table.h"
#include "module/store/address_sections.h"
#include "module/tables/tarnRawData/raw_text_table.h"

using namespace tarn;

MODULE_NEXTGEN_TABLE(
    tarnRawMacTable,
    RawTextTable<get_global_ont_address_table_raw, AddressSections,
                 &AddressSections::address_text_length>::table("tarnRawMacTable_append_index"))
