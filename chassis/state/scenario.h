// What a chassis starts with.
#ifndef TARN_CHASSIS_STATE_SCENARIO_H
#define TARN_CHASSIS_STATE_SCENARIO_H

#include <array>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "chassis/state/faults.h"
#include "wire/protocol.h"
#include "wire/records/address.h"
#include "wire/records/channel.h"

namespace tarn::chassis {

// The most entries that an answer's 16-bit count and the largest message leave room for.
inline constexpr int max_addresses = static_cast<int>(
    std::min<std::size_t>(65535, (max_message_size - board_header::size - 3) / ont_address::size));
inline constexpr int max_pppoe_sessions = 65535;
inline constexpr int max_time_factor = 1000;

struct CardPlan {
    std::array<int, channels_per_slot> onts_per_channel{8, 8, 8, 8, 8, 8, 8, 8};
    int addresses = 128;
    int pppoe_sessions = 8;
    int vlans = 16;
    int mac_addresses = 256;
};

struct Scenario {
    std::uint64_t seed = 1;
    double time_factor = 1;                 // of chassis time; 0 stops it
    int reregister_seconds = 5;             // of chassis time, until an ONT that went down is back
    int confirm_seconds = 600;              // of chassis time, for a commit to be confirmed; 0: no need to
    std::uint32_t start_time = 1767225600;  // what the cards' clocks say at start, in seconds since 1970
    int profiles = 8;                       // of each kind, and templates, as far as there is room
    std::string tftp_root;  // where cards fetch images from; empty: they take them as announced
    std::array<std::optional<CardPlan>, chassis_slot::line_cards> cards;
    std::vector<Fault> faults;
};

// "NAME:LINE: what is wrong"; without a line where the text as a whole can't be read.
class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Sixteen cards, eight ONTs a channel.
Scenario default_scenario();
// Throws ScenarioError; `name` stands for the text in its message.
Scenario parse_scenario(const std::string &text, const std::string &name);
Scenario read_scenario(const std::string &path);

// `total` ONTs over a card's channels, as evenly as it goes.
std::array<int, channels_per_slot> spread_onts(int total);

}  // namespace tarn::chassis

#endif
