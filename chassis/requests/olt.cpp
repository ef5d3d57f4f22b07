// The OLT as a whole.
#include "wire/records/olt.h"
#include "chassis/requests/selectors.h"

namespace tarn::chassis {
namespace {

Refusal get_state(Exchange &exchange) {
    append(exchange.answer, exchange.card.identity.olt);
    return {};
}

// Declared one byte longer than it has anything to say; that byte may hold anything.
Refusal reconfigure(Exchange &exchange) {
    std::uint8_t *olt = exchange.card.identity.olt.data();
    store_integer(olt, olt_state::word(0), load_integer(olt, olt_state::word(0)) + 1);
    reregister_onts(exchange.card, -1, exchange.now);
    return {};
}

constexpr RequestRule rules[] = {
    {command::get_olt_state, destination::services, 32, get_state},
    {command::reconfigure_olt, destination::services, 33, reconfigure},
};

}  // namespace

std::span<const RequestRule> olt_requests() {
    return rules;
}

}  // namespace tarn::chassis
