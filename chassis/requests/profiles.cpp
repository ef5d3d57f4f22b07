// The ONT profiles: each kind is read whole, and added, set and deleted one profile at a time.
#include <algorithm>

#include "chassis/requests/selectors.h"
#include "wire/records/profile.h"

namespace tarn::chassis {
namespace {

template <std::size_t kind>
Refusal get_profiles(Exchange &exchange) {
    append(exchange.answer, exchange.card.config.working(exchange.now).provisioning.profiles[kind]);
    return {};
}

// The index at bytes 32-33 names a profile that must exist or, to be added, must not. `act` gets its record.
template <std::size_t kind, bool exists, class Act>
Refusal with_profile(Exchange &exchange, Act act) {
    const std::uint16_t index = load_le16(exchange.request.data() + payload);
    if (index >= profile_kinds[kind]->count) {
        return {board_status::malformed, "profile " + std::to_string(index) + " out of range"};
    }
    const std::span record =
        profile_record(exchange.card.config.working(exchange.now).provisioning.profiles, kind, index);
    if ((load_integer(record.data(), profile_head::in_use) != 0) != exists) {
        return exists ? Refusal{board_status::no_such_item, "no such profile"}
                      : Refusal{board_status::malformed, "the profile exists"};
    }
    act(record);
    return {};
}

// Adds or sets a profile: its record stands after the index.
template <std::size_t kind, bool exists>
Refusal store_profile(Exchange &exchange) {
    return with_profile<kind, exists>(exchange, [&](std::span<std::uint8_t> record) {
        std::ranges::copy(exchange.request.subspan(payload + 2), record.begin());
    });
}

template <std::size_t kind>
Refusal delete_profile(Exchange &exchange) {
    return with_profile<kind, true>(
        exchange, [](std::span<std::uint8_t> record) { std::ranges::fill(record, std::uint8_t{0}); });
}

constexpr SlotRange profiles_only{chassis_slot::profiles, chassis_slot::profiles};
constexpr std::uint32_t index_length = payload + 2;

constexpr RequestRule rule(std::uint16_t command, std::uint32_t length, Refusal (*handle)(Exchange &)) {
    return {command, destination::configuration, length, handle, {}, profiles_only};
}

#define PROFILE_RULES(kind)                                                                                  \
    rule(profile_kinds[kind]->list, 32, get_profiles<kind>),                                                 \
        rule(profile_kinds[kind]->add, index_length + profile_kinds[kind]->size,                             \
             store_profile<kind, false>),                                                                    \
        rule(profile_kinds[kind]->set, index_length + profile_kinds[kind]->size, store_profile<kind, true>), \
        rule(profile_kinds[kind]->remove, index_length, delete_profile<kind>)

constexpr RequestRule rules[] = {PROFILE_RULES(0), PROFILE_RULES(1), PROFILE_RULES(2), PROFILE_RULES(3),
                                 PROFILE_RULES(4)};

}  // namespace

std::span<const RequestRule> profile_requests() {
    return rules;
}

}  // namespace tarn::chassis
