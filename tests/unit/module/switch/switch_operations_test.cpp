// The switch's sections, ACL rules, counters and conversions.
#include "module/switch/switch_operations.h"

#include "module/start/start.h"
#include "module/store/switch_sections.h"
#include "module/store/utilization_sections.h"
#include "module/switch/switch_ports.h"
#include "support/scripted_board.h"
#include "wire/bytes.h"

namespace {

constexpr int slot = 5;

Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<std::uint8_t>(7 * i + i / 256);
    }
    return bytes;
}

class SwitchOperationsTest : public Started<ModuleTest, slot> {
  protected:
    void SetUp() override {
        Started::SetUp();
        db = tarn::slot_sections<tarn::SwitchSections>(slot);
    }
    // What the last request carried, and its head.
    static Bytes last_payload() { return board.last_payload(); }
    static void expect_last(int command, int destination, std::size_t length) {
        ASSERT_FALSE(board.sent.empty());
        EXPECT_EQ(board.sent.back().command(), command);
        EXPECT_EQ(board.sent.back().destination(), destination);
        EXPECT_EQ(board.sent.back().slot(), slot);
        EXPECT_EQ(board.sent.back().bytes.size(), length);
    }
    tarn::SwitchSections *db = nullptr;
};

TEST_F(SwitchOperationsTest, SectionsAreFetchedOncePerPeriodAndSentAsTheyStand) {
    struct Case {
        std::uint8_t *(*get)(int);
        int (*set)(int);
        int get_code;
        int set_code;
        std::size_t size;
        bool set_clears;
    };
    for (const auto &[get, set, get_code, set_code, size, set_clears] :
         {Case{get_switch_general_cfg, set_switch_general_cfg, 0xAD, 0xBE, 2583, false},
          {get_switch_qos_cfg, set_switch_qos_cfg, 0xB9, 0xC9, 150, true},
          {get_switch_blacklist_cfg, set_switch_blacklist_cfg, 0xB6, 0xC6, 360, true}}) {
        const Bytes received = pattern(size);
        board.answer(get_code, received);
        std::uint8_t *section = get(256 + slot);
        ASSERT_NE(section, nullptr);
        expect_last(get_code, 5, 32);
        EXPECT_EQ(Bytes(section, section + size), received);
        get(slot);
        EXPECT_EQ(board.count(get_code), 1);

        EXPECT_EQ(set(slot), -1);
        EXPECT_EQ(get(slot), section);
        EXPECT_EQ(board.count(get_code), set_clears ? 2 : 1);  // cleared even by a failure
        section[size - 1] = 0xAB;
        board.answer(set_code, {});
        EXPECT_EQ(set(slot), 0);
        expect_last(set_code, 5, 32 + size);
        EXPECT_EQ(last_payload(), Bytes(section, section + size));
        EXPECT_EQ(last_payload().back(), 0xAB);

        board.answer(get_code, Bytes(size - 1, 9));  // too short: the old copy stays
        board.everything_stale = true;
        EXPECT_EQ(get(slot)[0], received[0]);
        board.everything_stale = false;
        EXPECT_EQ(get(9), nullptr);
        EXPECT_EQ(set(9), -1);
    }
}

TEST_F(SwitchOperationsTest, WhatTheCardRefusedIsNotForEditing) {
    struct Case {
        std::uint8_t *(*get)(int);
        int (*set)(int);
        int get_code;
        tarn::Stamp &stamp;
    };
    for (const auto &[get, set, get_code, stamp] :
         {Case{get_switch_qos_cfg, set_switch_qos_cfg, 0xB9, db->switch_qos.stamp},
          {get_switch_blacklist_cfg, set_switch_blacklist_cfg, 0xB6, db->switch_blacklist.stamp},
          {get_switch_blacklist_rules, set_switch_blacklist_rules, 0xB8, db->blacklist_rules_stamp}}) {
        board.answer(get_code, Bytes(360, 0));
        get(slot);
        EXPECT_TRUE(stamp.filled);
        EXPECT_EQ(set(slot), -1);
        board.silence(get_code);
        get(slot);
        EXPECT_FALSE(stamp.filled) << get_code;
    }
}

TEST_F(SwitchOperationsTest, AFailedReadIsNotRepeatedWithinThePeriod) {
    EXPECT_EQ(get_switch_qos_cfg(slot)[1], 0);
    get_switch_qos_cfg(slot);
    EXPECT_EQ(board.count(0xB9), 1);
}

