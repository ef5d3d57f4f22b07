#include "module/tables/scalars.h"

void init_tarnPortsUtilizationInterval_manual(void) {}

void deinit_tarnPortsUtilizationInterval_manual(void) {}
