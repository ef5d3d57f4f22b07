// What becomes of ONTs over time, and their performance counters.
#include <gtest/gtest.h>

#include <cmath>

#include "chassis/state/performance.h"
#include "support/test_chassis.h"
#include "wire/records/ont.h"

namespace tarn::chassis {
namespace {

constexpr const char *ont_1 = "5441524e000000010000000000";
constexpr std::uint32_t start = 1767225600;

void signal(TestChassis &test, int on) {
    const std::string answer = Control(test.chassis)
                                   .answer(R"({"do":"state-set","slot":0,"item":"ont-signal",)"
                                           R"("serial":"5441524e00000001","value":)" +
                                           std::to_string(on) + "}");
    EXPECT_EQ(answer, "{}\n");
}

int code(TestChassis &test) {
    return load_le16(test.send(0, 73, "ff").bytes.data() + 37 + 68);
}

struct Log {
    int count;
    std::vector<Connection> entries;
};

Log connections(TestChassis &test) {
    const Bytes answer = test.send(0, 305, zeros(13)).bytes;
    Log log{answer.at(45), {}};
    for (std::size_t i = 0; i < static_cast<std::size_t>(log.count); ++i) {
        const std::uint8_t *entry = answer.data() + 46 + 8 + 99 * i;
        log.entries.push_back({load_le32(entry + 82), load_le32(entry + 86), entry[90]});
    }
    return log;
}

TEST(OntLife, TakenDownAndUpAgainAsTheLogTells) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[0];
    ont.connections = {{start - 100, 0, 7}};
    ont.uni_ports.fill(1);
    test.clock_ms = 10000;
    signal(test, 0);
    signal(test, 0);
    EXPECT_EQ(code(test), 11);
    EXPECT_TRUE(std::isnan(load_double(test.send(0, 73, "ff").bytes.data() + 37, f64_at(70))));
    EXPECT_EQ(test.payload(0, 298, ont_1), zeros(66));
    Log log = connections(test);
    ASSERT_EQ(log.count, 1);
    EXPECT_EQ(log.entries[0].link_down, start + 10);
    EXPECT_EQ(log.entries[0].last_state, 11);

    test.clock_ms = 20000;
    signal(test, 1);
    EXPECT_EQ(code(test), 3);
    EXPECT_EQ(connections(test).count, 1);  // the next one has not begun
    test.clock_ms = 25000;
    signal(test, 1);
    EXPECT_EQ(code(test), 7);
    log = connections(test);
    ASSERT_EQ(log.count, 2);
    EXPECT_EQ(log.entries[1].link_up, start + 25);
    EXPECT_EQ(log.entries[1].link_down, 0U);
    EXPECT_EQ(log.entries[1].last_state, 7);

    // What is disabled is gone, and does not come back by itself.
    test.clock_ms = 30000;
    test.status(0, 275, "00" + std::string(ont_1, 16) + zeros(4) + "ff00");
    test.status(0, 13, "00");
    test.clock_ms = 60000;
    log = connections(test);
    ASSERT_EQ(log.count, 2);
    EXPECT_EQ(log.entries[1].link_down, start + 30);
    EXPECT_EQ(log.entries[1].last_state, 9);
}

TEST(OntLife, ABadFibreLosesItsSignalNowAndThen) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[0];
    ont.connections = {{start - 100, 0, 7}};
    ont.outages = {.period = 100000, .length = 20000, .next = 50000};
    test.clock_ms = 49999;
    EXPECT_EQ(code(test), 7);
    test.clock_ms = 50000;
    EXPECT_EQ(code(test), 11);
    test.clock_ms = 70000;
    EXPECT_EQ(code(test), 3);
    test.clock_ms = 75000;
    EXPECT_EQ(code(test), 7);
    EXPECT_EQ(connections(test).entries.at(0).link_down, start + 50);
    EXPECT_EQ(connections(test).entries.at(0).last_state, 11);
    EXPECT_EQ(connections(test).entries.at(1).link_up, start + 75);
    test.clock_ms = 2000000;  // many outages later the log is full
    EXPECT_EQ(connections(test).count, 10);
}

