// The bytes of the answers.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

void write(std::span<std::uint8_t> record, std::size_t offset, const std::string &hex) {
    const Bytes bytes = from_hex(hex);
    std::copy(bytes.begin(), bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

std::string repeated(const std::string &hex, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += hex;
    }
    return all;
}

TEST(Answers, WholeExchangeWithItsHeader) {
    TestChassis test;
    write(test.chassis.card(0)->identity.olt, 0,
          "000003002600010068000a00a800000001000000140005003a003b0001000200");
    const Bytes request = from_hex(
        "4500010000080000"
        "0303260001000000"
        "2400000020000000"
        "0000000000000000");
    EXPECT_EQ(to_hex(test.chassis.request(0, request).bytes),
              "4500010000080000"
              "0303260001000000"
              "2400000040000000"
              "0000000000000000"
              "000003002600010068000a00a800000001000000140005003a003b0001000200");
}

TEST(Answers, ChannelStateRepeatsTheSelectorAndCarriesAllEightRecords) {
    TestChassis test;
    Channels &channels = test.chassis.card(0)->channels;
    for (Channel &channel : channels) {
        channel.state.fill(0xEE);
        channel.received = {.per_second = 1000, .base = 0xFFFFFFFF, .since = 0};
    }
    write(channels[1].state, 12, "5354415400");
    test.clock_ms = 2;  // the counter wraps
    const std::string answer = test.payload(0, 70, "02");
    const std::string ee_3 = "eeeeee";
    const auto record = [&](const std::string &working, const std::string &text) {
        std::string hex = ee_3 + working + "eeee" + "01000000" + "ee" + text;
        return hex + std::string(2 * 69 - hex.size(), 'e');
    };
    EXPECT_EQ(answer.size(), 2 * (585 - 32));
    EXPECT_EQ(answer.substr(0, 2), "02");
    // Of the two ONTs on channel 0 one is working.
    EXPECT_EQ(answer.substr(2, 2 * 69), record("0100", ""));
    EXPECT_EQ(answer.substr(2 + 2 * 69, 2 * 69), record("0100", "5354415400"));
    EXPECT_EQ(answer.substr(2 + 7 * 2 * 69), record("0000", ""));

    const std::string lite = test.payload(0, 71, "ff");
    EXPECT_EQ(lite.size(), 2 * (585 - 32));
    EXPECT_EQ(lite.substr(0, 2 + 2 * 69), "ff0000000100000001000000" + zeros(69 - 11));
}

TEST(Answers, OntList) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[0];
    write(ont.list, 18, "545900");
    write(ont.list, 50, "312e3000");
    write(ont.list, 91, "485700");
    const std::string first = "5441524e0000000100000000000000000000545900" + zeros(29) + "312e3000" +
                              zeros(14) + "0700" + "00000000008032c0" + zeros(13) + "485700" + zeros(12);
    // The second ONT has code 13 and no optical reading; the third is alone on channel 1.
    const std::string second =
        "5441524e000000020000000001000000" + zeros(52) + "0d00000000000000f87f" + zeros(28);
    const std::string third =
        "5441524e000000030100000000000000" + zeros(52) + "070000000000008032c0" + zeros(28);
    EXPECT_EQ(test.payload(0, 73, "ff"), "ff03000000" + first + second + third);
    EXPECT_EQ(test.payload(0, 73, "01"), "0101000000" + third);
    EXPECT_EQ(test.payload(5, 73, "ff"), "ff00000000");
}

TEST(Answers, OntRecords) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[0];
    ont.errors = {.per_second = 100, .base = 65535, .since = 0};
    test.clock_ms = 30;
    write(ont.state, 68, "0100");
    write(ont.state, 70, "5239");
    write(ont.state, 128, "000000000000f03f");
    EXPECT_EQ(test.payload(0, 72, "5441524e000000010000000000"),
              zeros(66) + "020001005239" + zeros(56) + "000000000000f03f" + zeros(34));

    write(ont.i2c, 0, "b004640001000019f0ff881f4080");
    EXPECT_EQ(test.payload(0, 250, "5441524e000000010000000000"), "b004640001000019f0ff881f4080");
    write(ont.uni_ports, 0, "0400010002000300010008090a0b0c000000");
    EXPECT_EQ(test.payload(0, 298, "5441524e000000010000000000"),
              "0400010002000300010008090a0b0c000000" + zeros(48));
    // An ONT that isn't working has no readings.
    EXPECT_EQ(test.payload(0, 250, "5441524e000000020000000000"), "00000000ff000000000000000000");
    EXPECT_EQ(test.payload(0, 298, "5441524e000000020000000000"), zeros(66));
}

