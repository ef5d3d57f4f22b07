// The QoS tables, and the tables of port counters and utilization.
#include "module/start/start.h"
#include "module/switch/switch_operations.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"
#include "wire/bytes.h"

extern "C" {
next_index_function tarnQOSConfigTable_next_index, tarnQOS8021pMappingTable_next_index,
    tarnQOSDSCPMappingTable_next_index, tarnSwitchPortCountersTable_next_index,
    tarnPortsUtilizationTable_next_index;
module_handler_function tarnQOSConfigTable_module_handler, tarnQOS8021pMappingTable_module_handler,
    tarnQOSDSCPMappingTable_module_handler, tarnSwitchPortCountersTable_module_handler,
    tarnPortsUtilizationTable_module_handler;
}

namespace {

constexpr int slot = 6;
int row;

// Queue q takes priority q and the code points 8q to 8q + 7; byte 0 is 4, bytes 64 and 65 are 2 and 1.
Bytes sample_qos() {
    Bytes section(150, 0);
    section[0] = 4;
    for (std::size_t queue = 0; queue < 7; ++queue) {
        section[1 + 8 * queue + queue] = 0xFF;
        section[57 + queue] = static_cast<std::uint8_t>(1U << queue);
    }
    section[64] = 2;
    section[65] = 1;
    section[149] = 0x77;
    return section;
}

class QosTablesTest : public Started<ModuleTest, slot> {
  protected:
    void SetUp() override {
        Started::SetUp();
        board.answer(0xB9, sample_qos());
        board.answer(0xC9, {});
    }
    static Outcome config(int column) {
        return call_iterator(tarnQOSConfigTable_module_handler, MODE_GET, column, {slot + 1}, &row);
    }
    static int set_config(int column, const Value &value) {
        return set_iterator(tarnQOSConfigTable_module_handler, column, {slot + 1}, &row, value);
    }
    static Bytes sent() {
        EXPECT_EQ(board.sent.back().command(), 0xC9);
        return board.last_payload();
    }
};

TEST_F(QosTablesTest, ConfigurationIsReadAndWritten) {
    EXPECT_EQ(walk_iterator(tarnQOSConfigTable_next_index, slot, {0}).size(), 1U);
    expect_readings([&](int column) { return config(column); }, is_unsigned(2, 4), is_number(3, 2),
                    is_integer(4, 1), is_missing(5));
    EXPECT_EQ(set_config(2, unsigned_value(9)), 0);  // the range is not held against the right type
    EXPECT_EQ(sent()[0], 9);
    EXPECT_EQ(set_config(3, integer_value(3)), 0);
    EXPECT_EQ(sent()[64], 3);
    EXPECT_EQ(set_config(4, integer_value(2)), 0);
    EXPECT_EQ(sent()[65], 0);
    EXPECT_EQ(sent()[149], 0x77);
    const auto sends = board.count(0xC9);
    EXPECT_EQ(set_config(2, integer_value(3)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_config(2, integer_value(9)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_config(2, integer_value(-1)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_config(2, octets_value("123456789")), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_config(3, integer_value(4)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_config(4, integer_value(0)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_config(5, integer_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(board.count(0xC9), sends);
    board.silence(0xC9);
    EXPECT_EQ(set_config(3, integer_value(1)), SNMP_ERR_COMMITFAILED);
    // What the card refused is not sent with the next edit, even if the card's own does not come.
    board.answer(0xC9, {});
    board.silence(0xB9);
    EXPECT_EQ(set_config(4, integer_value(1)), SNMP_ERR_GENERR);
}

TEST_F(QosTablesTest, AMissingRowIsReportedByPhase) {
    const Value value = integer_value(1);
    const auto call = [&](int mode) {
        return call_iterator(tarnQOSConfigTable_module_handler, mode, 3, {slot + 1}, nullptr, &value).error;
    };
    // What net-snmp makes of noSuchObject and noSuchInstance there.
    EXPECT_EQ(call(MODE_SET_RESERVE1), SNMP_ERR_NOCREATION);
    EXPECT_EQ(call(MODE_SET_ACTION), SNMP_ERR_NOSUCHNAME);
    EXPECT_TRUE(board.sent.empty());
}

struct Mapping {
    next_index_function *next;
    module_handler_function *handler;
    std::string before;  // of queue 2
    std::string written;
    std::size_t at;  // of queue 0's mask in the section
    std::size_t octets;
    std::uint8_t stored;  // in the mask's first byte
};

TEST_F(QosTablesTest, AQueueThatIsWrittenTakesItsTrafficFromTheOthers) {
    for (const Mapping &m :
         {Mapping{tarnQOS8021pMappingTable_next_index, tarnQOS8021pMappingTable_module_handler, "\x20",
                  "\x81", 57, 1, 0x81},
          Mapping{tarnQOSDSCPMappingTable_next_index, tarnQOSDSCPMappingTable_module_handler,
                  std::string("\0\0\xFF\0\0\0\0\0", 8), std::string("\x80\0\0\0\0\0\0\x01", 8), 1, 8,
                  0x01}}) {
        slot_deinitializer(slot);
        slot_initializer(slot);
        const auto rows = walk_iterator(m.next, slot, {0, 0});
        ASSERT_EQ(rows.size(), 7U);
        EXPECT_EQ(rows[0].index, (IndexValues{slot + 1, 0}));
        EXPECT_EQ(rows[6].index, (IndexValues{slot + 1, 6}));
        const auto get = [&](int column, int queue) {
            return call_iterator(m.handler, MODE_GET, column, {slot + 1, queue}, &row);
        };
        EXPECT_EQ(get(3, 2).octets, m.before);
        EXPECT_EQ(get(3, 2).type, ASN_OCTET_STR);
        EXPECT_EQ(get(2, 2).error, SNMP_NOSUCHOBJECT);
        EXPECT_EQ(get(3, 7).error, SNMP_NOSUCHINSTANCE);
        const auto set = [&](int column, const Value &value) {
            return set_iterator(m.handler, column, {slot + 1, 2}, &row, value);
        };
        EXPECT_EQ(set(2, octets_value(m.written)), SNMP_ERR_NOTWRITABLE);
        EXPECT_EQ(set(3, octets_value(m.written + "x")), SNMP_ERR_WRONGLENGTH);
        EXPECT_EQ(set(3, integer_value(1)), SNMP_ERR_WRONGTYPE);
        board.sent.clear();
        EXPECT_EQ(set(3, octets_value(m.written)), 0);
        ASSERT_EQ(board.sent.size(), 1U);
        const Bytes section = sent();
        EXPECT_EQ(get_switch_qos_cfg(slot)[m.octets == 8 ? 151 : 150], 2);  // after the section
        EXPECT_EQ(section[m.at + 2 * m.octets], m.stored);
        EXPECT_EQ(section[m.at] & m.stored, 0);  // queue 0 had it
        if (m.octets == 8) {
            EXPECT_EQ(section[m.at + 2 * 8 + 7], 0x80);
            EXPECT_EQ(section[m.at + 2 * 8 + 2], 0);
            EXPECT_EQ(section[m.at], 0xFE);
        }
        board.silence(0xC9);
        EXPECT_EQ(set_iterator(m.handler, 3, {slot + 1, 4}, &row, octets_value(m.written)),
                  SNMP_ERR_COMMITFAILED);
        EXPECT_EQ(get_switch_qos_cfg(slot)[m.octets == 8 ? 151 : 150], 2) << "the card took this one last";
        board.answer(0xC9, {});
    }
}

TEST_F(QosTablesTest, WithoutAWrittenQueueTheFirstOneKeepsItsTraffic) {
    Bytes section = sample_qos();
    section[57 + 3] = 0xFF;  // queue 3 overlaps with queue 0
    board.answer(0xB9, section);
    EXPECT_EQ(set_config(3, integer_value(0)), 0);
    EXPECT_EQ(sent()[57 + 3], 0xFE);
    EXPECT_EQ(sent()[57], 0x01);
}

// Three tables edit the one section, which is sent for each variable.
TEST_F(QosTablesTest, TheEditsOfOneSetAreSentTogether) {
    const auto variable = [](module_handler_function *handler, int column, const IndexValues &index,
                             const Value &value) {
        return [=](int mode) { return call_iterator(handler, mode, column, index, &row, &value); };
    };
    const auto edits = [&](int value_64) {
        return set_together(
            {variable(tarnQOS8021pMappingTable_module_handler, 3, {slot + 1, 4}, octets_value("\x80")),
             variable(tarnQOS8021pMappingTable_module_handler, 3, {slot + 1, 5}, octets_value("\x40")),
             variable(tarnQOSDSCPMappingTable_module_handler, 3, {slot + 1, 6},
                      octets_value(std::string("\x80\0\0\0\0\0\0\0", 8))),
             variable(tarnQOSConfigTable_module_handler, 3, {slot + 1}, integer_value(value_64))});
    };
    board.everything_stale = true;  // even if the section expires in between
    EXPECT_EQ(edits(1), 0);
    EXPECT_EQ(board.count(0xB9), 1);
    EXPECT_EQ(board.count(0xC9), 4);
    for (std::size_t request = 1; request < board.sent.size(); ++request) {
        const Bytes section = board.payload_of(request);
        EXPECT_EQ(section[57 + 4], 0x01);
        EXPECT_EQ(section[57 + 5], 0x02);
        EXPECT_EQ(section[57 + 0], 0x01);  // queue 4 was not the last one written
        EXPECT_EQ(section[57 + 1], 0x00);
        EXPECT_EQ(section[1 + 8 * 6], 0x01);
        EXPECT_EQ(section[1], 0xFE);
        EXPECT_EQ(section[64], 1);
    }
    // A SET that fails leaves nothing behind.
    board.everything_stale = false;
    EXPECT_EQ(set_together({variable(tarnQOSConfigTable_module_handler, 3, {slot + 1}, integer_value(0)),
                            [](int mode) {
                                Outcome other;
                                other.error = mode == MODE_SET_ACTION ? SNMP_ERR_GENERR : 0;
                                return other;
                            }}),
              SNMP_ERR_GENERR);
    EXPECT_EQ(set_config(4, integer_value(1)), 0);
    EXPECT_EQ(sent()[64], 2);
}

// What was never read would be sent back as zeros.
TEST_F(QosTablesTest, AConfigurationThatWasNeverReadIsNotOverwritten) {
    board.silence(0xB9);
    EXPECT_EQ(set_config(3, integer_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(
        set_iterator(tarnQOS8021pMappingTable_module_handler, 3, {slot + 1, 4}, &row, octets_value("\x80")),
        SNMP_ERR_GENERR);
    EXPECT_EQ(board.count(0xC9), 0);
    EXPECT_TRUE(board.logged(
        "3 tarnQOSConfigTable : slot 7 has not sent its configuration, which is not overwritten\n"));
}

TEST_F(QosTablesTest, CountersOfAPortAreServedByPosition) {
    Bytes counters(248, 0);
    for (std::size_t n = 0; n < 31; ++n) {
        counters[8 * n] = static_cast<std::uint8_t>(n + 1);
    }
    counters[8 * 30 + 4] = 1;
    board.answer(0xA7, counters);
    board.answer(0x152, {});
    const auto rows = walk_iterator(tarnSwitchPortCountersTable_next_index, slot, {0, 0});
    ASSERT_EQ(rows.size(), 13U);
    EXPECT_EQ(rows[12].index, (IndexValues{slot + 1, 13}));
    EXPECT_TRUE(board.sent.empty());
    const auto get = [](int column, int port = 13) {
        return call_iterator(tarnSwitchPortCountersTable_module_handler, MODE_GET, column, {slot + 1, port},
                             &row);
    };
    for (int n = 0; n < 30; ++n) {
        EXPECT_EQ(get(3 + n).type, 70);
        EXPECT_EQ(get(3 + n).counter.high, 0U);
        EXPECT_EQ(get(3 + n).counter.low, static_cast<u_long>(n + 1));
    }
    EXPECT_EQ(get(33).counter.high, 1U);
    EXPECT_EQ(get(33).counter.low, 32U);
    expect_readings(get, is_unsigned(50, 0), is_missing(34));
    EXPECT_EQ(get(3, 14).error, SNMP_NOSUCHINSTANCE);

    const auto set = [](int column, const Value &value) {
        return set_iterator(tarnSwitchPortCountersTable_module_handler, column, {slot + 1, 13}, &row, value);
    };
    board.sent.clear();
    EXPECT_EQ(set(3, integer_value(1)), 0);  // accepted without effect
    EXPECT_EQ(set(40, integer_value(1)), 0);
    EXPECT_EQ(set(50, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(set(50, unsigned_value(0)), 0);
    EXPECT_EQ(board.count(0x152), 1);
    board.silence(0x152);
    EXPECT_EQ(set(50, unsigned_value(1)), SNMP_ERR_GENERR);
}

TEST_F(QosTablesTest, UtilizationPairsAreServedInReverse) {
    Bytes values(64, 0);
    const std::uint64_t measured[] = {100, 101, 1000, 124, 104, 105, 1375, 0xFFFFFFFFFFFFFFFF};
    for (std::size_t n = 0; n < 8; ++n) {
        tarn::store_le64(&values[8 * n], measured[n]);
    }
    board.answer(0x1B2, values);
    EXPECT_EQ(walk_iterator(tarnPortsUtilizationTable_next_index, slot, {0, 0}).size(), 13U);
    const auto get = [](int column, void *data = &row) {
        return call_iterator(tarnPortsUtilizationTable_module_handler, MODE_GET, column, {slot + 1, 1}, data);
    };
    struct Case {
        int column;
        u_long low;
    };
    for (const auto &[column, low] : {Case{3, 0}, {4, 8}, {5, 101}, {6, 100}, {8, 11}, {9, 105}, {10, 104}}) {
        EXPECT_EQ(get(column).type, 70) << column;
        EXPECT_EQ(get(column).counter.low, low) << column;
        EXPECT_EQ(get(column).counter.high, 0U) << column;
    }
    // 18446744073709551615 / 125 = 147573952589676412; / (2^32 - 1) = 34359738
    EXPECT_EQ(get(7).counter.high, 34359738U);
    EXPECT_EQ(get(7).counter.low, (147573952589676412U + 34359738U) & 0xFFFFFFFF);
    EXPECT_EQ(get(2).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(11).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(3, nullptr).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(
        call_iterator(tarnPortsUtilizationTable_module_handler, MODE_SET_RESERVE1, 3, {slot + 1, 1}, &row)
            .error,
        SNMP_ERR_NOTWRITABLE);
}

}  // namespace
