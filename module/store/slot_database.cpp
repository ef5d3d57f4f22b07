#include "module/store/slot_database.h"

#include <cstdlib>
#include <tuple>
#include <type_traits>

#include "module/common/log.h"
#include "module/store/address_sections.h"
#include "module/store/auto_update_sections.h"
#include "module/store/channel_sections.h"
#include "module/store/counter_sections.h"
#include "module/store/network_sections.h"
#include "module/store/olt_sections.h"
#include "module/store/ont_config_sections.h"
#include "module/store/ont_sections.h"
#include "module/store/profile_sections.h"
#include "module/store/switch_sections.h"
#include "module/store/template_sections.h"
#include "module/store/update_sections.h"
#include "module/store/utilization_sections.h"
#include "wire/protocol.h"

using namespace tarn;

namespace {

struct SlotDatabase {
    std::tuple<ChannelSections, OltSections, OntSections, AddressSections, SessionSections, UpdateSections,
               OntConfigSections, NetworkSections, SwitchSections, CounterSections>
        topics;
    timespec ageing;  // allocation time plus 120 s; read by nothing
};

struct ProfilesDatabase {
    std::tuple<ProfileSections, OltProfileSections, TemplateSections, AutoUpdateSections,
               ChassisNetworkSections, UtilizationSections>
        topics;
};

std::array<SlotDatabase *, chassis_slot::line_cards> mandb;
ProfilesDatabase *profiles_mandb;

template <class Topic, class Topics>
constexpr bool holds = false;
template <class Topic, class... Topics>
constexpr bool holds<Topic, std::tuple<Topics...>> = (std::is_same_v<Topic, Topics> || ...);

constexpr int ageing_seconds = 120;

// Databases are cleared memory: every section empty, every stamp expired.
template <class Database>
Database *allocate_cleared() {
    static_assert(std::is_trivially_destructible_v<Database>);
    return static_cast<Database *>(std::calloc(1, sizeof(Database)));
}

template <class Topic>
void release(Topic &topic) {
    if constexpr (requires { topic.release(); }) {
        topic.release();
    }
}

template <class Database>
void free_database(Database *&database) {
    if (database != nullptr) {
        std::apply([](auto &...topics) { (release(topics), ...); }, database->topics);
        std::free(database);
        database = nullptr;
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
    if (get_slot_mandb(slot) != nullptr) {
        free_database(mandb[static_cast<unsigned>(slot)]);
    }
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
    free_database(profiles_mandb);
}

void age_slot_mandb(void) {}

void *get_slot_mandb(int slot) {
    const auto index = static_cast<unsigned>(slot);
    return index < mandb.size() ? mandb[index] : nullptr;
}

void *get_profiles_mandb(void) {
    return profiles_mandb;
}

namespace tarn {

template <class Topic>
Topic &sections_in(void *slot_database) {
    return std::get<Topic>(static_cast<SlotDatabase *>(slot_database)->topics);
}

template <class Topic>
Topic *chassis_sections() {
    return profiles_mandb != nullptr ? &std::get<Topic>(profiles_mandb->topics) : nullptr;
}

template <class Topic>
Topic *slot_sections(int slot) {
    if constexpr (holds<Topic, decltype(ProfilesDatabase::topics)>) {
        return chassis_sections<Topic>();
    } else {
        void *database = get_slot_mandb(slot_byte(slot));
        return database != nullptr ? &sections_in<Topic>(database) : nullptr;
    }
}

#define SLOT_TOPIC(T)                                \
    template T &sections_in<T>(void *slot_database); \
    template T *slot_sections<T>(int slot);
SLOT_TOPIC(ChannelSections)
SLOT_TOPIC(OltSections)
SLOT_TOPIC(OntSections)
SLOT_TOPIC(AddressSections)
SLOT_TOPIC(SessionSections)
SLOT_TOPIC(UpdateSections)
SLOT_TOPIC(OntConfigSections)
SLOT_TOPIC(NetworkSections)
SLOT_TOPIC(SwitchSections)
SLOT_TOPIC(CounterSections)

#define CHASSIS_TOPIC(T)               \
    template T *chassis_sections<T>(); \
    template T *slot_sections<T>(int slot);
CHASSIS_TOPIC(ProfileSections)
CHASSIS_TOPIC(OltProfileSections)
CHASSIS_TOPIC(TemplateSections)
CHASSIS_TOPIC(AutoUpdateSections)
CHASSIS_TOPIC(ChassisNetworkSections)
CHASSIS_TOPIC(UtilizationSections)

}  // namespace tarn
