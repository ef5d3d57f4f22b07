// The three tables of the PON channels.
#include "module/store/channel_sections.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"
#include "tarn/host_services.h"

extern "C" {
next_index_function tarnPONChannelStateTable_next_index, tarnPONChannelActModeTable_next_index;
module_handler_function tarnPONChannelStateTable_module_handler, tarnPONChannelActModeTable_module_handler;
get_next_entry_function tarnPONChannelAddressTable_get_next_entry;
table_handler_nextgen_function tarnPONChannelAddressTable_table_handler_nextgen;
void tarnPONChannelAddressTable_append_index(table_entry *, const oid *, std::size_t, int, int, int, int);
int tarnPONChannelAddressTable_get_first_available_config_index_2(int, const oid *, std::size_t);
std::uint8_t *get_entry_by_oid(int, const oid *, std::size_t);
}

namespace {

const Oid address_table = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 1, 3};

Oid address_oid(oid column, std::initializer_list<oid> index) {
    Oid name = address_table;
    name.insert(name.end(), {1, column});
    name.insert(name.end(), index);
    return name;
}

class PonChannelTablesTest : public Started<ModuleTest, 2> {
  protected:
    static Outcome state(int column, int channel = 4, int mode = MODE_GET, const Value *value = nullptr) {
        static int row = 0;
        return call_iterator(tarnPONChannelStateTable_module_handler, mode, column, {3, channel}, &row,
                             value);
    }
    static int set_state(int column, const Value &value, int channel = 4) {
        static int row = 0;
        return set_iterator(tarnPONChannelStateTable_module_handler, column, {3, channel}, &row, value);
    }
    static Outcome act_mode(int column, int mode = MODE_GET, const Value *value = nullptr) {
        static int row = 0;
        return call_iterator(tarnPONChannelActModeTable_module_handler, mode, column, {3, 8}, &row, value);
    }
};

