#include "module/firmware/acs_firmware_operations.h"

void init_acs_firmware_operations_manual(void) {}

void deinit_acs_firmware_operations_manual(void) {}