TEST(Answers, OntConnections) {
    TestChassis test;
    Ont &ont = test.chassis.card(0)->onts[1];
    write(ont.list, 18, "4551");
    write(ont.list, 50, "5631");
    ont.connections = {{0x11223344, 0x55667788, 11}, {0x01020304, 0, 7}};
    const auto entry = [](const std::string &times_and_state) {
        return "00004551" + zeros(62) + "5631" + zeros(14) + times_and_state + zeros(8);
    };
    // By channel at byte 40 and number at 41-44, which the answer repeats.
    EXPECT_EQ(test.payload(0, 305, zeros(8) + "0001000000"),
              zeros(8) + "000100000002" + zeros(8) + entry("44332211887766550b") +
                  entry("040302010000000007") + zeros(990 - 8 - 2 * 99));
    // Ten entries do not fit whole: the last one's named fields do.
    ont.connections.assign(10, {1, 2, 3});
    const std::string full = test.payload(0, 305, zeros(8) + "0001000000");
    EXPECT_EQ(full.size(), 2 * (1036 - 32));
    EXPECT_EQ(full.substr(2 * (14 + 8 + 9 * 99 + 82), 18), "010000000200000003");
}

TEST(Answers, AddressTableAndSessions) {
    TestChassis test;
    Card &card = *test.chassis.card(0);
    for (AddressEntry &entry : card.addresses) {
        entry.fill(0xAA);
    }
    write(card.addresses[0], 20, "00");
    write(card.addresses[1], 20, "01");
    const std::string entry_0 = std::string(40, 'a') + "00" + std::string(32, 'a');
    const std::string entry_1 = std::string(40, 'a') + "01" + std::string(32, 'a');
    EXPECT_EQ(test.payload(0, 80, "ff" + zeros(14)), "ff0200" + entry_0 + entry_1);
    EXPECT_EQ(test.payload(0, 80, "01" + zeros(14)), "010100" + entry_1);
    EXPECT_EQ(test.payload(5, 80, "ff" + zeros(14)), "ff0000");

    card.pppoe_sessions[0].channel = card.onts[0].channel;
    card.pppoe_sessions[0].ont_id = card.onts[0].id;
    card.pppoe_sessions[0].record.fill(0x31);
    EXPECT_EQ(test.payload(0, 205, "ff"),
              "0100"
              "31313131313131313131313131313131313131313131313131313131313131");
    test.clock_ms = 3000;  // lasts three seconds longer
    EXPECT_EQ(test.payload(0, 205, "ff").substr(2 * (2 + 21), 8), "34313131");
    card.onts[0].code = 11;
    EXPECT_EQ(test.payload(0, 205, "ff"), "0000") << "its ONT is lost";
    EXPECT_EQ(test.payload(5, 205, "ff"), "0000");
    EXPECT_EQ(test.payload(0, 79, "ff"), "0000");
}

TEST(Answers, GeneratedAddressEntriesNameOntsOfTheCard) {
    TestChassis test("cards: [{slots: 2, onts: 20, addresses: 300}]");
    const Card &card = *test.chassis.card(2);
    ASSERT_EQ(card.addresses.size(), 300U);
    for (const AddressEntry &entry : card.addresses) {
        Ont *ont = find_ont(test.chassis.card(2)->onts, std::span(entry).subspan<21, 8>());
        ASSERT_NE(ont, nullptr);
        EXPECT_EQ(entry[20], ont->channel);
        EXPECT_EQ(entry[8], 0x02);  // a unicast address of nobody's
        EXPECT_EQ(entry[9], 2);
    }
}

TEST(Answers, ChannelConfigurationAndActivationMode) {
    TestChassis test;
    Channel &channel = test.chassis.card(0)->channels[6];
    channel.config.fill(0x5C);
    write(channel.config, 0, "0100");
    EXPECT_EQ(test.payload(0, 85, "06"), "060100" + repeated("5c", 95));
    channel.activation_auth = 4;
    EXPECT_EQ(test.payload(0, 313, "06"), "060400");
    EXPECT_EQ(test.payload(0, 313, "05"), "050200");
}

TEST(Answers, IdentityBerAndUtilization) {
    TestChassis test;
    Card &card = *test.chassis.card(0);
    card.identity.versions.fill(0x41);
    card.identity.hardware.fill(0x42);
    EXPECT_EQ(test.payload(0, 412), repeated("41", 64));
    EXPECT_EQ(test.payload(0, 413).size(), 2 * 4 * 32U);
    EXPECT_EQ(test.payload(0, 413).substr(0, 4), "4242");

    card.onts[0].errors = {.per_second = 2, .base = 0, .since = 1000};
    test.clock_ms = 4000;
    EXPECT_EQ(test.payload(0, 277, "5441524e000000010000000000"),
              "5441524e00000001060000000040f2bc010000000000")
        << "3 s at 2,488,320 kbit/s";
    const std::string sample = test.payload(0, 450, "5441524e000000010000000000");
    EXPECT_EQ(sample.size(), 2 * 512U);
    EXPECT_EQ(test.payload(0, 450, "5441524e000000010000000000"), sample);
    test.clock_ms = 5000;
    EXPECT_NE(test.payload(0, 450, "5441524e000000010000000000"), sample);
    EXPECT_EQ(test.payload(0, 450, "5441524e000000020000000000"), zeros(512));
}

}  // namespace
}  // namespace tarn::chassis
