#include "module/operations/sessions.h"

#include "module/common/log.h"
#include "module/store/address_sections.h"
#include "module/store/cached_query.h"
#include "wire/records/address.h"

using namespace tarn;

namespace {

constexpr std::size_t answer_sessions = payload + 2;

constexpr Query pppoe{command::get_pppoe_sessions, destination::services, usual_pace,
                      &SessionSections::pppoe_stamp};
constexpr Query igmp{command::get_igmp_stats, destination::services, usual_pace,
                     &SessionSections::igmp_stamp};

void read_sessions(SessionSections &db, const Answer &answer, const char *operation) {
    const std::size_t stated = answer.get<std::uint16_t>(payload);
    const std::size_t count = answer.records(stated, answer_sessions, pppoe_session::size);
    if (count != stated) {
        log_add(log_error, "%s : %zu sessions stated, %zu taken\n", operation, stated, count);
    }
    if (!db.pppoe_sessions.resize(count)) {
        log_add(log_error, "%s : memory allocation failed. Tried to allocate %lu bytes\n", operation,
                static_cast<unsigned long>(count * pppoe_session::size));
        db.pppoe_session_count = 0;
        return;
    }
    db.pppoe_session_count = static_cast<std::uint16_t>(count);
    if (count > 0) {
        answer.copy(db.pppoe_sessions.bytes, answer_sessions, count * pppoe_session::size);
    }
}

}  // namespace

std::uint8_t *get_pppoe_sessions(int slot) {
    auto *sessions = refresh(pppoe, slot, every_channel, answer_sessions, __func__, read_sessions);
    return sessions != nullptr ? sessions->pppoe_sessions.bytes : nullptr;
}

void cleanup_pppoe_sessions(int slot) {
    if (SessionSections *db = slot_sections<SessionSections>(slot)) {
        db->pppoe_sessions.release();
        db->pppoe_session_count = 0;
        db->pppoe_stamp.clear();
    }
}

std::uint8_t *get_igmp_stats(int slot) {
    refresh(igmp, slot, every_channel, 0, __func__,
            [](SessionSections & /*sessions*/, const Answer & /*answer*/, const char * /*operation*/) {});
    return nullptr;
}

void cleanup_igmp_stats(int slot) {
    if (SessionSections *db = slot_sections<SessionSections>(slot)) {
        db->igmp_stamp.clear();
    }
}