TEST_F(SwitchOperationsTest, TheQueueWrittenLastKeepsItsBits) {
    std::uint8_t *qos = db->switch_qos.record.data();
    for (std::size_t queue = 0; queue < 7; ++queue) {
        qos[57 + queue] = 0xFF;
        tarn::store_le64(qos + 1 + 8 * queue, ~std::uint64_t{0});
    }
    qos[57 + 2] = 0x05;
    tarn::store_le64(qos + 1 + 8 * 6, 0x8000000000000001);
    qos[150] = 2;
    qos[151] = 6;
    normalize_qos_queries(slot);
    for (std::size_t queue = 0; queue < 7; ++queue) {
        EXPECT_EQ(qos[57 + queue], queue == 2 ? 0x05 : 0xFA);
        EXPECT_EQ(tarn::load_le64(qos + 1 + 8 * queue), queue == 6 ? 0x8000000000000001 : 0x7FFFFFFFFFFFFFFE);
    }
    const Bytes settled(qos, qos + 150);
    qos[150] = 7;  // no queue
    qos[151] = 255;
    normalize_qos_queries(slot);
    EXPECT_EQ(Bytes(qos, qos + 150), settled);
}

TEST_F(SwitchOperationsTest, RulesAreSortedIntoTheirLists) {
    Bytes answer = {5, 0, 0, 0};
    for (const int list : {1, 0, 1, 8, 255}) {
        Bytes rule(18, static_cast<std::uint8_t>(0x10 + answer.size()));
        rule[0] = static_cast<std::uint8_t>(list);
        answer.insert(answer.end(), rule.begin(), rule.end());
    }
    board.answer(0xB8, answer);
    EXPECT_EQ(get_switch_blacklist_rules(slot), db->blacklist_rules[0][0].data());
    expect_last(0xB8, 5, 32);
    EXPECT_EQ(db->blacklist_rule_counts, (std::array<std::uint32_t, 8>{1, 2, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(db->blacklist_rules[0][0][17], 0x10 + 4 + 18);
    EXPECT_EQ(db->blacklist_rules[1][1][17], 0x10 + 4 + 36);

    // More than a list holds, and a count beyond the answer.
    Bytes many(4 + 1100 * 18, 0);
    tarn::store_le32(many.data(), 0xFFFFFFFF);
    board.answer(0xB8, many);
    board.everything_stale = true;
    get_switch_blacklist_rules(slot);
    EXPECT_EQ(db->blacklist_rule_counts[0], 1024U);
    EXPECT_EQ(db->blacklist_rule_counts[1], 0U);
    EXPECT_TRUE(board.logged("3 get_switch_blacklist_rules : 4294967295 rules stated, 1100 taken\n"));
}

TEST_F(SwitchOperationsTest, AtMost1023RulesAreSentWithoutTheDeletedOnes) {
    board.answer(0xC8, {});
    board.answer(0xB8, Bytes(4, 0));
    get_switch_blacklist_rules(slot);
    board.sent.clear();
    db->blacklist_rule_counts = {1000, 0, 0, 0, 0, 0, 0, 24};
    for (std::size_t i = 0; i < 1000; ++i) {
        db->blacklist_rules[0][i][1] = static_cast<std::uint8_t>(i);
    }
    for (std::size_t i = 0; i < 24; ++i) {
        db->blacklist_rules[7][i][0] = 7;
    }
    db->blacklist_rules_stamp.set();
    EXPECT_EQ(set_switch_blacklist_rules(slot), -1);
    EXPECT_EQ(board.sent.size(), 0U);
    EXPECT_EQ(board.log,
              std::vector<std::string>{"3 set_switch_blacklist_rules : exceeded max number of rules!\n"});
    EXPECT_TRUE(db->blacklist_rules_stamp.is_set());

    db->blacklist_rules[0][1][0] = 8;
    EXPECT_EQ(set_switch_blacklist_rules(slot), 0);
    expect_last(0xC8, 5, 18468);
    const Bytes sent = last_payload();
    EXPECT_EQ(tarn::load_le32(sent.data()), 1023U);
    EXPECT_EQ(sent[4 + 18 + 1], 2);  // the second rule sent is the third one held
    EXPECT_EQ(sent[4 + 1022 * 18], 7);
    EXPECT_EQ(Bytes(sent.end() - 18, sent.end()), Bytes(18, 0));
    EXPECT_FALSE(db->blacklist_rules_stamp.is_set());
    db->blacklist_rules_stamp.set();
    board.silence(0xC8);
    EXPECT_EQ(set_switch_blacklist_rules(slot), -1);
    EXPECT_FALSE(db->blacklist_rules_stamp.is_set());
}

TEST_F(SwitchOperationsTest, CountersAreKeptPerPortAndFetchedAnewAfterAReset) {
    board.answer(0xA7, pattern(248));
    const std::uint8_t *counters = get_switch_port_counters(slot, 12);
    expect_last(0xA7, 8, 33);
    EXPECT_EQ(last_payload(), Bytes{12});
    EXPECT_EQ(Bytes(counters, counters + 248), pattern(248));
    EXPECT_EQ(reset_switch_port_counters(slot, 12), 1);
    get_switch_port_counters(slot, 12);
    EXPECT_EQ(board.count(0xA7), 1);
    board.answer(0x152, {});
    EXPECT_EQ(reset_switch_port_counters(slot, 12), 0);
    expect_last(0x152, 8, 33);
    EXPECT_EQ(last_payload(), Bytes{12});
    get_switch_port_counters(slot, 12);
    EXPECT_EQ(board.count(0xA7), 2);
}

TEST_F(SwitchOperationsTest, UtilizationIsAskedForOverTheInterval) {
    board.answer(0x1B2, pattern(64));
    tarn::chassis_sections<tarn::UtilizationSections>()->utilization_interval = 0x1234;
    const std::uint8_t *values = get_switch_port_utilization(slot, 3);
    expect_last(0x1B2, 8, 35);
    EXPECT_EQ(last_payload(), (Bytes{0x34, 0x12, 3}));
    EXPECT_EQ(Bytes(values, values + 64), pattern(64));
    slot_deinitializer(16);
    get_switch_port_utilization(slot, 4);
    EXPECT_EQ(last_payload(), (Bytes{0, 0, 4}));
}

TEST_F(SwitchOperationsTest, PortsThatAreNoneAreNotAskedFor) {
    for (const int port : {-1, 13, 256, 1000}) {
        EXPECT_EQ(get_switch_port_counters(slot, port), nullptr);
        EXPECT_EQ(get_switch_port_utilization(slot, port), nullptr);
        EXPECT_EQ(reset_switch_port_counters(slot, port), 1);
    }
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(SwitchOperationsTest, CounterWordsAreTheAgentsOwn) {
    struct Case {
        std::uint64_t in;
        std::uint64_t high;
        std::uint64_t low;
    };
    for (const auto &[in, high, low] : {Case{0, 0, 0},
                                        {0xFFFFFFFF, 0, 0xFFFFFFFF},
                                        {0x100000000, 1, 1},
                                        {0x1FFFFFFFF, 2, 1},
                                        {0xFFFFFFFFFFFFFFFF, 1, 0}}) {
        struct counter64 out = {77, 77};
        to_c64(&out, in);
        EXPECT_EQ(out.high, high) << in;
        EXPECT_EQ(out.low, low) << in;
    }
}

TEST_F(SwitchOperationsTest, PortsAreNamed) {
    const std::pair<int, std::string> names[] = {
        {0, "front-port 0"},    {1, "pon-port 0"},      {2, "pon-port 1"},      {3, "mgmt-pon-port 0"},
        {4, "mgmt-pon-port 1"}, {5, "unknown"},         {6, "unknown"},         {7, "pon-port 2"},
        {12, "pon-port 7"},     {13, "port-channel 1"}, {14, "port-channel 2"}, {15, "unknown"},
        {20, "slot-channel 0"}, {21, "unknown"},        {-1, "unknown"}};
    for (const auto &[port, name] : names) {
        EXPECT_EQ(get_port_name(port), name) << port;
    }
    EXPECT_EQ(Bytes(tarn_ports_e, tarn_ports_e + 13), Bytes(13, 1));
    EXPECT_EQ(Bytes(mere_ports_e, mere_ports_e + 13), (Bytes{1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(is_port_present(12), 1);
    EXPECT_EQ(is_port_present(13), 0);
    EXPECT_EQ(is_port_present(256 + 12), 1);
}

std::uint32_t list_of(const Bytes &octets) {
    return tarn::load_le32(octets.data());
}

TEST_F(SwitchOperationsTest, PortListsCarryPortsAndGroups) {
    EXPECT_EQ(portlist_switch_to_snmp(0x00000001, 0), list_of({0x80, 0, 0, 0}));
    EXPECT_EQ(portlist_switch_to_snmp(0x00080100, 0), list_of({0, 0x80, 0x10, 0}));
    EXPECT_EQ(portlist_switch_to_snmp(0, 0x0801), list_of({0, 0, 0x08, 0x01}));
    EXPECT_EQ(portlist_snmp_to_switch(list_of({0x80, 0, 0x1F, 0xFF})), 0x00080001U);
    EXPECT_EQ(portlist_snmp_to_switch(list_of({0xFF, 0xFF, 0xFF, 0xFF})), 0x000FFFFFU);
    EXPECT_EQ(portlist_snmp_to_switch_groups(list_of({0, 0, 0x0F, 0})), 1);
    EXPECT_EQ(portlist_snmp_to_switch_groups(list_of({0, 0, 0x07, 0xFF})), 0);
}

TEST_F(SwitchOperationsTest, MasksAreReversedOctetByOctet) {
    EXPECT_EQ(blade_convert_802_8bit_mask_to_snmp(0x01), 0x80);
    EXPECT_EQ(blade_convert_802_8bit_mask_to_snmp(0xC2), 0x43);
    EXPECT_EQ(blade_convert_dscp_64bit_mask_to_snmp(0x8000000000000001), 0x0100000000000080U);
    EXPECT_EQ(blade_convert_dscp_64bit_mask_to_snmp(0x0000000000001200), 0x0000000000004800U);
}

}  // namespace
