#include "chassis/requests/chassis.h"

#include <algorithm>

#include "chassis/state/ont_life.h"
#include "wire/command_names.h"

namespace tarn::chassis {
namespace {

constexpr std::size_t corrupt_bytes = 16;  // that a fault of this kind inverts

constexpr CardPlan no_onts{
    .onts_per_channel = {}, .addresses = 0, .pppoe_sessions = 0, .vlans = 0, .mac_addresses = 0};

std::string describe(const RequestEntry &entry) {
    return "slot " + std::to_string(entry.slot) + ": command " + std::to_string(entry.command) + " (" +
           entry.name + "), length " + std::to_string(entry.length);
}

RequestEntry make_entry(int slot, std::span<const std::uint8_t> request, Moment now) {
    const std::uint8_t *header = request.data();
    RequestEntry entry;
    entry.time_ms = now;
    entry.slot = slot;
    entry.command = static_cast<std::uint16_t>(load_integer(header, board_header::command));
    entry.destination = static_cast<std::uint8_t>(load_integer(header, board_header::destination));
    entry.name = command_name(entry.command, entry.destination);
    entry.length = static_cast<std::uint32_t>(request.size());
    entry.payload.assign(request.begin() + board_header::size, request.end());
    return entry;
}

// Makes an answer wrong in the ways asked for.
void spoil(Bytes &answer, const FaultEffects &effects, const RequestEntry &entry) {
    const RequestRule *rule = find_rule(entry.command, entry.destination);
    if (effects.count && rule != nullptr && rule->answer_count &&
        answer.size() >= rule->answer_count->offset + rule->answer_count->size) {
        for (std::size_t i = 0; i < rule->answer_count->size; ++i) {
            answer[rule->answer_count->offset + i] = static_cast<std::uint8_t>(*effects.count >> 8 * i);
        }
    }
    if (effects.corrupt) {
        const std::size_t from = std::min<std::size_t>(*effects.corrupt, answer.size());
        for (std::uint8_t &byte :
             std::span(answer).subspan(from, std::min(corrupt_bytes, answer.size() - from))) {
            byte = static_cast<std::uint8_t>(~byte);
        }
    }
    if (effects.truncated && *effects.truncated < answer.size()) {
        answer.resize(*effects.truncated);
        store_integer(answer.data(), board_header::length, static_cast<std::int64_t>(answer.size()));
    }
    if (effects.length) {
        store_integer(answer.data(), board_header::length, *effects.length);
    }
}

}  // namespace

Chassis::Chassis(Scenario scenario, Log &log, std::function<std::uint64_t()> elapsed_ms)
    : scenario_(std::move(scenario)), log_(log), elapsed_ms_(std::move(elapsed_ms)) {
    for (int slot = 0; slot < chassis_slot::line_cards; ++slot) {
        if (scenario_.cards[static_cast<std::size_t>(slot)]) {
            insert(slot);
        }
    }
    for (int slot = chassis_slot::line_cards; slot <= chassis_slot::chassis_network; ++slot) {
        Place &place = places_[static_cast<std::size_t>(slot)];
        place.card = std::make_unique<Card>(make_card(scenario_, slot, no_onts));
        place.present = true;
    }
    for (const Fault &fault : scenario_.faults) {
        faults_.add(fault);
    }
}

Moment Chassis::now() const {
    return clock_start_ +
           static_cast<Moment>(static_cast<double>(elapsed_ms_() - real_start_) * scenario_.time_factor);
}

void Chassis::set_time_factor(double factor) {
    clock_start_ = now();
    real_start_ = elapsed_ms_();
    scenario_.time_factor = factor;
}

bool Chassis::is_up(int slot) const {
    return slot >= 0 && slot <= chassis_slot::chassis_network &&
           places_[static_cast<std::size_t>(slot)].present;
}

Card *Chassis::card(int slot) {
    if (!is_up(slot)) {
        return nullptr;
    }
    Card *card = places_[static_cast<std::size_t>(slot)].card.get();
    live(card->onts, now(), card->reregister_time, card->start_time);
    return card;
}

bool Chassis::pull(int slot) {
    if (slot >= chassis_slot::line_cards || card(slot) == nullptr) {
        return false;
    }
    places_[static_cast<std::size_t>(slot)].present = false;
    log_.line("slot " + std::to_string(slot) + ": card pulled");
    if (on_pull) {
        on_pull(slot);
    }
    return true;
}

bool Chassis::insert(int slot) {
    if (slot < 0 || slot >= chassis_slot::line_cards || is_up(slot)) {
        return false;
    }
    const auto index = static_cast<std::size_t>(slot);
    Place &place = places_[index];
    if (!place.card) {
        place.card =
            std::make_unique<Card>(make_card(scenario_, slot, scenario_.cards[index].value_or(CardPlan{})));
    }
    place.present = true;
    return true;
}

Refusal Chassis::answer(int slot, std::span<const std::uint8_t> request, Bytes &to) {
    const std::uint8_t *header = request.data();
    const auto refuse = [&](Refusal refusal) {
        to = answer_header(request, refusal.status);
        return refusal;
    };
    if (load_integer(header, board_header::slot) != slot) {
        return refuse({board_status::wrong_slot,
                       "slot byte " + std::to_string(load_integer(header, board_header::slot)) +
                           " on the connection of slot " + std::to_string(slot)});
    }
    if (load_integer(header, board_header::command) == command::link) {
        to = answer_header(request, board_status::success);
        return {};
    }
    Card *addressed = card(slot);
    if (addressed == nullptr) {
        return refuse(
            slot < chassis_slot::line_cards
                ? Refusal{board_status::wrong_slot, "no card"}
                : Refusal{board_status::unknown_command, "not a command of the chassis' own services"});
    }
    Exchange exchange{*addressed, request, now(), {}};
    Refusal refusal = dispatch(exchange);
    to = std::move(exchange.answer);
    return refusal;
}

Reply Chassis::request(int slot, std::span<const std::uint8_t> request) {
    RequestEntry entry = make_entry(slot, request, now());
    const std::string description = describe(entry);
    const FaultEffects effects = faults_.hit(slot, entry.command);
    Reply reply;
    reply.delay_ms = effects.delay_ms;
    Refusal refusal;
    if (effects.silent || effects.dropped) {
        reply.outcome = effects.dropped ? Outcome::dropped : Outcome::silent;
    } else if (effects.status) {
        reply.bytes = answer_header(request, *effects.status);
    } else {
        refusal = answer(slot, request, reply.bytes);
    }
    if (reply.outcome == Outcome::answered) {
        entry.status = reply.bytes[board_header::status.offset];
        spoil(reply.bytes, effects, entry);
    }
    entry.outcome = reply.outcome;

    if (!effects.names.empty()) {
        log_.line(description + ": fault " + effects.names);
    }
    if (refusal.status != board_status::success) {
        log_.line(description + ": refused with status " + std::to_string(refusal.status) + ": " +
                  refusal.reason);
    } else if (log_requests && effects.names.empty()) {
        log_.line(description + ": status " + std::to_string(entry.status));
    }
    requests_.add(std::move(entry));
    return reply;
}

}  // namespace tarn::chassis
