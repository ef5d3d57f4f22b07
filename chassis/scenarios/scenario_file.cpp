#include "chassis/state/scenario.h"

#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <numeric>
#include <set>
#include <sstream>

#include "chassis/state/onts.h"
#include "wire/records/channel.h"
#include "wire/records/ont.h"
#include "wire/records/switch.h"

namespace tarn::chassis {
namespace {

// A mapping of the file, whose keys are all known and occur once.
class Mapping {
  public:
    Mapping(const YAML::Node &node, const std::string &name, std::string what,
            std::initializer_list<std::string_view> keys)
        : node_(node), name_(name), what_(std::move(what)) {
        if (!node_.IsMap()) {
            fail(node_, what_ + " must be a mapping");
        }
        std::set<std::string> seen;
        for (const auto &entry : node_) {
            const auto key = entry.first.as<std::string>("");
            if (std::ranges::find(keys, key) == keys.end()) {
                fail(entry.first, "unknown key \"" + key + "\" in " + what_);
            }
            if (!seen.insert(key).second) {
                fail(entry.first, "key \"" + key + "\" occurs twice in " + what_);
            }
        }
    }

    [[nodiscard]] YAML::Node at(std::string_view key) const { return node_[std::string(key)]; }
    [[nodiscard]] const YAML::Node &node() const { return node_; }

    // The integer under the key, or `otherwise` without the key.
    template <class Integer>
    Integer integer(std::string_view key, std::int64_t low, std::int64_t high, Integer otherwise) const {
        const YAML::Node value = at(key);
        return value ? static_cast<Integer>(integer(value, key, low, high)) : otherwise;
    }

    std::int64_t integer(const YAML::Node &value, std::string_view key, std::int64_t low,
                         std::int64_t high) const {
        std::int64_t result = 0;
        if (!value.IsScalar() || !YAML::convert<std::int64_t>::decode(value, result)) {
            fail(value, std::string(key) + " must be an integer");
        }
        if (result < low || result > high) {
            fail(value, std::string(key) + " must lie between " + std::to_string(low) + " and " +
                            std::to_string(high) + ", not " + std::to_string(result));
        }
        return result;
    }

    [[noreturn]] void fail(const YAML::Node &node, const std::string &text) const {
        throw ScenarioError(name_ + ':' + std::to_string(node.Mark().line + 1) + ": " + text);
    }

