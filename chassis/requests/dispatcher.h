// From a request's header to the function that carries it out.
#ifndef TARN_CHASSIS_REQUESTS_DISPATCHER_H
#define TARN_CHASSIS_REQUESTS_DISPATCHER_H

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "chassis/state/card.h"
#include "wire/protocol.h"

namespace tarn::chassis {

using Bytes = std::vector<std::uint8_t>;

// One request on its way through a card, and the answer that it gets.
struct Exchange {
    Card &card;
    std::span<const std::uint8_t> request;  // whole; its length has been checked
    Moment now;
    Bytes answer;  // starts as the request's header; handlers append to it, the dispatcher sets status and
                   // length
};

// Why a request is refused; status 0: it is not.
struct Refusal {
    std::uint8_t status = board_status::success;
    std::string reason;
};

// The slots that a kind of request is for, the last one included.
struct SlotRange {
    int first;
    int last;
};
inline constexpr SlotRange line_cards{0, chassis_slot::line_cards - 1};

// Where an answer has its count, from the answer's start: of records, or of an image's bytes.
struct CountPlace {
    std::size_t offset;
    std::size_t size;  // bytes
    constexpr CountPlace(Field field) : offset(field.offset), size(field.size) {}
    constexpr CountPlace(std::size_t at, std::size_t bytes) : offset(at), size(bytes) {}
};

// A kind of request: its file in requests/ has the handler, which returns a Refusal or appends the answer.
struct RequestRule {
    std::uint16_t command;
    std::uint8_t destination;  // as on the wire: what a caller writes as 9 arrives as 5
    std::uint32_t length;      // of the whole request, exactly
    Refusal (*handle)(Exchange &exchange);
    std::optional<CountPlace> answer_count = {};
    SlotRange slots = line_cards;
};

// The rules of each topic.
std::span<const RequestRule> olt_requests();
std::span<const RequestRule> channel_requests();
std::span<const RequestRule> ont_requests();
std::span<const RequestRule> address_requests();
std::span<const RequestRule> counter_requests();
std::span<const RequestRule> identity_requests();
std::span<const RequestRule> switch_requests();
std::span<const RequestRule> configuration_requests();
std::span<const RequestRule> provisioning_requests();
std::span<const RequestRule> profile_requests();
std::span<const RequestRule> firmware_requests();

// The rule for the pair; null when there is none. Without a destination: the command's first.
const RequestRule *find_rule(std::uint16_t command, std::optional<std::uint8_t> destination);

// Checks the request against its rule and carries it out. `exchange.answer` is left complete: whole on
// success, the bare header with the status otherwise.
Refusal dispatch(Exchange &exchange);

// The bare header of an answer with this status: the request's, as far as it goes.
Bytes answer_header(std::span<const std::uint8_t> request, std::uint8_t status);

void append(Bytes &to, std::span<const std::uint8_t> bytes);
void append_le16(Bytes &to, std::uint16_t value);
void append_le32(Bytes &to, std::uint32_t value);

}  // namespace tarn::chassis

#endif
