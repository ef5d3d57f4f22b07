#include "module/tables/scalars.h"

void init_tarnONTAutoUpdateEnabled_manual(void) {}

void deinit_tarnONTAutoUpdateEnabled_manual(void) {}