  private:
    YAML::Node node_;
    const std::string &name_;
    std::string what_;
};

CardPlan parse_plan(const Mapping &card) {
    CardPlan plan;
    const YAML::Node per_channel = card.at("onts_per_channel");
    const YAML::Node total = card.at("onts");
    if (total && per_channel) {
        card.fail(total, "a card has either onts or onts_per_channel, not both");
    }
    if (total) {
        plan.onts_per_channel = spread_onts(static_cast<int>(card.integer(total, "onts", 0, max_onts)));
    } else if (per_channel && per_channel.IsSequence()) {
        if (per_channel.size() != plan.onts_per_channel.size()) {
            card.fail(per_channel, "onts_per_channel must be one number or a list of eight");
        }
        for (std::size_t channel = 0; channel < plan.onts_per_channel.size(); ++channel) {
            plan.onts_per_channel[channel] = static_cast<int>(
                card.integer(per_channel[channel], "onts_per_channel", 0, max_onts_per_channel));
        }
    } else if (per_channel) {
        plan.onts_per_channel.fill(
            static_cast<int>(card.integer(per_channel, "onts_per_channel", 0, max_onts_per_channel)));
    }
    plan.addresses = card.integer("addresses", 0, max_addresses, plan.addresses);
    plan.pppoe_sessions = card.integer("pppoe_sessions", 0, max_pppoe_sessions, plan.pppoe_sessions);

    plan.vlans = card.integer("vlans", 0, switch_vlans, plan.vlans);
    plan.mac_addresses = card.integer("mac_addresses", 0, switch_mac::max_entries, plan.mac_addresses);

    const auto &onts = plan.onts_per_channel;
    if (std::accumulate(onts.begin(), onts.end(), 0) == 0) {
        for (const char *key : {"addresses", "pppoe_sessions"}) {
            if (card.at(key) && card.integer<int>(key, 0, max_addresses, 0) > 0) {
                card.fail(card.at(key), std::string(key) + " need ONTs, and this card has none");
            }
        }
        plan.addresses = 0;
        plan.pppoe_sessions = 0;
    }
    return plan;
}

// One slot, or a list of slots.
std::vector<int> parse_slots(const Mapping &card) {
    const YAML::Node slots = card.at("slots");
    if (!slots) {
        card.fail(card.node(), "a card needs slots");
    }
    const auto slot = [&](const YAML::Node &node) {
        return static_cast<int>(card.integer(node, "slots", 0, chassis_slot::line_cards - 1));
    };
    if (!slots.IsSequence()) {
        return {slot(slots)};
    }
    std::vector<int> result;
    for (const YAML::Node &node : slots) {
        result.push_back(slot(node));
    }
    return result;
}

void parse_cards(Scenario &scenario, const Mapping &top, const std::string &name) {
    const YAML::Node cards = top.at("cards");
    if (!cards) {
        return;
    }
    if (!cards.IsSequence()) {
        top.fail(cards, "cards must be a list");
    }
    scenario.cards = {};
    for (const YAML::Node &node : cards) {
        const Mapping card(
            node, name, "a card",
            {"slots", "onts", "onts_per_channel", "addresses", "pppoe_sessions", "vlans", "mac_addresses"});
        const CardPlan plan = parse_plan(card);
        for (const int slot : parse_slots(card)) {
            auto &place = scenario.cards[static_cast<std::size_t>(slot)];
            if (place) {
                card.fail(card.at("slots"), "slot " + std::to_string(slot) + " has a card already");
            }
            place = plan;
        }
    }
}

void parse_faults(Scenario &scenario, const Mapping &top, const std::string &name) {
    const YAML::Node faults = top.at("faults");
    if (!faults) {
        return;
    }
    if (!faults.IsSequence()) {
        top.fail(faults, "faults must be a list");
    }
    for (const YAML::Node &node : faults) {
        const Mapping fault(node, name, "a fault",
                            {"kind", "slot", "command", "times", "milliseconds", "status", "bytes", "count",
                             "length", "offset"});
        const YAML::Node kind = fault.at("kind");
        if (!kind || !kind.IsScalar()) {
            fault.fail(node, "a fault needs a kind");
        }
        try {
            scenario.faults.push_back(
                parse_fault(kind.as<std::string>(), [&](std::string_view key) -> std::optional<std::int64_t> {
                    const YAML::Node value = fault.at(key);
                    if (!value) {
                        return std::nullopt;
                    }
                    return fault.integer(value, key, std::numeric_limits<std::int64_t>::min(),
                                         std::numeric_limits<std::int64_t>::max());
                }));
        } catch (const std::invalid_argument &error) {
            fault.fail(node, error.what());
        }
    }
}

double parse_factor(const Mapping &top, double otherwise) {
    const YAML::Node node = top.at("time_factor");
    if (!node) {
        return otherwise;
    }
    double factor = 0;
    if (!node.IsScalar() || !YAML::convert<double>::decode(node, factor) ||
        !(factor >= 0 && factor <= max_time_factor)) {
        top.fail(node, "time_factor must be a number between 0 and " + std::to_string(max_time_factor));
    }
    return factor;
}

}  // namespace

std::array<int, channels_per_slot> spread_onts(int total) {
    std::array<int, channels_per_slot> per_channel{};
    for (int channel = 0; channel < channels_per_slot; ++channel) {
        per_channel[static_cast<std::size_t>(channel)] =
            total / channels_per_slot + (channel < total % channels_per_slot ? 1 : 0);
    }
    return per_channel;
}

Scenario default_scenario() {
    Scenario scenario;
    scenario.cards.fill(CardPlan{});
    return scenario;
}

Scenario parse_scenario(const std::string &text, const std::string &name) {
    Scenario scenario = default_scenario();
    try {
        const YAML::Node root = YAML::Load(text);
        const Mapping top(root, name, "a scenario",
                          {"seed", "time_factor", "reregister_seconds", "confirm_seconds", "start_time",
                           "profiles", "cards", "faults"});
        scenario.seed = top.integer("seed", 0, std::numeric_limits<std::int64_t>::max(), scenario.seed);
        scenario.time_factor = parse_factor(top, scenario.time_factor);
        scenario.reregister_seconds =
            top.integer("reregister_seconds", 0, 86400, scenario.reregister_seconds);
        scenario.confirm_seconds = top.integer("confirm_seconds", 0, 86400, scenario.confirm_seconds);
        // Early enough that connection logs can reach back some months.
        scenario.start_time = top.integer("start_time", 31536000, std::numeric_limits<std::int32_t>::max(),
                                          scenario.start_time);
        scenario.profiles = top.integer("profiles", 0, 128, scenario.profiles);
        parse_cards(scenario, top, name);
        parse_faults(scenario, top, name);
    } catch (const YAML::Exception &error) {
        throw ScenarioError(name + ':' + std::to_string(error.mark.line + 1) + ": " + error.msg);
    }
    return scenario;
}

Scenario read_scenario(const std::string &path) {
    std::ifstream file(path);
    std::ostringstream text;
    if (!file || !(text << file.rdbuf())) {
        throw ScenarioError(path + ": " + std::strerror(errno));
    }
    return parse_scenario(text.str(), path);
}

}  // namespace tarn::chassis
