// A trigger to update the firmware of all ONTs of a line card.
#include "module/operations/firmware_update.h"
#include "module/tables/slot_trigger_table.h"

static constexpr tarn::Table table = tarn::slot_trigger_table<mass_update_ont_firmware>(
    "tarnONTMassUpdateFirmwareTable", SNMP_ERR_NOTWRITABLE);

MODULE_ITERATOR_TABLE(tarnONTMassUpdateFirmwareTable, table)
