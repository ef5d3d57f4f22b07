#include "module/operations/sessions.h"

#include "module/common/log.h"
#include "module/store/address_sections.h"
#include "module/store/cached_query.h"
#include "wire/records/address.h"

using namespace tarn;

namespace {

constexpr std::uint8_t all_channels = 255;
constexpr std::size_t answer_sessions = payload + 2;

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
    slot = slot_byte(slot);
    SessionSections *db = slot_sections<SessionSections>(slot);
    if (db == nullptr) {
        return nullptr;
    }
    if (db->pppoe_stamp.expired()) {
        Request<33> request(command::get_pppoe_sessions, destination::services);
        request.put(32, all_channels);
        if (const Answer answer = ask(request, __func__, slot, answer_sessions)) {
            read_sessions(*db, answer, __func__);
        }
        db->pppoe_stamp.set();
    }
    return db->pppoe_sessions.bytes;
}

void cleanup_pppoe_sessions(int slot) {
    if (SessionSections *db = slot_sections<SessionSections>(slot_byte(slot))) {
        db->pppoe_sessions.release();
        db->pppoe_session_count = 0;
        db->pppoe_stamp.clear();
    }
}

std::uint8_t *get_igmp_stats(int slot) {
    slot = slot_byte(slot);
    SessionSections *db = slot_sections<SessionSections>(slot);
    if (db != nullptr && db->igmp_stamp.expired()) {
        Request<33> request(command::get_igmp_stats, destination::services);
        request.put(32, all_channels);
        act(request, __func__, slot);
        db->igmp_stamp.set();
    }
    return nullptr;
}

void cleanup_igmp_stats(int slot) {
    if (SessionSections *db = slot_sections<SessionSections>(slot_byte(slot))) {
        db->igmp_stamp.clear();
    }
}
