// Scenario files: what they make, and what is said about a wrong one.
#include <gtest/gtest.h>

#include <set>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

TEST(Scenarios, TheDefaultFillsTheChassis) {
    const Scenario built_in = default_scenario();
    const Scenario shipped = read_scenario(TARN_SCENARIOS "/default.yaml");
    EXPECT_EQ(shipped.seed, built_in.seed);
    EXPECT_EQ(shipped.start_time, built_in.start_time);
    for (const Scenario *scenario : {&built_in, &shipped}) {
        for (const auto &card : scenario->cards) {
            ASSERT_TRUE(card.has_value());
            EXPECT_EQ(card->onts_per_channel, (std::array<int, 8>{8, 8, 8, 8, 8, 8, 8, 8}));
            EXPECT_EQ(card->addresses, 128);
            EXPECT_EQ(card->pppoe_sessions, 8);
        }
    }
}

TEST(Scenarios, CardsOntsAndFaults) {
    const Scenario scenario = parse_scenario(
        "seed: 99\n"
        "time_factor: 2.5\n"
        "cards:\n"
        "  - slots: [1, 15]\n"
        "    onts: 11\n"
        "faults:\n"
        "  - {kind: truncated, bytes: 40, slot: 1, command: 70, times: 3}\n",
        "x");
    EXPECT_EQ(scenario.seed, 99U);
    EXPECT_EQ(scenario.time_factor, 2.5);
    EXPECT_FALSE(scenario.cards[0].has_value());
    EXPECT_EQ(scenario.cards[15]->onts_per_channel, (std::array<int, 8>{2, 2, 2, 1, 1, 1, 1, 1}));
    ASSERT_EQ(scenario.faults.size(), 1U);
    EXPECT_EQ(scenario.faults[0].kind, FaultKind::truncated);
    EXPECT_EQ(scenario.faults[0].value, 40U);
    EXPECT_EQ(scenario.faults[0].slot, 1);
    EXPECT_EQ(scenario.faults[0].command, 70);
    EXPECT_EQ(scenario.faults[0].times, 3U);
}

TEST(Scenarios, WrongOnesNameFileLineAndFault) {
    const std::pair<const char *, const char *> cases[] = {
        {"seed: 1\ncolour: red\n", "f.yaml:2: unknown key \"colour\" in a scenario"},
        {"seed: 1\nseed: 2\n", "f.yaml:2: key \"seed\" occurs twice in a scenario"},
        {"seed: -1\n", "f.yaml:1: seed must lie between 0 and 9223372036854775807, not -1"},
        {"seed: many\n", "f.yaml:1: seed must be an integer"},
        {"time_factor: -1\n", "f.yaml:1: time_factor must be a number between 0 and 1000"},
        {"time_factor: .nan\n", "f.yaml:1: time_factor must be a number between 0 and 1000"},
        {"- 1\n", "f.yaml:1: a scenario must be a mapping"},
        {"cards: 3\n", "f.yaml:1: cards must be a list"},
        {"cards:\n  - onts: 3\n", "f.yaml:2: a card needs slots"},
        {"cards:\n  - slots: 16\n", "f.yaml:2: slots must lie between 0 and 15, not 16"},
        {"cards:\n  - slots: 1\n  - slots: [2, 1]\n", "f.yaml:3: slot 1 has a card already"},
        {"cards:\n  - slots: 1\n    onts: 1025\n", "f.yaml:3: onts must lie between 0 and 1024, not 1025"},
        {"cards:\n  - slots: 1\n    onts_per_channel: 129\n",
         "f.yaml:3: onts_per_channel must lie between 0 and 128, not 129"},
        {"cards:\n  - slots: 1\n    onts_per_channel: [1, 2]\n",
         "f.yaml:3: onts_per_channel must be one number or a list of eight"},
        {"cards:\n  - slots: 1\n    onts: 8\n    onts_per_channel: 1\n",
         "f.yaml:3: a card has either onts or onts_per_channel, not both"},
        {"cards:\n  - slots: 1\n    onts: 0\n    addresses: 5\n",
         "f.yaml:4: addresses need ONTs, and this card has none"},
        {"cards:\n  - slots: 1\n    addresses: 65536\n", "f.yaml:3: addresses must lie between 0 and "},
        {"faults:\n  - slot: 1\n", "f.yaml:2: a fault needs a kind"},
        {"faults:\n  - kind: tired\n", "f.yaml:2: unknown kind of fault \"tired\""},
        {"faults:\n  - kind: slow\n", "f.yaml:2: a fault of kind slow needs milliseconds"},
        {"faults:\n  - {kind: silent, bytes: 40}\n", "f.yaml:2: a fault of kind silent takes no bytes"},
        {"faults:\n  - {kind: status, status: 256}\n",
         "f.yaml:2: status must lie between 1 and 255, not 256"},
        {"faults:\n  - {kind: silent, slot: 19}\n", "f.yaml:2: slot must lie between 0 and 18, not 19"},
        {"seed: [1\n", "f.yaml:2: "},
        {"cards:\n\t- slots: 1\n", "f.yaml:2: "},
    };
    for (const auto &[text, message] : cases) {
        try {
            parse_scenario(text, "f.yaml");
            ADD_FAILURE() << "accepted: " << text;
        } catch (const ScenarioError &error) {
            EXPECT_EQ(std::string(error.what()).substr(0, std::string(message).size()), message);
        }
    }
    EXPECT_THROW(read_scenario("/nonexistent.yaml"), ScenarioError);
}

