// The tables of configured and operational VLANs, of ports, and of the switch's general options.
#include "module/start/start.h"
#include "module/switch/switch_vlans.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"
#include "wire/bytes.h"

extern "C" {
get_next_entry_function tarnSwitchVLANTable_get_next_entry;
table_handler_nextgen_function tarnSwitchVLANTable_table_handler_nextgen;
next_index_function tarnSwitchOperationalVLANTable_next_index, tarnSwitchPortsTable_next_index,
    tarnSwitchIGMPSnoopingTable_next_index, tarnP2PTable_next_index;
module_handler_function tarnSwitchOperationalVLANTable_module_handler, tarnSwitchPortsTable_module_handler,
    tarnSwitchIGMPSnoopingTable_module_handler, tarnP2PTable_module_handler;
int add_vlan_to_commit(int slot, int index);
void append_vlan_index(table_entry *, const oid *, std::size_t, int, int, int);
}

namespace {

constexpr int slot = 3;
constexpr int missing_in_action = SNMP_ERR_NOSUCHNAME;  // what net-snmp makes of noSuchInstance there

Bytes vlan_list_of(std::initializer_list<int> numbers, int count = -1) {
    Bytes list(8190, 0);
    tarn::store_le16(list.data(),
                     static_cast<std::uint16_t>(count < 0 ? static_cast<int>(numbers.size()) : count));
    std::size_t at = 2;
    for (const int number : numbers) {
        tarn::store_le16(&list[at], static_cast<std::uint16_t>(number));
        at += 2;
    }
    return list;
}

// Ports 0 and 9 and group 0 in the first list, port 19 in the second.
Bytes sample_vlan() {
    Bytes record(84, 0xEE);
    const std::string name = "office";
    std::fill(record.begin(), record.begin() + 32, std::uint8_t{0});
    std::copy(name.begin(), name.end(), record.begin());
    record[32] = 1;
    tarn::store_le32(&record[34], 0x00000201);
    tarn::store_le32(&record[38], 0x00080000);
    tarn::store_le16(&record[42], 1);
    tarn::store_le16(&record[44], 0);
    record[46] = 1;
    record[47] = 2;
    record[67] = 0;
    record[68] = 1;
    return record;
}

const Oid vlan_table = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 4, 1};

Oid vlan_name(oid column, oid index) {
    Oid name = vlan_table;
    name.insert(name.end(), {1, column, slot + 1, index});
    return name;
}

class SwitchVlanTablesTest : public Started<ModuleTest, 0, slot> {
  protected:
    void SetUp() override {
        Started::SetUp();
        board.answer(0xAA, vlan_list_of({0, 9, 4093}));
        board.scripts[0xB4] = [](const SentRequest &request) {
            const int first = tarn::load_le16(&request.bytes[32]);
            const int count = tarn::load_le16(&request.bytes[34]);
            Bytes answer(request.bytes.begin() + 32, request.bytes.end());
            for (int number = first; number < first + count; ++number) {
                Bytes record = sample_vlan();
                record[32] = number == 0 || number == 9 || number == 4093 ? 1 : 0;
                answer.insert(answer.end(), record.begin(), record.end());
            }
            return make_answer(answer);
        };
        board.answer(0xC3, {});
    }
    static Outcome get(int column, oid index = 10) { return call(MODE_GET, column, index); }
    static Outcome call(int mode, int column, oid index = 10, const Value *value = nullptr) {
        return call_nextgen(tarnSwitchVLANTable_table_handler_nextgen, mode, slot,
                            vlan_name(static_cast<oid>(column), index), value);
    }
    static int set(int column, const Value &value, oid index = 10) {
        return set_nextgen(tarnSwitchVLANTable_table_handler_nextgen, slot,
                           vlan_name(static_cast<oid>(column), index), value);
    }
    // The record that was sent last, after its number.
    static Bytes sent_vlan() {
        Bytes sent = board.last_payload();
        EXPECT_EQ(board.sent.back().command(), 0xC3);
        return {sent.begin() + 2, sent.end()};
    }
};

