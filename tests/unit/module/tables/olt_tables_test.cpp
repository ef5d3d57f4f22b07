// The tables with one row a line card, and the reset of ONT counters.
#include "module/store/ont_sections.h"
#include "support/onts.h"

extern "C" {
next_index_function tarnOLTStateTable_next_index, tarnBoardStateTable_next_index,
    tarnSyncCountersTable_next_index, tarnOLTResetCountersTable_next_index,
    tarnONTResetCountersTable_next_index, tarnONTMulticastGroupsTable_next_index;
module_handler_function tarnOLTStateTable_module_handler, tarnBoardStateTable_module_handler,
    tarnSyncCountersTable_module_handler, tarnOLTResetCountersTable_module_handler,
    tarnONTResetCountersTable_module_handler, tarnONTMulticastGroupsTable_module_handler;
}
extern std::uint32_t dummy;

namespace {

class OltTablesTest : public Started<ModuleTest, 2> {
  protected:
    static Outcome get(module_handler_function *handler, int column, const IndexValues &index = {3},
                       bool with_row = true) {
        return call_iterator(handler, MODE_GET, column, index, with_row ? &row : nullptr);
    }
    static int set(module_handler_function *handler, int column, const Value &value,
                   const IndexValues &index = {3}, bool with_row = true) {
        return set_iterator(handler, column, index, with_row ? &row : nullptr, value);
    }
    static inline int row = 0;
};

Bytes words(std::initializer_list<std::uint16_t> values) {
    Bytes record;
    for (const std::uint16_t value : values) {
        record.push_back(static_cast<std::uint8_t>(value & 0xFF));
        record.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    return record;
}

TEST_F(OltTablesTest, OltStateInterleavesItsTexts) {
    board.answer(69, words({99, 3, 38, 1, 192, 10, 168, 0, 1, 0, 20, 5, 0xAB, 0x12, 0xC, 0xFFF}));
    const auto handler = tarnOLTStateTable_module_handler;
    expect_readings([&](int column) { return get(handler, column); }, is_unsigned(1, 3),
                    is_octets(2, "3.38.1"), is_octets(3, "192.168.1.20"), is_octets(4, "AB.C"),
                    is_octets(5, "10.0.0.5"), is_octets(6, "12.FFF"), is_unsigned(10, 0));
    for (const int column : {0, 7, 8, 9, 11}) {
        EXPECT_EQ(get(handler, column).error, SNMP_NOSUCHOBJECT) << column;
    }
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.sent[0].bytes.size(), 32U);
    EXPECT_EQ(get(handler, 2, {3}, false).error, SNMP_NOSUCHOBJECT);
    for (const int column : {1, 2, 6, 10}) {  // no database, so no record
        EXPECT_EQ(get(handler, column, {5}).error, SNMP_NOSUCHINSTANCE) << column;
    }
}

TEST_F(OltTablesTest, OltStatePrintsNegativeWordsAsWideNumbers) {
    board.answer(69, words({0, 0xFFFF, 0x8000, 0x7FFF, 0, 0, 0, 0, 0, 0, 0, 0, 0xFFFF, 0x8000, 0x8000, 0}));
    EXPECT_EQ(get(tarnOLTStateTable_module_handler, 2).octets, "4294967295.4294934528.32767");
    EXPECT_EQ(get(tarnOLTStateTable_module_handler, 4).octets, "FFFFFFFF.FFFF8000");
    EXPECT_EQ(get(tarnOLTStateTable_module_handler, 6).octets, "FFFF8000.0");
}

// Texts at 0, 32, 64, 96 and at 0, 16, 32, 48.
TEST_F(OltTablesTest, BoardStateShowsTheTextsOfTwoRecords) {
    const auto handler = tarnBoardStateTable_module_handler;
    const auto texts = [](std::size_t size, std::initializer_list<std::string> parts) {
        Bytes record;
        for (std::string part : parts) {
            part.resize(size);
            record.insert(record.end(), part.begin(), part.end());
        }
        return record;
    };
    const std::string full(32, 'x');
    board.answer(413, texts(32, {"TARN-LC8", "LC100001", full, "slot 3"}));
    board.answer(412, texts(16, {"3.38.1", "1.2", "2.0.2", "0123456789abcdef"}));
    expect_readings([&](int column) { return get(handler, column); }, is_unsigned(1, 3),
                    is_octets(2, "TARN-LC8"), is_octets(3, "LC100001"), is_octets(4, full),
                    is_octets(5, "slot 3"), is_octets(6, "3.38.1"), is_octets(7, "1.2"),
                    is_octets(8, "2.0.2"), is_octets(9, "0123456789abcdef"), is_number(10, 1));
    EXPECT_EQ(board.count(413), 1);
    EXPECT_EQ(board.count(412), 1);
    EXPECT_EQ(get(handler, 11).integer, 1);
    EXPECT_EQ(get(handler, 12).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(handler, 2, {5}).error, SNMP_NOSUCHINSTANCE) << "no database, so no record";
    EXPECT_EQ(set(handler, 2, octets_value("mine")), SNMP_ERR_NOTWRITABLE);
    board.link[2] = false;
    EXPECT_EQ(get(handler, 10).integer, 2);
}

TEST_F(OltTablesTest, OltIsReconfiguredByExactlyOne) {
    const auto handler = tarnOLTStateTable_module_handler;
    board.answer(13, {});
    EXPECT_EQ(set(handler, 10, unsigned_value(0)), 0);
    EXPECT_EQ(set(handler, 10, unsigned_value(2)), 0);
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(set(handler, 10, unsigned_value(1)), 0);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.sent[0].bytes.size(), 33U);
    EXPECT_EQ(board.sent[0].slot(), 2);
    EXPECT_EQ(set(handler, 10, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set(handler, 2, octets_value("1.2.3")), SNMP_ERR_NOTWRITABLE);
    board.silence(13);
    EXPECT_EQ(set(handler, 10, unsigned_value(1)), SNMP_ERR_GENERR);
}

TEST_F(OltTablesTest, OneRowASlot) {
    for (const auto next : {tarnOLTStateTable_next_index, tarnSyncCountersTable_next_index,
                            tarnOLTResetCountersTable_next_index}) {
        for (int walk = 0; walk < 2; ++walk) {
            EXPECT_EQ(indices_of(next, 2, {0}), (std::vector<IndexValues>{{3}}));
        }
    }
    netsnmp_variable_list index{};
    void *loop_context = nullptr;
    void *row_data = nullptr;
    EXPECT_EQ(tarnOLTResetCountersTable_next_index(&loop_context, &row_data, &index, 5), &index);
    EXPECT_EQ(loop_context, &dummy);
    EXPECT_EQ(row_data, &dummy);
    EXPECT_EQ(*index.val.integer, 6);
    EXPECT_EQ(tarnOLTResetCountersTable_next_index(&loop_context, &row_data, &index, 5), nullptr);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(OltTablesTest, SyncCountersReadZeroAndIgnoreTheRest) {
    const auto handler = tarnSyncCountersTable_module_handler;
    EXPECT_EQ(get(handler, 1).integer, 3);
    for (const int column : {2, 3}) {
        EXPECT_EQ(get(handler, column).integer, 0);
        EXPECT_EQ(get(handler, column).type, ASN_UNSIGNED);
    }
    EXPECT_EQ(get(handler, 4).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(handler, 1, {3}, false).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(set(handler, 2, unsigned_value(1)), 0);
}

TEST_F(OltTablesTest, MulticastGroupsHaveNoRows) {
    EXPECT_TRUE(walk_iterator(tarnONTMulticastGroupsTable_next_index, 2, {0}).empty());
    EXPECT_EQ(get(tarnONTMulticastGroupsTable_module_handler, 1).type, ASN_NULL);
}

TEST_F(OltTablesTest, OltCountersAreResetInTwoHalvesByAnyValue) {
    const auto handler = tarnOLTResetCountersTable_module_handler;
    board.answer(67, {});
    EXPECT_EQ(set(handler, 2, unsigned_value(0)), 0);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.payload_of(0), (Bytes{16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(board.payload_of(1), (Bytes{16, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    expect_readings([&](int column) { return get(handler, column); }, is_number(1, 3), is_unsigned(2, 0),
                    is_missing(3));
    EXPECT_EQ(get(handler, 2, {3}, false).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(set(handler, 1, unsigned_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set(handler, 2, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_NE(set(handler, 2, unsigned_value(1), {3}, false), 0);
    board.silence(67);
    EXPECT_EQ(set(handler, 2, unsigned_value(1)), SNMP_ERR_GENERR);
}

TEST_F(OltTablesTest, OntCountersAreResetBySerial) {
    const auto handler = tarnONTResetCountersTable_module_handler;
    const IndexValues ont = {3, "BBBB0001"};
    board.answer(67, {});
    EXPECT_EQ(set(handler, 3, unsigned_value(7), ont), 0);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.payload_of(0),
              (Bytes{5, 0, 0, 0, 0, 'B', 'B', 'B', 'B', '0', '0', '0', '1', 0, 0, 0, 0, 0}));
    expect_readings([&](int column) { return get(handler, column, ont); }, is_number(1, 3),
                    is_octets(2, "BBBB0001"), is_number(3, 0), is_missing(4));
    EXPECT_EQ(set(handler, 1, unsigned_value(1), ont), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set(handler, 2, octets_value("x"), ont), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set(handler, 3, octets_value("x"), ont), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(board.sent.size(), 1U);
    board.silence(67);
    EXPECT_EQ(set(handler, 3, unsigned_value(1), ont), SNMP_ERR_GENERR);
}

TEST_F(OltTablesTest, OntResetRowsAreTheListUpToItsFirstFreePosition) {
    Bytes list = list_of({"CCCC0001", "AAAA0001", "BBBB0001"});
    board.answer(73, list);
    const auto rows = walk_iterator(tarnONTResetCountersTable_next_index, 2, {0, ""});
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].index, (IndexValues{3, "CCCC0001"}));
    EXPECT_EQ(rows[1].index, (IndexValues{3, "AAAA0001"}));
    EXPECT_EQ(rows[1].row, tarn::slot_sections<tarn::OntSections>(2)->ont_list[1].data());
    EXPECT_EQ(board.sent[0].timeout_ms, 10000);

    std::fill_n(list.begin() + 5, 8, std::uint8_t{0});
    board.answer(73, list);
    board.everything_stale = true;
    EXPECT_TRUE(walk_iterator(tarnONTResetCountersTable_next_index, 2, {0, ""}).empty());

    board.answer(73, list_of(std::vector<std::string>(1024, "AAAA0001")));
    EXPECT_EQ(walk_iterator(tarnONTResetCountersTable_next_index, 2, {0, ""}).size(), 1024U);
}

}  // namespace
