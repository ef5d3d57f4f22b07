#include "module/tables/scalars.h"

void init_tarnONTFirmwareUpdateViaOMCI_manual(void) {}

void deinit_tarnONTFirmwareUpdateViaOMCI_manual(void) {}
