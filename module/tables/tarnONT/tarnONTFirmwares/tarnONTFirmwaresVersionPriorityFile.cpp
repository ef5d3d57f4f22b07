#include "module/tables/scalars.h"

void init_tarnONTFirmwaresVersionPriorityFile_manual(void) {}

void deinit_tarnONTFirmwaresVersionPriorityFile_manual(void) {}
