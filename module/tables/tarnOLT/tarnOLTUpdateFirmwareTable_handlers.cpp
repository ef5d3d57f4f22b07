// A trigger to update a line card's own firmware.
#include "module/operations/firmware_update.h"
#include "module/tables/slot_trigger_table.h"

static constexpr tarn::Table table =
    tarn::slot_trigger_table<update_olt_firmware>("tarnOLTUpdateFirmwareTable", SNMP_NOSUCHOBJECT);

MODULE_ITERATOR_TABLE(tarnOLTUpdateFirmwareTable, table)
