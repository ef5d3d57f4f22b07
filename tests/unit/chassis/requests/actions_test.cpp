// What requests change, as the next ones read it.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

constexpr const char *ont_1 = "5441524e000000010000000000";

// The state code of the ONT at this position of slot 0's list, as listed.
int listed_code(TestChassis &test, std::size_t position) {
    const Bytes answer = test.send(0, 73, "ff").bytes;
    return load_le16(answer.data() + 37 + 106 * position + 68);
}

int working_on_channel(TestChassis &test, std::size_t channel) {
    const Bytes answer = test.send(0, 71, "ff").bytes;
    return load_le16(answer.data() + 33 + 69 * channel + 3);
}

std::uint32_t received(TestChassis &test, std::size_t channel) {
    const Bytes answer = test.send(0, 70, "00").bytes;
    return load_le32(answer.data() + 33 + 69 * channel + 7);
}

TEST(Actions, ChannelConfigurationIsStoredPerChannel) {
    TestChassis test;
    const std::string before_2 = test.payload(0, 85, "02");
    const std::string record = "0000" + zeros(90) + "a1a2a3a4a5";
    EXPECT_EQ(test.payload(0, 86, "01" + record), "");
    EXPECT_EQ(test.payload(0, 85, "01"), "01" + record);
    EXPECT_EQ(test.payload(0, 85, "02"), before_2);
}

TEST(Actions, ActivationModeIsStoredPerChannel) {
    TestChassis test;
    EXPECT_EQ(test.payload(0, 314, "030400"), "");
    EXPECT_EQ(test.payload(0, 313, "03"), "030400");
    EXPECT_EQ(test.payload(0, 313, "02"), "020200");
    EXPECT_EQ(test.payload(0, 314, "030200"), "");
    EXPECT_EQ(test.payload(0, 313, "03"), "030200");
}

TEST(Actions, CountersMoveWithTimeAndRestartWhenCleared) {
    TestChassis test;
    for (Channel &channel : test.chassis.card(0)->channels) {
        channel.received = {.per_second = 10, .base = 500, .since = 0};
    }
    test.clock_ms = 1000;
    EXPECT_EQ(received(test, 1), 510U);
    // Group 16, channel 1: that channel alone.
    EXPECT_EQ(test.status(0, 67, "1000000001" + zeros(13)), 0);
    test.clock_ms = 3000;
    EXPECT_EQ(received(test, 0), 530U);
    EXPECT_EQ(received(test, 1), 20U);
    EXPECT_EQ(received(test, 5), 530U);
    // Channels 0 and 4 stand for the two halves of the OLT.
    EXPECT_EQ(test.status(0, 67, "1000000000" + zeros(13)), 0);
    EXPECT_EQ(received(test, 3), 0U);
    EXPECT_EQ(received(test, 4), 530U);
    EXPECT_EQ(test.status(0, 67, "1000000004" + zeros(13)), 0);
    EXPECT_EQ(received(test, 7), 0U);

    // Group 5, an ONT.
    test.chassis.card(0)->onts[0].errors = {.per_second = 0, .base = 9, .since = 0};
    test.chassis.card(0)->onts[2].errors = {.per_second = 0, .base = 9, .since = 0};
    EXPECT_EQ(test.status(0, 67, "05000000005441524e00000001" + zeros(5)), 0);
    EXPECT_EQ(test.payload(0, 72, ont_1).substr(2 * 66, 4), "0000");
    EXPECT_EQ(test.payload(0, 72, "5441524e000000030000000000").substr(2 * 66, 4), "0900");
}

TEST(Actions, AnOntThatGoesDownRegistersAgain) {
    for (const int command : {15, 16, 291}) {
        TestChassis test;
        test.clock_ms = 10000;
        EXPECT_EQ(test.payload(0, command, ont_1), "");
        EXPECT_EQ(listed_code(test, 0), 3) << command;
        EXPECT_EQ(working_on_channel(test, 0), 0);
        EXPECT_EQ(working_on_channel(test, 1), 1);
        test.clock_ms = 14999;
        EXPECT_EQ(listed_code(test, 0), 3);
        test.clock_ms = 15000;
        EXPECT_EQ(listed_code(test, 0), 7);
        EXPECT_EQ(working_on_channel(test, 0), 1);
        const Ont &ont = test.chassis.card(0)->onts[0];
        EXPECT_EQ(ont.reconfigurations, command == 15 ? 1U : 0U);
        EXPECT_EQ(ont.reboots, command == 16 ? 1U : 0U);
        EXPECT_EQ(ont.defaults, command == 291 ? 1U : 0U);
    }
}