TEST_F(SwitchVlanTablesTest, TheWalkFollowsTheListByIdentifier) {
    EXPECT_EQ(walk_nextgen(tarnSwitchVLANTable_get_next_entry, slot, vlan_table, 3),
              (std::vector<Oid>{vlan_name(3, 1), vlan_name(3, 10), vlan_name(3, 4094)}));
    EXPECT_EQ(next_of(tarnSwitchVLANTable_get_next_entry, slot, vlan_name(3, 5), 3), vlan_name(3, 10));
    EXPECT_EQ(next_of(tarnSwitchVLANTable_get_next_entry, slot, vlan_name(3, 0xFFFFFFFF), 3), Oid{});
    EXPECT_EQ(board.sent.size(), 1U);
    board.answer(0xAA, vlan_list_of({0, 1}, 65535));
    board.everything_stale = true;
    EXPECT_LE(walk_nextgen(tarnSwitchVLANTable_get_next_entry, slot, vlan_table, 3, 5000).size(), 4094U);
}

TEST_F(SwitchVlanTablesTest, LackOfMemoryForAnIdentifierIsLoggedInTheCardsUnits) {
    board.balloc_fails = true;
    table_entry entry{};
    append_vlan_index(&entry, vlan_table.data(), vlan_table.size(), slot, 7, 3);
    EXPECT_EQ(entry.name, nullptr);
    EXPECT_EQ(board.log, std::vector<std::string>{
                             "3 append_vlan_index : memory allocation error. Tried to allocate 60 bytes\n"});
    // An identifier that ends before the table's is not read.
    board.balloc_fails = false;
    append_vlan_index(&entry, vlan_table.data(), 10, slot, 7, 3);
    EXPECT_EQ(entry.name, nullptr);
}

TEST_F(SwitchVlanTablesTest, EveryColumnComesFromItsField) {
    expect_readings([&](int column) { return get(column); }, is_unsigned(1, slot + 1), is_number(2, 10),
                    is_octets(3, "office"), is_octets(4, std::string("\x80\x40\x08\x00", 4)),
                    is_octets(5, std::string("\x00\x00\x10\x00", 4)));
    for (const auto &[column, value] : {std::pair{6, 1}, {10, 1}, {11, 2}, {20, 2}, {21, 1}}) {
        EXPECT_EQ(get(column).integer, value) << column;
        EXPECT_EQ(get(column).type, 2) << column;
    }
    for (const int column : {0, 7, 8, 9, 12, 19, 22}) {
        EXPECT_EQ(get(column).error, SNMP_NOSUCHOBJECT) << column;
    }
    for (const oid index : {oid{0}, oid{2}, oid{4095}, oid{65546}, oid{0x10000000A}}) {
        EXPECT_EQ(get(2, index).error, SNMP_NOSUCHINSTANCE) << index;
        EXPECT_EQ(get(6, index).error, SNMP_NOSUCHINSTANCE) << index;
        EXPECT_EQ(get(7, index).error, SNMP_NOSUCHINSTANCE) << index;
    }
}

