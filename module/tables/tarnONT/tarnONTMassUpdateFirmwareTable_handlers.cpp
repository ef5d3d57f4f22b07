// A trigger to update the firmware of all ONTs of a line card.
#include "module/operations/firmware_update.h"
#include "module/tables/slot_trigger_table.h"

MODULE_ITERATOR_TABLE(tarnONTMassUpdateFirmwareTable,
                      tarn::slot_trigger_table<mass_update_ont_firmware>(SNMP_ERR_NOTWRITABLE))
