// What becomes of a section that was sent to its card.
#ifndef TARN_MODULE_STORE_SENT_SECTION_H
#define TARN_MODULE_STORE_SENT_SECTION_H

#include "module/common/cache.h"

namespace tarn {

// The result of sending: what the card refused is dropped, so that it is not edited and sent again.
inline int settle(Stamp &section, int result) {
    if (result != 0) {
        section.drop();
    }
    return result;
}

}  // namespace tarn

#endif
