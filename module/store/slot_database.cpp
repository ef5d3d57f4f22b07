#include "module/store/slot_database.h"

#include <cstdlib>
#include <span>
#include <type_traits>

#include "module/common/log.h"
#include "module/operations/address_table.h"
#include "module/operations/sessions.h"
#include "wire/protocol.h"

using namespace tarn;

namespace {

std::array<SlotDatabase *, chassis_slot::line_cards> mandb;
ProfilesDatabase *profiles_mandb;

constexpr int ageing_seconds = 120;

// Databases are cleared memory: every section empty, every stamp expired.
template <class Database>
Database *allocate_cleared() {
    static_assert(std::is_trivially_destructible_v<Database> && std::is_standard_layout_v<Database>);
    return static_cast<Database *>(std::calloc(1, sizeof(Database)));
}

void release_vlans(std::span<std::uint8_t *> vlans) {
    for (std::uint8_t *&vlan : vlans) {
        if (vlan != nullptr) {
            bfree(__FILE__, __LINE__, vlan);
            vlan = nullptr;
        }
    }
}

}  // namespace

void initialize_mandb(void) {
    mandb.fill(nullptr);
    profiles_mandb = nullptr;
}

int allocate_slot_mandb(int slot) {
    const auto index = static_cast<unsigned>(slot);
    if (index >= mandb.size()) {
        return -1;
    }
    if (mandb[index] == nullptr) {
        mandb[index] = allocate_cleared<SlotDatabase>();
        if (mandb[index] == nullptr) {
            log_add(log_error, "%s : MALLOC FAILED!\n", __func__);
            return -1;
        }
    }
    clock_gettime(CLOCK_MONOTONIC, &mandb[index]->ageing);
    mandb[index]->ageing.tv_sec += ageing_seconds;
    return 0;
}

void cleanup_mandb(int slot) {
    SlotDatabase *db = slot_database(slot);
    if (db == nullptr) {
        return;
    }
    release_address_table(*db);
    db->update_tasks.release();
    cleanup_pppoe_sessions(slot);
    cleanup_igmp_stats(slot);
    release_vlans(db->vlans);
    release_vlans(db->operational_vlans);
    db->mac_table.release();
    db->mac_text.release();
    std::free(db);
    mandb[static_cast<unsigned>(slot)] = nullptr;
}

int allocate_profiles_mandb(void) {
    if (profiles_mandb != nullptr) {
        return 0;
    }
    profiles_mandb = allocate_cleared<ProfilesDatabase>();
    if (profiles_mandb == nullptr) {
        log_add(log_error, "%s : MALLOC FAILED\n", __func__);
        return -1;
    }
    return 0;
}

void cleanup_profiles_mandb(void) {
    if (profiles_mandb == nullptr) {
        return;
    }
    for (AutoUpdateEntry *entry : profiles_mandb->auto_update_entries) {
        if (entry != nullptr) {
            bfree(__FILE__, __LINE__, entry);
        }
    }
    std::free(profiles_mandb);
    profiles_mandb = nullptr;
}

void age_slot_mandb(void) {}

void *get_slot_mandb(int slot) {
    return slot_database(slot);
}

void *get_profiles_mandb(void) {
    return profiles_mandb;
}

namespace tarn {

SlotDatabase *slot_database(int slot) {
    const auto index = static_cast<unsigned>(slot);
    return index < mandb.size() ? mandb[index] : nullptr;
}

ProfilesDatabase *profiles_database() {
    return profiles_mandb;
}

}  // namespace tarn
