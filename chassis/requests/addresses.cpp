// Addresses learnt behind ONTs, PPPoE sessions and IGMP statistics.
#include "chassis/requests/selectors.h"
#include "wire/records/address.h"

namespace tarn::chassis {
namespace {

// Selector, 16-bit count, entries.
void get_addresses(Exchange &exchange, std::uint8_t selector) {
    std::uint16_t count = 0;
    exchange.answer.push_back(selector);
    exchange.answer.resize(exchange.answer.size() + sizeof count);
    for (const AddressEntry &entry : exchange.card.addresses) {
        if (selects(selector, entry[ont_address::channel.offset])) {
            append(exchange.answer, entry);
            ++count;
        }
    }
    store_le16(exchange.answer.data() + payload + 1, count);
}

// 16-bit count, entries; the selector is not repeated. The sessions of an ONT that does not work are not
// there.
void get_sessions(Exchange &exchange, std::uint8_t selector) {
    std::uint16_t count = 0;
    exchange.answer.resize(exchange.answer.size() + sizeof count);
    for (const PppoeSession &session : exchange.card.pppoe_sessions) {
        const Ont *ont = find_ont(exchange.card.onts, session.channel, session.ont_id);
        if (selects(selector, session.channel) && ont != nullptr &&
            ont->code_at(exchange.now) == ont_code::working) {
            auto record = session.record;
            put(record, pppoe_session::duration,
                load_integer(record.data(), pppoe_session::duration) +
                    static_cast<std::int64_t>(exchange.now / 1000));
            append(exchange.answer, record);
            ++count;
        }
    }
    store_le16(exchange.answer.data() + payload, count);
}

// No multicast group is ever joined on a simulated card: a 16-bit count of 0.
void get_igmp_stats(Exchange &exchange, std::uint8_t /*selector*/) {
    append_le16(exchange.answer, 0);
}

constexpr RequestRule rules[] = {
    {command::get_global_ont_address_table, destination::services, 47, with_selector<get_addresses>,
     u16_at(33)},
    {command::get_pppoe_sessions, destination::services, 33, with_selector<get_sessions>, u16_at(32)},
    {command::get_igmp_stats, destination::services, 33, with_selector<get_igmp_stats>, u16_at(32)},
};

}  // namespace

std::span<const RequestRule> address_requests() {
    return rules;
}

}  // namespace tarn::chassis
