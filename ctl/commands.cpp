#include "ctl/commands.h"

#include <bitset>
#include <charconv>
#include <stdexcept>

#include "wire/protocol.h"

namespace tarn::ctl {
namespace {

constexpr Command table[] = {
    {"commit", "make the working configuration the running one", true, ""},
    {"confirm", "keep a commit, which the card takes back otherwise", true, ""},
    {"rollback", "take back an unconfirmed commit and all edits", true, "Take back what was changed"},
    {"save", "save the running configuration for the next start", false, ""},
    {"default", "edit the working configuration back to the factory's", true,
     "Give up the configuration for the factory's"},
    {"reread", "have the card read its running configuration again, and the agent the card", false, ""},
    {"reload", "restart the card with its saved configuration", false, "Interrupt all service and restart"},
};

// A slot at the start of `text`, which it is taken from.
int take_slot(std::string_view &text) {
    int slot = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), slot);
    if (error != std::errc() || slot < 1 || slot > chassis_slot::line_cards) {
        throw std::invalid_argument("a slot lies between 1 and " + std::to_string(chassis_slot::line_cards));
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return slot;
}

}  // namespace

std::span<const Command> commands() {
    return table;
}

std::vector<int> parse_slots(std::string_view text) {
    std::bitset<chassis_slot::line_cards + 1> chosen;
    while (true) {
        const int first = take_slot(text);
        int last = first;
        if (text.starts_with('-')) {
            text.remove_prefix(1);
            last = take_slot(text);
        }
        if (last < first) {
            throw std::invalid_argument("slots " + std::to_string(first) + "-" + std::to_string(last) +
                                        " are no range");
        }
        for (int slot = first; slot <= last; ++slot) {
            chosen.set(static_cast<std::size_t>(slot));
        }
        if (text.empty()) {
            break;
        }
        if (!text.starts_with(',')) {
            throw std::invalid_argument("slots are written as in 1-4,7");
        }
        text.remove_prefix(1);
    }
    std::vector<int> slots;
    for (int slot = 1; slot <= chassis_slot::line_cards; ++slot) {
        if (chosen.test(static_cast<std::size_t>(slot))) {
            slots.push_back(slot);
        }
    }
    return slots;
}

}  // namespace tarn::ctl
