#include "chassis/requests/dispatcher.h"

#include <algorithm>

namespace tarn::chassis {
namespace {

constexpr int request_kind = 1;

std::vector<RequestRule> all_rules() {
    std::vector<RequestRule> rules;
    for (const auto topic :
         {olt_requests(), channel_requests(), ont_requests(), address_requests(), counter_requests(),
          identity_requests(), switch_requests(), configuration_requests(), provisioning_requests(),
          profile_requests(), firmware_requests()}) {
        rules.insert(rules.end(), topic.begin(), topic.end());
    }
    return rules;
}

Refusal carry_out(Exchange &exchange) {
    const std::uint8_t *header = exchange.request.data();
    const auto command = static_cast<std::uint16_t>(load_integer(header, board_header::command));
    const auto destination = static_cast<std::uint16_t>(load_integer(header, board_header::destination));
    if (load_integer(header, board_header::kind) != request_kind) {
        return {board_status::malformed,
                "kind " + std::to_string(load_integer(header, board_header::kind)) + ", expected 1"};
    }
    if (find_rule(command, std::nullopt) == nullptr) {
        return {board_status::unknown_command, "unknown command"};
    }
    const RequestRule *rule =
        destination > 255 ? nullptr : find_rule(command, static_cast<std::uint8_t>(destination));
    if (rule == nullptr) {
        return {board_status::wrong_destination, "wrong destination " + std::to_string(destination)};
    }
    if (const int slot = exchange.card.slot; slot < rule->slots.first || slot > rule->slots.last) {
        return {board_status::unknown_command, "not a command for this slot"};
    }
    if (exchange.request.size() != rule->length) {
        return {board_status::malformed, "length " + std::to_string(exchange.request.size()) + ", expected " +
                                             std::to_string(rule->length)};
    }
    return rule->handle(exchange);
}

}  // namespace

const RequestRule *find_rule(std::uint16_t command, std::optional<std::uint8_t> destination) {
    static const std::vector<RequestRule> rules = all_rules();
    const auto found = std::ranges::find_if(rules, [&](const RequestRule &rule) {
        return rule.command == command && (!destination || rule.destination == *destination);
    });
    return found == rules.end() ? nullptr : &*found;
}

Refusal dispatch(Exchange &exchange) {
    run_due_tasks(exchange.card, exchange.now);
    exchange.answer = answer_header(exchange.request, board_status::success);
    Refusal refusal = carry_out(exchange);
    if (refusal.status != board_status::success) {
        exchange.answer = answer_header(exchange.request, refusal.status);
    }
    store_integer(exchange.answer.data(), board_header::length,
                  static_cast<std::int64_t>(exchange.answer.size()));
    return refusal;
}

Bytes answer_header(std::span<const std::uint8_t> request, std::uint8_t status) {
    Bytes header(board_header::size);
    std::copy_n(request.begin(), std::min(request.size(), header.size()), header.begin());
    store_integer(header.data(), board_header::status, status);
    store_integer(header.data(), board_header::length, board_header::size);
    return header;
}

void append(Bytes &to, std::span<const std::uint8_t> bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

void append_le16(Bytes &to, std::uint16_t value) {
    to.resize(to.size() + sizeof value);
    store_le16(&to[to.size() - sizeof value], value);
}

void append_le32(Bytes &to, std::uint32_t value) {
    to.resize(to.size() + sizeof value);
    store_le32(&to[to.size() - sizeof value], value);
}

}  // namespace tarn::chassis