TEST(Actions, ARebootIsLoggedAsAConnection) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[0];
    ont.connections = {{100, 0, 7}};
    test.clock_ms = 60000;
    test.status(0, 16, ont_1);
    ASSERT_EQ(ont.connections.size(), 2U);
    EXPECT_EQ(ont.connections[0].link_down, 1767225600U + 60);
    EXPECT_EQ(ont.connections[1].link_up, 1767225600U + 65);
    EXPECT_EQ(ont.connections[1].link_down, 0U);
    // One that is rebooted before it is back has not been there.
    test.clock_ms = 63000;
    test.status(0, 16, ont_1);
    ASSERT_EQ(ont.connections.size(), 2U);
    EXPECT_EQ(ont.connections[1].link_up, 1767225600U + 68);
    for (int i = 0; i < 20; ++i) {
        test.clock_ms += 6000;
        test.status(0, 16, ont_1);
    }
    EXPECT_EQ(ont.connections.size(), 10U);
}

TEST(Actions, ReconfiguringAChannelOrTheOltTakesItsOntsDown) {
    TestChassis test;
    EXPECT_EQ(test.payload(0, 14, "01"), "");
    EXPECT_EQ(working_on_channel(test, 0), 1);
    EXPECT_EQ(working_on_channel(test, 1), 0);
    EXPECT_EQ(test.chassis.card(0)->channels[1].reconfigurations, 1U);
    test.clock_ms = 60000;
    // The byte that the request declares and doesn't use may hold anything.
    EXPECT_EQ(test.payload(0, 13, "c7"), "");
    EXPECT_EQ(working_on_channel(test, 0), 0);
    EXPECT_EQ(working_on_channel(test, 1), 0);
    EXPECT_EQ(test.payload(0, 69).substr(0, 4), "0100");
}

TEST(Actions, DisabledUntilEnabled) {
    TestChassis test;
    const std::string disable = "005441524e0000000100000000ff00";
    const std::string enable = "005441524e00000001000000000000";
    EXPECT_EQ(test.payload(0, 275, disable), "");
    test.clock_ms = 3600000;
    EXPECT_EQ(listed_code(test, 0), 9);
    EXPECT_EQ(test.status(0, 16, ont_1), 0);
    EXPECT_EQ(listed_code(test, 0), 9);
    test.clock_ms += 6000;
    EXPECT_EQ(test.payload(0, 275, enable), "");
    EXPECT_EQ(listed_code(test, 0), 3);
    test.clock_ms += 5000;
    EXPECT_EQ(listed_code(test, 0), 7);
    // Enabling an ONT that is enabled leaves it alone.
    EXPECT_EQ(test.payload(0, 275, enable), "");
    EXPECT_EQ(listed_code(test, 0), 7);
}

TEST(Actions, APulledCardComesBackAsItWas) {
    TestChassis test;
    std::vector<int> pulled;
    test.chassis.on_pull = [&](int slot) { pulled.push_back(slot); };
    test.status(0, 314, "030400");
    EXPECT_TRUE(test.chassis.pull(0));
    EXPECT_FALSE(test.chassis.pull(0));
    EXPECT_FALSE(test.chassis.is_up(0));
    EXPECT_EQ(pulled, std::vector<int>{0});
    EXPECT_TRUE(test.chassis.insert(0));
    EXPECT_FALSE(test.chassis.insert(0));
    EXPECT_EQ(test.payload(0, 313, "03"), "030400");
    // A slot that was empty gets a card of the usual size.
    EXPECT_FALSE(test.chassis.is_up(9));
    EXPECT_TRUE(test.chassis.insert(9));
    EXPECT_EQ(test.payload(9, 73, "ff").substr(0, 10), "ff40000000");
    EXPECT_FALSE(test.chassis.insert(16));
    EXPECT_FALSE(test.chassis.pull(16));
}

}  // namespace
}  // namespace tarn::chassis