TEST_F(SwitchVlanTablesTest, ValuesAreCheckedFirst) {
    for (const int column : {1, 2, 7, 9, 12, 19, 22}) {
        EXPECT_EQ(set(column, integer_value(1)), SNMP_ERR_NOTWRITABLE) << column;
    }
    EXPECT_EQ(set(3, octets_value(std::string(32, 'x'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set(3, integer_value(1)), SNMP_ERR_WRONGTYPE);
    for (const int column : {4, 5}) {
        EXPECT_EQ(set(column, octets_value("123")), SNMP_ERR_WRONGLENGTH);
    }
    for (const int column : {10, 11, 20, 21}) {
        EXPECT_EQ(set(column, unsigned_value(1)), SNMP_ERR_WRONGTYPE) << column;
    }
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(SwitchVlanTablesTest, EditsAreStagedAndSentAtTheEnd) {
    EXPECT_EQ(set(3, octets_value("x")), missing_in_action);  // an edit does not fetch
    EXPECT_TRUE(board.sent.empty());
    get(3);
    const std::string name(31, 'n');
    EXPECT_EQ(set(3, octets_value(name)), 0);
    Bytes expected = sample_vlan();
    std::copy(name.begin(), name.end(), expected.begin());
    expected[31] = 0;
    EXPECT_EQ(sent_vlan(), expected);
    EXPECT_EQ(board.last_payload()[0], 9);
    EXPECT_EQ(set(3, octets_value("ab")), 0);
    EXPECT_EQ(get(3).octets, "ab");
    expected = sent_vlan();

    // Port 1, all groups: only group 0 gets through.
    EXPECT_EQ(set(4, octets_value(std::string("\x40\x00\x0F\xFF", 4))), 0);
    tarn::store_le32(&expected[34], 2);
    tarn::store_le16(&expected[42], 1);
    EXPECT_EQ(sent_vlan(), expected);
    EXPECT_EQ(set(5, octets_value(std::string("\x00\x01\x07\xFF", 4))), 0);
    tarn::store_le32(&expected[38], 0x00008000);
    tarn::store_le16(&expected[44], 0);
    EXPECT_EQ(sent_vlan(), expected);
    for (const auto &[column, at] : {std::pair{10, 46}, {11, 47}, {20, 67}, {21, 68}}) {
        EXPECT_EQ(set(column, integer_value(1)), 0);
        expected[static_cast<std::size_t>(at)] = 1;
        EXPECT_EQ(sent_vlan(), expected);
        EXPECT_EQ(set(column, integer_value(7)), 0);
        expected[static_cast<std::size_t>(at)] = 0;
        EXPECT_EQ(sent_vlan(), expected);
    }
}

// Nothing is read in between, so that no edit is lost.
TEST_F(SwitchVlanTablesTest, OneCommitSendsEveryVlanOnce) {
    get(3);
    board.everything_stale = true;
    board.sent.clear();
    const Value name = octets_value("x");
    const Value flag = integer_value(1);
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION}) {
        call(mode, 3, 10, &name);
        call(mode, 3, 1, &name);
        call(mode, 10, 10, &flag);
    }
    EXPECT_EQ(call(MODE_SET_COMMIT, 3, 10, &name).error, 0);
    EXPECT_EQ(call(MODE_SET_COMMIT, 3, 1, &name).error, 0);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.payload_of(0)[0], 9);
    EXPECT_EQ(board.payload_of(0)[2], 'x');
    EXPECT_EQ(board.payload_of(0)[2 + 46], 1);
    EXPECT_EQ(board.payload_of(1)[0], 0);
}

TEST_F(SwitchVlanTablesTest, AFailedCommitDropsTheRest) {
    get(3);
    board.silence(0xC3);
    const Value name = octets_value("x");
    call(MODE_SET_RESERVE1, 3, 1, &name);
    call(MODE_SET_ACTION, 3, 1, &name);
    call(MODE_SET_ACTION, 3, 10, &name);
    board.sent.clear();
    EXPECT_EQ(call(MODE_SET_COMMIT, 3, 1, &name).error, SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(call(MODE_SET_COMMIT, 3, 10, &name).error, 0);
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(SwitchVlanTablesTest, WhatASetDidNotSendIsFetchedAnew) {
    const auto variable = [](const Value &value, oid index, int of_slot) {
        Oid name = vlan_name(3, index);
        name[13] = static_cast<oid>(of_slot + 1);
        return [=](int mode) {
            return call_nextgen(tarnSwitchVLANTable_table_handler_nextgen, mode, of_slot, name, &value);
        };
    };
    const Value name = octets_value("edited");
    get(3);
    EXPECT_EQ(set_together({variable(name, 10, slot), variable(name, 20, slot)}), missing_in_action);
    EXPECT_EQ(get(3).octets, "office");
    board.silence(0xC3);
    EXPECT_EQ(set(3, name), SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(get(3).octets, "office");
    EXPECT_EQ(set(6, integer_value(4), 20), SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(get(3, 20).error, SNMP_NOSUCHINSTANCE);
    board.answer(0xC3, {});
    // The queue's entry goes over to slot 0.
    get_switch_vlans_block(0);
    EXPECT_EQ(set_together({variable(name, 10, slot), variable(name, 1, 0)}), 0);
    EXPECT_EQ(get(3).octets, "office");
    EXPECT_EQ(get_switch_vlans_block(0)[0][0], 'e');  // sent
}

TEST_F(SwitchVlanTablesTest, ARowIsCreatedResetAndDestroyedByItsStatus) {
    get(3);
    EXPECT_EQ(set(6, integer_value(4), 20), 0);
    Bytes fresh(84, 0);
    fresh[32] = 1;
    fresh[50] = 3;
    fresh[52] = 1;
    fresh[53] = 125;
    fresh[55] = 10;
    fresh[56] = 2;
    EXPECT_EQ(sent_vlan(), fresh);
    EXPECT_EQ(get(3, 20).octets, "");
    EXPECT_EQ(set(3, octets_value("mine"), 20), 0);
    EXPECT_EQ(set(6, integer_value(5), 20), 0);  // an existing VLAN is reset
    EXPECT_EQ(sent_vlan(), fresh);
    EXPECT_EQ(set(6, integer_value(1), 20), 0);
    EXPECT_EQ(sent_vlan(), fresh);
    EXPECT_EQ(set(6, octets_value("6"), 20), 0);  // no integer: nothing
    EXPECT_EQ(sent_vlan(), fresh);
    EXPECT_EQ(set(6, integer_value(6), 20), 0);
    fresh[32] = 0;
    EXPECT_EQ(sent_vlan(), fresh);
    EXPECT_EQ(set(3, octets_value("gone"), 20), missing_in_action);

    EXPECT_EQ(set(6, integer_value(6), 30), SNMP_ERR_COMMITFAILED);  // was never there
    for (const oid index : {oid{0}, oid{4095}, oid{65537}}) {
        board.sent.clear();
        EXPECT_EQ(set(6, integer_value(4), index), SNMP_ERR_GENERR) << index;
        EXPECT_EQ(set(3, octets_value("x"), index), missing_in_action) << index;
        EXPECT_TRUE(board.sent.empty());
    }
}

TEST_F(SwitchVlanTablesTest, TheSeventeenthVlanOfOneSetIsRefused) {
    const Value create = integer_value(4);
    call(MODE_SET_RESERVE1, 6, 1, &create);
    for (oid index = 1; index <= 16; ++index) {
        EXPECT_EQ(call(MODE_SET_ACTION, 6, index, &create).error, 0);
    }
    EXPECT_EQ(call(MODE_SET_ACTION, 6, 17, &create).error, SNMP_ERR_GENERR);
    call(MODE_SET_RESERVE1, 6, 17, &create);  // the next SET begins anew
    EXPECT_EQ(call(MODE_SET_ACTION, 6, 17, &create).error, 0);
    board.sent.clear();
    call(MODE_SET_COMMIT, 6, 17, &create);
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(SwitchVlanTablesTest, TheQueueKnowsItsEntriesAgainExceptInSlot0) {
    const Value create = integer_value(4);
    call(MODE_SET_RESERVE1, 6, 1, &create);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(add_vlan_to_commit(0, 5), 0);
    }
    EXPECT_EQ(add_vlan_to_commit(slot, 5), -1);
    call(MODE_SET_RESERVE1, 6, 1, &create);
    ASSERT_EQ(init_switch_vlan(slot, 5), 0);
    EXPECT_EQ(add_vlan_to_commit(0, 5), 0);
    EXPECT_EQ(add_vlan_to_commit(slot, 5), 0);  // takes the entry over
    board.sent.clear();
    EXPECT_EQ(call(MODE_SET_COMMIT, 6, 5, &create).error, 0);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.sent[0].slot(), slot);
}

TEST_F(SwitchVlanTablesTest, OperationalVlansAreNumberedAsListed) {
    board.answer(0xAA, vlan_list_of({1, 4094, 7, 5000}));
    Bytes answer = {0, 0};
    const Bytes record = sample_vlan();
    answer.insert(answer.end(), record.begin(), record.end());
    board.answer(0xB3, answer);
    const auto rows = walk_iterator(tarnSwitchOperationalVLANTable_next_index, slot, {0, 0});
    ASSERT_EQ(rows.size(), 4U);
    EXPECT_EQ(rows[1].index, (IndexValues{slot + 1, 4094}));
    EXPECT_EQ(rows[2].index, (IndexValues{slot + 1, 7}));
    EXPECT_EQ(board.sent.size(), 1U);
    int row = 0;
    const auto read = [&](int column, int number = 4094) {
        return call_iterator(tarnSwitchOperationalVLANTable_module_handler, MODE_GET, column,
                             {slot + 1, number}, &row);
    };
    expect_readings(read, is_number(1, slot + 1), is_number(2, 4094), is_octets(3, "office"),
                    is_octets(4, std::string("\x80\x40\x08\x00", 4)),
                    is_octets(5, std::string("\x00\x00\x10\x00", 4)), is_missing(6));
    EXPECT_EQ(read(1, 5000).error, SNMP_NOSUCHOBJECT);
    board.silence(0xB3);
    EXPECT_EQ(read(1, 7).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(
        call_iterator(tarnSwitchOperationalVLANTable_module_handler, MODE_GET, 1, {slot + 1, 7}, nullptr)
            .error,
        SNMP_NOSUCHINSTANCE);
}

TEST_F(SwitchVlanTablesTest, PortsAreListedWithTheirNames) {
    std::vector<long> ports;
    for (const WalkedRow &row : walk_iterator(tarnSwitchPortsTable_next_index, slot, {0})) {
        ports.push_back(row.index[0].number);
    }
    EXPECT_EQ(ports, (std::vector<long>{1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, 21}));
    int row = 0;
    const auto read = [&](int column, int port, int mode = MODE_GET) {
        const Value value = integer_value(1);
        return call_iterator(tarnSwitchPortsTable_module_handler, mode, column, {port}, &row, &value);
    };
    EXPECT_EQ(read(1, 21).integer, 21);
    EXPECT_EQ(read(1, 21).type, 66);
    EXPECT_EQ(read(2, 21).octets, "slot-channel 0");
    EXPECT_EQ(read(2, 6).octets, "unknown");
    EXPECT_EQ(read(3, 1).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(read(2, 1, MODE_SET_RESERVE1).error, 0);
}

struct Option {
    next_index_function *next;
    module_handler_function *handler;
    std::size_t at;  // of its byte in the section
    int failure;     // of a SET that the card does not answer
};

TEST_F(SwitchVlanTablesTest, GeneralOptionsAreSentAtOnce) {
    for (const auto &[next, handler, at, failure] :
         {Option{tarnSwitchIGMPSnoopingTable_next_index, tarnSwitchIGMPSnoopingTable_module_handler, 6,
                 SNMP_ERR_GENERR},
          Option{tarnP2PTable_next_index, tarnP2PTable_module_handler, 2572, 0}}) {
        slot_deinitializer(slot);
        slot_initializer(slot);
        Bytes section(2583, 0x55);
        board.answer(0xAD, section);
        board.silence(0xBE);
        const auto rows = walk_iterator(next, slot, {0});
        ASSERT_EQ(rows.size(), 1U);
        EXPECT_EQ(rows[0].index, IndexValues{slot + 1});
        const auto read = [&, h = handler](int column) {
            return call_iterator(h, MODE_GET, column, {slot + 1}, rows[0].row);
        };
        const auto write = [&, h = handler](int column, const Value &value) {
            return set_iterator(h, column, {slot + 1}, rows[0].row, value);
        };
        // Column 2 is true for whatever is not 0.
        expect_readings(read, is_number(1, slot + 1), is_integer(2, 1), is_missing(3));
        EXPECT_EQ(write(1, integer_value(1)), SNMP_ERR_NOTWRITABLE);
        EXPECT_EQ(write(2, unsigned_value(1)), SNMP_ERR_WRONGTYPE);
        const Value three = integer_value(3);
        EXPECT_EQ(call_iterator(handler, MODE_SET_RESERVE1, 2, {slot + 1}, rows[0].row, &three).error, 0);
        EXPECT_EQ(call_iterator(handler, MODE_SET_RESERVE2, 2, {slot + 1}, rows[0].row, &three).error,
                  SNMP_ERR_WRONGVALUE);
        EXPECT_EQ(write(2, integer_value(2)), failure);
        EXPECT_EQ(read(2).integer, 1);  // as the card has it
        board.answer(0xBE, {});
        EXPECT_EQ(write(2, integer_value(2)), 0);
        section[at] = 0;
        EXPECT_EQ(board.last_payload(), section);
        EXPECT_EQ(read(2).integer, 2);
        EXPECT_EQ(write(2, integer_value(1)), 0);
        section[at] = 1;
        EXPECT_EQ(board.last_payload(), section);
    }
}

TEST_F(SwitchVlanTablesTest, AnOptionIsNotSetOnASectionThatWasNeverRead) {
    Bytes section(2583, 0x55);
    board.answer(0xBE, {});
    int row = 0;
    board.silence(0xAD);
    for (module_handler_function *handler :
         {tarnSwitchIGMPSnoopingTable_module_handler, tarnP2PTable_module_handler}) {
        EXPECT_EQ(set_iterator(handler, 2, {slot + 1}, &row, integer_value(1)), SNMP_ERR_GENERR);
    }
    EXPECT_EQ(board.count(0xBE), 0);
    board.answer(0xAD, section);
    board.everything_stale = true;
    EXPECT_EQ(set_iterator(tarnP2PTable_module_handler, 2, {slot + 1}, &row, integer_value(1)), 0);
    section[2572] = 1;
    EXPECT_EQ(board.last_payload(), section);
}

}  // namespace