TEST(OntLife, ScenarioSeedDecidesWhoseFibreIsBad) {
    const auto bad = [](const char *seed) {
        TestChassis test(std::string("seed: ") + seed + "\ncards:\n  - {slots: 0, onts: 1024}\n");
        std::vector<std::size_t> positions;
        const std::vector<Ont> &onts = test.chassis.card(0)->onts;
        for (std::size_t i = 0; i < onts.size(); ++i) {
            if (onts[i].outages.period != 0) {
                EXPECT_EQ(onts[i].code, 7);
                positions.push_back(i);
            }
        }
        return positions;
    };
    EXPECT_EQ(bad("5"), bad("5"));
    EXPECT_NE(bad("5"), bad("6"));
    EXPECT_GT(bad("5").size(), 10U);
    EXPECT_LT(bad("5").size(), 60U);
}

TEST(OntLife, ReadingsMoveALittleAndStayPlausible) {
    TestChassis test;
    put(test.chassis.card(0)->onts[0].i2c, ont_i2c::value_6, 40 * 256);
    double lowest = 0;
    double highest = -100;
    for (; test.clock_ms < 600000; test.clock_ms += 5000) {
        const double power = load_double(test.send(0, 73, "ff").bytes.data() + 37, f64_at(70));
        lowest = std::min(lowest, power);
        highest = std::max(highest, power);
        const auto temperature = load_le<std::int16_t>(test.send(0, 250, ont_1).bytes.data() + 32 + 6);
        EXPECT_NEAR(temperature / 256.0, 40, 2);
    }
    EXPECT_DOUBLE_EQ(lowest, -18.8);
    EXPECT_DOUBLE_EQ(highest, -18.2);
}

// Counters of the first ONT: module, direction, key.
std::vector<std::uint32_t> counters(TestChassis &test, const std::string &module,
                                    const std::string &direction, const std::string &key = "00") {
    const Bytes answer = test.send(0, 66, module + "00" + direction + "0000" + key + zeros(12)).bytes;
    EXPECT_EQ(answer.at(14), 0);
    std::vector<std::uint32_t> values;
    for (std::size_t i = 0; i < answer.at(32); ++i) {
        values.push_back(load_le32(answer.data() + 33 + 4 * i));
    }
    EXPECT_EQ(answer.size(), 33 + 4 * values.size());
    return values;
}

void reset_counters(TestChassis &test) {
    EXPECT_EQ(test.status(0, 67, "0500000000" + std::string("5441524e00000001") + zeros(5)), 0);
}

TEST(Performance, ShowsTheIntervalThatFinishedLast) {
    TestChassis test;
    EXPECT_EQ(counters(test, "0f", "01"), std::vector<std::uint32_t>(15, 0));
    test.clock_ms = interval_ms;
    const auto first = counters(test, "0f", "01");
    EXPECT_EQ(first[0], 1U);
    EXPECT_GT(first[14], 0U);
    EXPECT_NE(first, counters(test, "0f", "01", "01"));  // another port
    EXPECT_NE(first, counters(test, "0f", "00"));
    test.clock_ms = 2 * interval_ms - 1;
    EXPECT_EQ(counters(test, "0f", "01"), first);
    test.clock_ms = 258 * interval_ms;
    const auto later = counters(test, "0f", "01");
    EXPECT_EQ(later[0], 2U);
    EXPECT_NE(later[14], first[14]);
}

