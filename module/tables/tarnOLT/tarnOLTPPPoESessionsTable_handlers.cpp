// The PPPoE sessions of clients of a card's ONTs, numbered in the card's order: when one ends, those after it
// move up.
#include "module/operations/sessions.h"
#include "module/store/address_sections.h"
#include "module/tables/frame/table.h"
#include "wire/records/address.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {slot_part, ordinal_part(any_unsigned)};

constexpr Column columns[] = {
    {1, unsigned32, slot_plus(1)},
    {2, octet_string, field(pppoe_session::serial)},
    {3, unsigned32, field(pppoe_session::channel)},
    {4, unsigned32, field(pppoe_session::ont_id)},
    {5, octet_string, field(pppoe_session::client_mac)},
    {6, unsigned32, field(pppoe_session::session_id)},
    {7, unsigned32, field(pppoe_session::duration)},
    {8, unsigned32, field(pppoe_session::vlan)},
    {9, unsigned32, field(pppoe_session::service)},
};

struct Sessions {
    static SessionSections *read(const Row &row) {
        return get_pppoe_sessions(row.slot) != nullptr ? slot_sections<SessionSections>(row.slot) : nullptr;
    }
    static std::int64_t count(const SessionSections *db) { return db->pppoe_session_count; }
    static std::int64_t position(const SessionSections * /*db*/, const Row &row) { return row.number[0]; }
    static std::int64_t after(const SessionSections * /*db*/, const Row &row) { return row.number[0] + 1; }
    static bool enter(SessionSections *db, Row &row, std::int64_t position) {
        row.record = db->pppoe_sessions.at(static_cast<std::size_t>(position));
        row.number[0] = position;
        return true;
    }
};

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = sorted_rows_of<Sessions>("append_index_tarnOLTPPPoESessionsTable"),
};

}  // namespace

MODULE_NEXTGEN_TABLE(tarnOLTPPPoESessionsTable, table)