TEST_F(PonChannelTablesTest, StateHasEightRowsASlot) {
    const auto rows = walk_iterator(tarnPONChannelStateTable_next_index, 2, {0, 0});
    ASSERT_EQ(rows.size(), 8U);
    EXPECT_EQ(rows[0].index, (IndexValues{3, 1}));
    EXPECT_EQ(rows[7].index, (IndexValues{3, 8}));
    EXPECT_EQ(rows[7].row, tarn::slot_sections<tarn::ChannelSections>(2)->channel_states[7].data());
    EXPECT_TRUE(walk_iterator(tarnPONChannelStateTable_next_index, 3, {0, 0}).empty());
    EXPECT_EQ(walk_iterator(tarnPONChannelActModeTable_next_index, 2, {0, 0}).size(), 8U);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(PonChannelTablesTest, EveryStateColumnComesFromItsField) {
    Bytes full(1 + 8 * 69, 0);
    std::uint8_t *record = &full[1 + 3 * 69];
    const auto put_text = [record](int offset, const char *text) {
        std::copy(text, text + std::char_traits<char>::length(text), record + offset);
    };
    put_text(12, "first");
    put_text(29, "seventeen letters");  // fills its field, no NUL
    put_text(46, "abcde");
    tarn::store_le32(record + 51, 0xFFFFFFFF);
    tarn::store_le32(record + 55, 55);
    tarn::store_le32(record + 59, 0x80000000);
    tarn::store_le32(record + 63, 63);
    board.answer(70, full);
    Bytes lite(1 + 8 * 69, 0);
    tarn::store_le16(&lite[1 + 3 * 69 + 3], 0xFFFE);
    tarn::store_le32(&lite[1 + 3 * 69 + 7], 0xFFFFFFFD);
    board.answer(71, lite);
    Bytes config(98, 0);
    config[1] = 1;
    board.answer(85, config);

    // Column 1 counts from 0, unlike the index.
    expect_readings([&](int column) { return state(column); }, is_unsigned(1, 2), is_number(2, 3),
                    is_number(3, 0xFFFE), is_unsigned(4, 0xFFFFFFFD), is_integer(5, 1), is_octets(6, "first"),
                    is_octets(7, "seventeen letters"), is_octets(8, "abcde"), is_number(9, 63),
                    is_integer(10, -1), is_number(11, 55), is_number(12, -2147483648L), is_number(20, 0),
                    is_number(21, 0));
    for (const int column : {0, 13, 19, 22}) {
        EXPECT_EQ(state(column).error, SNMP_NOSUCHOBJECT) << column;
    }
    EXPECT_EQ(board.sent.size(), 3U);  // one a section
    const Outcome no_row =
        call_iterator(tarnPONChannelStateTable_module_handler, MODE_GET, 3, {3, 4}, nullptr);
    EXPECT_EQ(no_row.result, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(no_row.error, 0);
}

TEST_F(PonChannelTablesTest, TriggersActOnAnyValue) {
    board.answer(14, {});
    board.answer(67, {});
    EXPECT_EQ(set_state(20, unsigned_value(0)), 0);
    EXPECT_EQ(set_state(21, unsigned_value(99)), 0);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.payload_of(0), (Bytes{3}));
    EXPECT_EQ(board.payload_of(1), (Bytes{16, 0, 0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    board.silence(14);
    const Value one = unsigned_value(1);
    const Outcome failed = state(20, 4, MODE_SET_ACTION, &one);
    EXPECT_EQ(failed.error, SNMP_ERR_GENERR);
    EXPECT_EQ(failed.result, SNMP_ERR_GENERR);
}

TEST_F(PonChannelTablesTest, OnlyAnExactOneEnablesAChannelWhoseConfigurationWasRead) {
    board.answer(86, {});
    EXPECT_EQ(set_state(5, integer_value(1)), SNMP_ERR_GENERR);  // the card has not shown it
    EXPECT_EQ(board.count(86), 0);
    board.answer(85, Bytes(98, 0xEE));
    for (const auto &[value, stored] : {std::pair{1, 1}, {2, 0}, {7, 0}}) {
        EXPECT_EQ(set_state(5, integer_value(value)), 0);
        Bytes expected(98, 0xEE);
        expected[0] = 3;
        expected[1] = static_cast<std::uint8_t>(stored);
        expected[2] = 0;  // the word's high byte too
        EXPECT_EQ(board.last_payload(), expected);
        board.silence(85);  // the write made it stale, but it is known
    }
    board.silence(86);
    EXPECT_EQ(set_state(5, integer_value(1)), SNMP_ERR_GENERR);
    // The cached record is not the card's any more.
    board.answer(86, {});
    board.sent.clear();
    EXPECT_EQ(set_state(5, integer_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(board.count(86), 0);
}

TEST_F(PonChannelTablesTest, RefusedWritesSendNothing) {
    EXPECT_EQ(set_state(20, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_state(5, unsigned_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_state(5, octets_value("1")), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_state(3, unsigned_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set_state(13, unsigned_value(1)), SNMP_ERR_NOTWRITABLE);
    // A missing row: net-snmp turns noSuchInstance into noCreation in this phase.
    EXPECT_EQ(set_state(20, unsigned_value(1), 9), SNMP_ERR_NOCREATION);
    EXPECT_EQ(set_state(20, unsigned_value(1), 0), SNMP_ERR_NOCREATION);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(PonChannelTablesTest, ActModeReadsTrueUnlessTheCardSaysOff) {
    EXPECT_EQ(act_mode(3).integer, 1);  // no answer
    EXPECT_EQ(act_mode(3).type, ASN_INTEGER);
    board.answer(313, {7, 4, 0});
    EXPECT_EQ(act_mode(3).integer, 2);
    EXPECT_EQ(board.payload_of(0), (Bytes{7}));
    EXPECT_EQ(act_mode(1).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(call_iterator(tarnPONChannelActModeTable_module_handler, MODE_GET, 3, {3, 8}, nullptr).error,
              SNMP_NOSUCHINSTANCE);
}

TEST_F(PonChannelTablesTest, ActModeIsWrittenAsTwoOrFour) {
    int row = 0;
    const auto set = [&row](int column, const Value &value) {
        return set_iterator(tarnPONChannelActModeTable_module_handler, column, {3, 8}, &row, value);
    };
    board.answer(314, {});
    EXPECT_EQ(set(3, integer_value(1)), 0);
    EXPECT_EQ(board.payload_of(0), (Bytes{7, 2, 0}));
    EXPECT_EQ(set(3, integer_value(2)), 0);
    EXPECT_EQ(board.payload_of(1), (Bytes{7, 4, 0}));
    EXPECT_EQ(set(3, integer_value(0)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set(3, integer_value(3)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set(3, unsigned_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set(2, integer_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(board.sent.size(), 2U);
    board.silence(314);
    EXPECT_EQ(set(3, integer_value(1)), SNMP_ERR_GENERR);
}

// Two entries: channel 5, then channel 1; every byte of the first has a value of its own.
Bytes two_addresses() {
    Bytes payload(3 + 2 * 37);
    payload[1] = 2;
    for (std::size_t b = 0; b < 37; ++b) {
        payload[3 + b] = static_cast<std::uint8_t>(0x80 + b);
    }
    payload[3 + 20] = 5;
    payload[3 + 37 + 20] = 1;
    return payload;
}

TEST_F(PonChannelTablesTest, AddressesAreWalkedInTheCardsOrder) {
    board.answer(80, two_addresses());
    const std::vector<Oid> expected = {address_oid(9, {3, 6, 1}), address_oid(9, {3, 2, 2})};
    EXPECT_EQ(walk_nextgen(tarnPONChannelAddressTable_get_next_entry, 2, address_table, 9), expected);
    const auto next = tarnPONChannelAddressTable_get_next_entry;
    EXPECT_EQ(next_of(next, 2, address_oid(9, {3, 7}), 9), expected[0]);
    EXPECT_EQ(next_of(next, 2, address_oid(9, {3, 99, 1}), 9), expected[1]);  // the channel does not matter
    EXPECT_TRUE(next_of(next, 2, address_oid(9, {3, 1, 4294967295}), 9).empty());
    EXPECT_TRUE(next_of(next, 5, address_table, 9).empty());
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(PonChannelTablesTest, EveryAddressColumnComesFromItsField) {
    Bytes payload = two_addresses();
    payload[3 + 14] = 1;
    payload[3 + 15] = 0;
    board.answer(80, payload);
    const auto get = [](oid column, std::initializer_list<oid> index = {3, 6, 1}) {
        return call_nextgen(tarnPONChannelAddressTable_table_handler_nextgen, MODE_GET, 2,
                            address_oid(column, index));
    };
    // Column 5 is sign-extended, then unsigned.
    expect_readings(get, is_octets(4, "\x95\x96\x97\x98\x99\x9A\x9B\x9C"), is_unsigned(5, 0xFFFF9392),
                    is_integer(6, 0x8180 - 0x10000), is_number(7, 0x8584 - 0x10000),
                    is_number(8, 0x8786 - 0x10000), is_octets(9, "\x88\x89\x8A\x8B\x8C\x8D"),
                    is_number(10, 1), is_number(11, 2), is_number(12, 0x9E9D), is_integer(13, 0xA09F),
                    is_number(14, 0xA2A1), is_number(15, 0xA4A3), is_number(16, 0x8382 - 0x10000));
    for (const oid column : {1U, 3U, 17U}) {
        EXPECT_EQ(get(column).error, SNMP_NOSUCHOBJECT) << column;
    }
    EXPECT_EQ(get(9, {3, 77, 1}).octets.size(), 6U);  // the channel is not checked
    EXPECT_EQ(get(9, {3, 6, 0}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(9, {3, 6, 3}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(9, {3, 6}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(9, {}).error, SNMP_NOSUCHOBJECT);
}

TEST_F(PonChannelTablesTest, SlotsBeyondAByteWrapAround) {
    board.answer(80, two_addresses());
    const Oid second = address_oid(9, {3, 2, 2});
    EXPECT_EQ(
        call_nextgen(tarnPONChannelAddressTable_table_handler_nextgen, MODE_GET, 258, second).octets.size(),
        6U);
    EXPECT_EQ(next_of(tarnPONChannelAddressTable_get_next_entry, 258, address_table, 9).size(), 16U);
    EXPECT_NE(get_entry_by_oid(258, second.data(), 16), nullptr);
}

TEST_F(PonChannelTablesTest, AddressesAreNeverWritten) {
    board.answer(80, two_addresses());
    const Value value = integer_value(1);
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_ACTION, MODE_SET_COMMIT, 99}) {
        EXPECT_EQ(call_nextgen(tarnPONChannelAddressTable_table_handler_nextgen, mode, 2,
                               address_oid(6, {3, 6, 1}), &value)
                      .error,
                  0);
    }
    EXPECT_TRUE(board.sent.empty());
    EXPECT_TRUE(board.log.empty());
}

TEST_F(PonChannelTablesTest, AnEmptyAddressTableHasNoRowOne) {
    board.answer(80, {255, 0, 0});
    EXPECT_TRUE(walk_nextgen(tarnPONChannelAddressTable_get_next_entry, 2, address_table, 4).empty());
    EXPECT_EQ(
        call_nextgen(tarnPONChannelAddressTable_table_handler_nextgen, MODE_GET, 2, address_oid(4, {3, 1, 1}))
            .error,
        SNMP_NOSUCHOBJECT);
}

TEST_F(PonChannelTablesTest, TheIndexFunctionsOfTheAddressTableAreExported) {
    board.answer(80, two_addresses());
    const Oid second = address_oid(4, {3, 1, 2});
    EXPECT_EQ(tarnPONChannelAddressTable_get_first_available_config_index_2(2, address_table.data(), 11), 1);
    EXPECT_EQ(tarnPONChannelAddressTable_get_first_available_config_index_2(2, second.data(), 16), 0);
    EXPECT_EQ(get_entry_by_oid(2, second.data(), 16)[20], 1);
    EXPECT_EQ(get_entry_by_oid(2, second.data(), 15), nullptr);
    table_entry entry{};
    tarnPONChannelAddressTable_append_index(&entry, address_table.data(), 11, 2, 0, 2, 4);
    EXPECT_EQ(Oid(entry.name, entry.name + entry.length), second);
    bfree("", 0, entry.name);

    board.balloc_fails = true;
    tarnPONChannelAddressTable_append_index(&entry, address_table.data(), 11, 2, 0, 2, 4);
    EXPECT_EQ(entry.name, nullptr);
    EXPECT_EQ(entry.length, 0U);
    EXPECT_EQ(board.log.back(),
              "3 tarnPONChannelAddressTable_append_index : memory allocation error. Tried to "
              "allocate 64 bytes\n");
}

}  // namespace