TEST(Performance, AResetClearsWhatWasCountedBefore) {
    TestChassis test;
    test.clock_ms = 10 * interval_ms;
    const auto whole = counters(test, "03", "00");
    reset_counters(test);
    const auto cleared = counters(test, "03", "00");
    EXPECT_EQ(cleared, (std::vector<std::uint32_t>{10, 0, 0, 0}));
    EXPECT_NE(whole, cleared);
    // Those of a cross-connect count on from there.
    EXPECT_EQ(counters(test, "02", "00"), std::vector<std::uint32_t>(6, 0));
    test.clock_ms += 60000;
    const auto minute = counters(test, "02", "00");
    test.clock_ms += 60000;
    const auto two = counters(test, "02", "00");
    EXPECT_GT(minute[0], 0U);
    EXPECT_NEAR(two[0], 2.0 * minute[0], 1);
}

TEST(Performance, HasAsManyValuesAsTheModuleHasCounters) {
    TestChassis test;
    const std::tuple<const char *, const char *, std::size_t> sizes[] = {
        {"02", "01", 4},  {"02", "00", 6}, {"03", "01", 4}, {"05", "03", 15}, {"06", "03", 2},
        {"07", "03", 15}, {"08", "03", 2}, {"09", "03", 6}, {"0f", "00", 15}};
    for (const auto &[module, direction, size] : sizes) {
        EXPECT_EQ(counters(test, module, direction).size(), size) << module;
    }
}

// What an ONT counts in all is the sum of its groups'.
TEST(Performance, ClientsWatchMulticastGroups) {
    TestChassis test;
    std::uint32_t most_groups = 0;
    std::uint32_t joins = 0;
    for (int minute = 0; minute < 120; ++minute, test.clock_ms += 60000) {
        for (const char *ont : {"00", "01"}) {
            const auto read = [&](const char *module, const std::string &key) {
                const Bytes answer =
                    test.send(0, 66, module + ("00030000" + key) + zeros(3) + ont + zeros(8)).bytes;
                std::vector<std::uint32_t> values;
                for (std::size_t i = 33; i + 4 <= answer.size(); i += 4) {
                    values.push_back(load_le32(answer.data() + i));
                }
                return values;
            };
            const auto all = read("0d", "00");
            if (all.empty()) {
                continue;  // it does not work
            }
            ASSERT_EQ(all.size(), 4U);
            std::uint32_t bandwidth = 0;
            for (std::uint32_t group = 0; group < 16; ++group) {
                const auto values = read("0e", {"0123456789abcdef"[0], "0123456789abcdef"[group]});
                ASSERT_EQ(values.size(), 6U);
                EXPECT_EQ(values[1] >> 16U, group < all[3] ? 0xEF01U : 0U) << "239.1.0.0/16";
                EXPECT_EQ(values[4], group < all[3] ? 1U : 0U) << "the card's first VLAN";
                EXPECT_LT(values[3], 3600U);
                bandwidth += values[5];
            }
            EXPECT_EQ(all[0], bandwidth);
            most_groups = std::max(most_groups, all[3]);
            if (std::string(ont) == "00") {
                EXPECT_GE(all[1], joins);
                joins = all[1];
            }
        }
    }
    EXPECT_GT(most_groups, 0U);
}

TEST(Performance, RefusesWhatItDoesNotHave) {
    TestChassis test;
    EXPECT_EQ(test.status(0, 66, "0400030000" + zeros(13)), 2);                   // module
    EXPECT_EQ(test.status(0, 66, "0f00030000" + zeros(13)), 2);                   // direction
    EXPECT_EQ(test.status(0, 66, "0f00010000" + ("05" + zeros(12))), 2);          // port
    EXPECT_EQ(test.status(0, 66, "0f00010008" + zeros(13)), 2);                   // channel
    EXPECT_EQ(test.status(0, 66, "0f00010002" + zeros(13)), 6);                   // no ONT there
    EXPECT_EQ(test.status(0, 66, "0f00010000" + zeros(4) + "01" + zeros(8)), 1);  // not working
    EXPECT_EQ(test.status(0, 66, "0f000100"), 2);
}

}  // namespace
}  // namespace tarn::chassis
