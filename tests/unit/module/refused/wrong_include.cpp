// A source of the store that includes what is above it: refused, as the store's include path does not lead
// there.
#include "module/store/sections.h"
#ifdef WRONG
// refused: module/operations/sessions.h: No such file
#include "module/operations/sessions.h"
#endif
