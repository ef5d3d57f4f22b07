// A trigger to update a line card's own firmware.
#include "module/operations/firmware_update.h"
#include "module/tables/slot_trigger_table.h"

MODULE_ITERATOR_TABLE(tarnOLTUpdateFirmwareTable,
                      tarn::slot_trigger_table<update_olt_firmware>(SNMP_NOSUCHOBJECT))
