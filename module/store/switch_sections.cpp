#include "module/store/switch_sections.h"

#include <span>

namespace tarn {

namespace {

void release_vlans(std::span<std::uint8_t *> vlans) {
    for (std::uint8_t *&vlan : vlans) {
        if (vlan != nullptr) {
            bfree(__FILE__, __LINE__, vlan);
            vlan = nullptr;
        }
    }
}

}  // namespace

void SwitchSections::release() {
    release_vlans(vlans);
    release_vlans(operational_vlans);
    mac_table.release();
    mac_text.release();
}

}  // namespace tarn
