#include "module/tables/scalars.h"

void init_tarnONTDisable_manual(void) {}

void deinit_tarnONTDisable_manual(void) {}
