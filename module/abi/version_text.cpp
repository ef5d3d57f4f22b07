#include "module/abi/version_text.h"

namespace {

char sm_version[64];

}  // namespace

char *get_sm_version(void) {
    return sm_version;
}

void init_common(void) {}