TEST(Scenarios, TheSeedDecides) {
    const auto lists = [](const std::string &scenario) {
        TestChassis test(scenario);
        return std::pair(test.payload(3, 73, "ff"), test.payload(3, 80, all_addresses));
    };
    const auto first = lists("{seed: 5, cards: [{slots: 3, onts: 100}]}");
    EXPECT_EQ(lists("{seed: 5, cards: [{slots: 3, onts: 100}]}"), first);
    // Other cards leave this one as it is.
    EXPECT_EQ(lists("{seed: 5, cards: [{slots: 0}, {slots: 3, onts: 100}]}"), first);
    EXPECT_NE(lists("{seed: 6, cards: [{slots: 3, onts: 100}]}").first, first.first);
}

TEST(Scenarios, TheFullSizeHasNoSerialTwice) {
    std::ostringstream text;
    Log log(text);
    Chassis chassis(read_scenario(TARN_SCENARIOS "/full.yaml"), log, [] { return 0; });
    std::set<Serial> serials;
    int working = 0;
    for (int slot = 0; slot < 16; ++slot) {
        EXPECT_EQ(chassis.card(slot)->addresses.size(), 2000U);
        for (const Ont &ont : chassis.card(slot)->onts) {
            serials.insert(ont.serial);
            working += ont.code == 7 ? 1 : 0;
            for (std::size_t i = 0; i < 4; ++i) {
                EXPECT_TRUE(ont.serial[i] >= 'A' && ont.serial[i] <= 'Z');
            }
        }
    }
    EXPECT_EQ(serials.size(), 16384U);
    EXPECT_GT(working, 16384 * 8 / 10);
    EXPECT_LT(working, 16384);
    // The largest answers: 1024 ONTs and 2000 addresses.
    EXPECT_EQ(chassis.request(15, make_request(15, 73, 8, "ff")).bytes.size(), 37 + 1024 * 106U);
    EXPECT_EQ(chassis.request(15, make_request(15, 80, 8, all_addresses)).bytes.size(), 35 + 2000 * 37U);
}

TEST(Scenarios, TimeCanRunFasterOrStandStill) {
    TestChassis fast("{time_factor: 3, cards: [{slots: 0, onts: 1}]}");
    fast.clock_ms = 1000;
    EXPECT_EQ(fast.chassis.now(), 3000U);
    TestChassis still("{time_factor: 0, cards: [{slots: 0, onts: 1}]}");
    const std::string before = still.payload(0, 70, "00");
    still.clock_ms = 1000000;
    EXPECT_EQ(still.payload(0, 70, "00"), before);
}

}  // namespace
}  // namespace tarn::chassis
