// The rules of the automatic ONT firmware updates.
#ifndef TARN_MODULE_STORE_AUTO_UPDATE_SECTIONS_H
#define TARN_MODULE_STORE_AUTO_UPDATE_SECTIONS_H

#include "module/store/sections.h"
#include "tarn/firmware_records.h"

namespace tarn {

struct AutoUpdateSections {
    std::array<AutoUpdateEntry *, 1024> auto_update_entries;  // balloc'ed
    std::uint32_t auto_update_count;
    Stamp auto_update_stamp;

    void release() {
        for (AutoUpdateEntry *&entry : auto_update_entries) {
            if (entry != nullptr) {
                bfree(__FILE__, __LINE__, entry);
                entry = nullptr;
            }
        }
    }
};

}  // namespace tarn

#endif
