// The addresses learnt behind a card's ONTs, as one text.
#include "module/operations/address_table.h"
#include "module/store/address_sections.h"
#include "module/tables/tarnRawData/raw_text_table.h"

using namespace tarn;

namespace {

constexpr Table table =
    RawTextTable<get_global_ont_address_table_raw, AddressSections,
                 &AddressSections::address_text_length>::table("tarnRawMacTable",
                                                               "tarnRawMacTable_append_index");

}  // namespace

MODULE_NEXTGEN_TABLE(tarnRawMacTable, table)
