// The tables over the ONT configuration records.
#include <algorithm>
#include <set>

#include "module/config/ont_config_staging.h"
#include "support/column_cases.h"
#include "support/config_image.h"
#include "wire/bytes.h"

using namespace std::string_literals;

extern "C" {
get_next_entry_function tarnONTConfigTable_get_next_entry, tarnONTSelectiveTunnelTable_get_next_entry,
    tarnONTConfigFreenessTable_get_next_entry;
table_handler_nextgen_function tarnONTConfigTable_table_handler_nextgen,
    tarnONTSelectiveTunnelTable_table_handler_nextgen, tarnONTConfigFreenessTable_table_handler_nextgen;
next_index_function tarnOntConfigUniPortTable_next_index, tarnONTFullServicesConfigTable_next_index,
    tarnONTCustomCrossConnectTable_next_index;
module_handler_function tarnOntConfigUniPortTable_module_handler,
    tarnONTFullServicesConfigTable_module_handler, tarnONTCustomCrossConnectTable_module_handler;
}

namespace {

// What net-snmp makes of noSuchObject and noSuchInstance in the phases of a SET.
constexpr int missing_in_reserve = SNMP_ERR_NOCREATION;
constexpr int missing_in_action = SNMP_ERR_NOSUCHNAME;

const std::string serial_a = "TARN\x00\x00\x00\x01"s;
const std::string serial_b = "TARN\x00\x00\x00\x02"s;
const std::string serial_c = "TARN\x00\x00\x00\x80"s;
const Oid table_oid = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 20};

Oid row_oid(oid column, const std::string &serial, std::initializer_list<oid> rest = {}, oid slot = 4) {
    Oid name = table_oid;
    name.insert(name.end(), {1, column, slot, 8});
    for (const char octet : serial) {
        name.push_back(static_cast<std::uint8_t>(octet));
    }
    name.insert(name.end(), rest);
    return name;
}

// Every column of the configuration table that lies in the record.
const std::vector<ColumnCase> config_columns = columns_of(
    text(6, 272, 11), truth_if_nonzero(7, 284), text(8, 6, 256), unsigned_number(9, 1824, 2),
    unsigned_number(11, 1756, 2), unsigned_number(12, 1758, 2), unsigned_number(13, 1760, 2),
    unsigned_number(14, 1762, 2), unsigned_number(15, 1764, 2), unsigned_number(16, 1766, 2),
    unsigned_number(17, 1768, 2), unsigned_number(18, 1770, 2), unsigned_number(19, 1754, 2), truth(22, 286),
    unsigned_number(23, 1788, 2), unsigned_number(24, 1790, 2), unsigned_number(25, 1792, 2),
    unsigned_number(26, 1794, 2), unsigned_number(27, 1796, 2), unsigned_number(28, 1798, 2),
    unsigned_number(29, 1800, 2), unsigned_number(30, 1802, 2), unsigned_number(31, 1820, 2),
    number(32, 1828, 2), truth(35, 262), unsigned_number(37, 288, 4), unsigned_number(38, 292, 4, 4294967295),
    truth(39, 1830), number(40, 1832, 2), unsigned_number(41, 1834, 2), unsigned_number(43, 1826, 2));

class OntConfigTablesTest : public Started<ModuleTest, 3> {
  protected:
    ConfigImage image;

    void SetUp() override {
        Started::SetUp();
        board.answer(123, {});
    }
    void TearDown() override {
        invalidate_config_buffer();
        ModuleTest::TearDown();
    }

    // A record full of a pattern, in use.
    Bytes patterned(int index, const std::string &serial, unsigned seed = 0) {
        const Bytes filling = pattern(2122, seed);
        std::copy(filling.begin(), filling.end(), image.ont(index));
        image.ont(index)[5] = 0;
        image.add_ont(index, serial);
        return {image.ont(index), image.ont(index) + 2122};
    }
    // The record that the one SET sent, once to the configuration and once to the services.
    static Bytes sent_record() {
        EXPECT_EQ(board.count(123), 2);
        for (std::size_t i = 0; i < board.sent.size(); ++i) {
            if (board.sent[i].command() == 123) {
                const Bytes payload = board.payload_of(i);
                return {payload.begin() + 5, payload.end()};
            }
        }
        return {};
    }

    static Outcome config(int column, const std::string &serial = serial_a, int mode = MODE_GET,
                          const Value *value = nullptr) {
        return call_nextgen(tarnONTConfigTable_table_handler_nextgen, mode, 3,
                            row_oid(static_cast<oid>(column), serial), value);
    }
    static int set_config(int column, const Value &value, const std::string &serial = serial_a) {
        return set_nextgen(tarnONTConfigTable_table_handler_nextgen, 3,
                           row_oid(static_cast<oid>(column), serial), value);
    }
    // A variable of a larger SET.
    static std::function<Outcome(int)> variable(int column, Value value, std::string serial = serial_a) {
        return [column, value = std::move(value), serial = std::move(serial)](int mode) {
            return config(column, serial, mode, &value);
        };
    }

    static Outcome entry(module_handler_function *handler, int column, int number, int mode = MODE_GET,
                         const Value *value = nullptr, const std::string &serial = serial_a) {
        static int row = 0;
        return call_iterator(handler, mode, column, {4, serial, number}, &row, value);
    }
    static int set_entry(module_handler_function *handler, int column, int number, const Value &value,
                         const std::string &serial = serial_a) {
        return set_together({[&](int mode) { return entry(handler, column, number, mode, &value, serial); }});
    }
    // A column list as read and written in entry `number` (from 1) of the ONT at store index 70.
    void check_entries(module_handler_function *handler, const std::vector<ColumnCase> &columns, int number) {
        const Bytes record = patterned(70, serial_a);
        image.serve();
        expect_reads(columns, record, [&](int column) { return entry(handler, column, number); });
        expect_writes(
            columns, record,
            [&](int column, const Value &value) { return set_entry(handler, column, number, value); },
            sent_record);
    }
};

// ---- tarnONTConfigTable ----

TEST_F(OntConfigTablesTest, WalksTheOntsInUseBySerial) {
    image.add_ont(400, serial_a);
    image.add_ont(3, serial_c);
    image.add_ont(5, serial_b)[4] = 0;  // deleted
    image.ont(9)[4] = 1;                // in use without a serial
    image.add_ont(531, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s);
    image.serve();
    EXPECT_EQ(walk_nextgen(tarnONTConfigTable_get_next_entry, 3, table_oid, 9),
              (std::vector<Oid>{row_oid(9, serial_a), row_oid(9, serial_c),
                                row_oid(9, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s)}));
    EXPECT_TRUE(walk_nextgen(tarnONTConfigTable_get_next_entry, 4, table_oid, 9).empty());
    EXPECT_EQ(board.count(302), 1);
}

TEST_F(OntConfigTablesTest, ReadsEveryColumnOfTheConfiguration) {
    const Bytes record = patterned(5 * 64 + 7, serial_a);
    image.add_ont(8 * 64, serial_b);
    image.serve();
    expect_reads(config_columns, record, [](int column) { return config(column); });
    expect_readings([&](int column) { return config(column); }, is_unsigned(1, 4), is_octets(2, serial_a),
                    is_number(3, 5), is_number(4, 7), is_number(20, 1), is_number(21, 2), is_number(33, 2));
    EXPECT_EQ(config(3, serial_b).integer, 8);  // one of the records after the last channel
    for (const int gap : {5, 10, 34, 36, 42, 44}) {
        EXPECT_EQ(config(gap).error, SNMP_NOSUCHOBJECT) << gap;
    }
    EXPECT_EQ(config(5, serial_c).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(config(9, serial_c).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(config(8).octets.size(), 256U);  // fills its field
}

TEST_F(OntConfigTablesTest, WritesEveryColumnOfTheConfiguration) {
    const Bytes record = patterned(70, serial_a);
    image.serve();
    expect_writes(
        config_columns, record, [](int column, const Value &value) { return set_config(column, value); },
        sent_record);
    // Accepted without effect; the record is sent as it was.
    for (const auto &[column, value] : {std::pair{21, integer_value(1)},
                                        {33, integer_value(1)},
                                        {34, unsigned_value(1)},
                                        {36, unsigned_value(1)},
                                        {20, integer_value(1)}}) {
        board.sent.clear();
        EXPECT_EQ(set_config(column, value), 0);
        EXPECT_EQ(sent_record(), record);
    }
}

TEST_F(OntConfigTablesTest, ChecksValuesOfTheConfiguration) {
    patterned(70, serial_a);
    image.serve();
    const auto reserve = [](int column, const Value &value) {
        return config(column, serial_a, MODE_SET_RESERVE1, &value).error;
    };
    for (const int column : {1, 2, 5, 10, 42, 44}) {
        EXPECT_EQ(reserve(column, unsigned_value(1)), SNMP_ERR_NOTWRITABLE) << column;
    }
    EXPECT_EQ(reserve(20, integer_value(0)), SNMP_ERR_BADVALUE);
    EXPECT_EQ(reserve(20, integer_value(7)), SNMP_ERR_BADVALUE);
    EXPECT_EQ(reserve(20, unsigned_value(4)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(reserve(6, octets_value("12345678901")), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(8, octets_value(std::string(257, 'x'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(8, octets_value(std::string(256, 'x'))), 0);
    EXPECT_EQ(reserve(9, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(reserve(7, unsigned_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(OntConfigTablesTest, CreatesAnOntWithDefaultsInOneSet) {
    image.serve();
    EXPECT_EQ(set_together({variable(20, integer_value(4)), variable(3, unsigned_value(6)),
                            variable(4, unsigned_value(63)), variable(9, unsigned_value(5)),
                            variable(8, octets_value("house"))}),
              0);
    const Bytes payload = board.payload_of(1);
    EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 5), (Bytes{6, 63, 0, 0, 0}));
    const Bytes sent = sent_record();
    EXPECT_EQ(sent[4], 1);
    EXPECT_EQ(std::string(sent.begin() + 264, sent.begin() + 272), serial_a);
    EXPECT_EQ(std::string(sent.begin() + 6, sent.begin() + 12), "house\0"s);
    EXPECT_EQ(std::string(sent.begin() + 272, sent.begin() + 283), "1111111111\0"s);
    EXPECT_EQ(sent[1824], 5);
    EXPECT_EQ(sent[1825], 0);
    EXPECT_EQ(sent[1826], 0xFF);
}

TEST_F(OntConfigTablesTest, CreationNeedsAPlaceAndAMoveIsRefused) {
    patterned(70, serial_a);
    image.serve();
    EXPECT_EQ(set_config(20, integer_value(4), serial_b), SNMP_ERR_COMMITFAILED);
    EXPECT_TRUE(board.logged("3 commit_ont_config : id or tree not specified\n"));
    EXPECT_EQ(
        set_together({variable(20, integer_value(4), serial_b), variable(3, unsigned_value(8), serial_b),
                      variable(4, unsigned_value(0), serial_b)}),
        SNMP_ERR_COMMITFAILED);
    EXPECT_TRUE(board.logged("3 set_ont_config_new : wrong channel index : 8\n"));
    EXPECT_EQ(set_config(3, unsigned_value(2)), SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(set_config(4, unsigned_value(2)), SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(board.count(123), 0);
    EXPECT_EQ(set_config(9, unsigned_value(2)), 0);  // and nothing is left of it
    EXPECT_EQ(board.payload_of(1)[0], 1);
}

TEST_F(OntConfigTablesTest, SendsTwelveColumnsAsOneRecord) {
    Bytes expected = patterned(70, serial_a);
    image.serve();
    std::vector<std::function<Outcome(int)>> variables;
    for (oid column = 11; column <= 18; ++column) {
        variables.insert(variables.begin(), variable(static_cast<int>(column), unsigned_value(65535)));
    }
    variables.push_back(variable(6, octets_value("secret")));
    variables.push_back(variable(40, integer_value(9)));
    variables.push_back(variable(22, integer_value(2)));
    variables.push_back(variable(38, unsigned_value(1)));
    EXPECT_EQ(set_together(variables), 0);
    std::fill_n(expected.begin() + 1756, 16, std::uint8_t{0xFF});
    std::fill_n(expected.begin() + 272, 11, std::uint8_t{0});
    std::copy_n("secret", 6, expected.begin() + 272);
    tarn::store_le16(&expected[1832], 9);
    tarn::store_le16(&expected[286], 0);
    tarn::store_le32(&expected[292], 1);
    EXPECT_EQ(sent_record(), expected);
}

TEST_F(OntConfigTablesTest, LeavesNothingStagedBehindAFailedSet) {
    const Bytes record = patterned(70, serial_a);
    patterned(71, serial_b, 9);
    image.serve();
    EXPECT_EQ(set_together({variable(9, unsigned_value(1)), variable(9, unsigned_value(1), serial_b)}),
              SNMP_ERR_INCONSISTENTNAME);
    EXPECT_EQ(set_together({variable(9, unsigned_value(1)), variable(9, unsigned_value(1), serial_c)}),
              SNMP_ERR_INCONSISTENTNAME);
    EXPECT_EQ(board.count(123), 0);
    EXPECT_EQ(set_config(40, integer_value(5), serial_b), 0);
    EXPECT_EQ(board.last_payload()[1], 7);
    board.silence(123);
    EXPECT_EQ(set_config(9, unsigned_value(1)), SNMP_ERR_COMMITFAILED);
    board.answer(123, {});
    board.sent.clear();
    EXPECT_EQ(set_config(20, integer_value(2)), 0);
    EXPECT_EQ(sent_record(), record);
}

TEST_F(OntConfigTablesTest, DeletesInTheActionPhaseForGood) {
    Bytes expected = patterned(70, serial_a);
    image.serve();
    EXPECT_EQ(set_together({variable(9, unsigned_value(1)), variable(20, integer_value(6))}), 0);
    expected[4] = 0;
    EXPECT_EQ(sent_record(), expected);  // not again with the staged column
    EXPECT_EQ(board.payload_of(1)[0], 1);
    EXPECT_EQ(board.payload_of(1)[1], 6);
    EXPECT_EQ(set_config(20, integer_value(6), serial_c), SNMP_ERR_GENERR);
    // An ONT that the card keeps is still a row.
    board.silence(123);
    board.silence(302);
    EXPECT_EQ(set_config(20, integer_value(6)), SNMP_ERR_GENERR);
    EXPECT_EQ(config(20).integer, 1);
    EXPECT_TRUE(board.logged("3 delete_ont_config : tried to delete nonexistent config : 00000080\n"));
}

// ---- The entries of an ONT ----

TEST_F(OntConfigTablesTest, UniPortsAreRowsWhileEnabled) {
    image.add_ont(70, serial_b)[2072 + 4] = 1;
    image.ont(70)[2072 + 36 + 5] = 1;
    image.add_ont(71, serial_c);
    image.add_ont(72, serial_a)[2072 + 12 + 4] = 1;
    image.add_ont(73, "deleted!")[2072 + 4] = 1;
    image.ont(73)[4] = 0;
    image.serve();
    EXPECT_EQ(indices_of(tarnOntConfigUniPortTable_next_index, 3, {0, "", 0}),
              (std::vector<IndexValues>{{4, serial_b, 1}, {4, serial_b, 4}, {4, serial_a, 2}}));
    EXPECT_EQ(entry(tarnOntConfigUniPortTable_module_handler, 5, 1).error, SNMP_NOSUCHINSTANCE);
    board.configured[3] = false;
    EXPECT_TRUE(walk_iterator(tarnOntConfigUniPortTable_next_index, 3, {0, "", 0}).empty());
    EXPECT_TRUE(walk_iterator(tarnONTFullServicesConfigTable_next_index, 3, {0, "", 0}).empty());
    EXPECT_EQ(walk_iterator(tarnONTCustomCrossConnectTable_next_index, 3, {0, "", 0}).size(), 3 * 16U);
    EXPECT_EQ(board.count(302), 1);
}

TEST_F(OntConfigTablesTest, ReadsAndWritesUniPorts) {
    module_handler_function *const handler = tarnOntConfigUniPortTable_module_handler;
    check_entries(handler,
                  {truth(5, 2072 + 24 + 4), unsigned_number(6, 2072 + 24 + 8, 1, 5),
                   unsigned_number(7, 2072 + 24 + 9, 1, 3)},
                  3);
    EXPECT_EQ(entry(handler, 4, 3).integer, 1);
    EXPECT_EQ(entry(handler, 8, 3).error, SNMP_NOSUCHOBJECT);
    for (const auto &[status, flag] : {std::pair{4, 1}, {5, 1}, {6, 0}}) {
        board.sent.clear();
        EXPECT_EQ(set_entry(handler, 4, 3, integer_value(status)), 0);
        EXPECT_EQ(sent_record()[2072 + 24 + 4], flag);
        EXPECT_EQ(sent_record()[2072 + 24 + 5], 0);
    }
    const auto reserve = [&](int column, int port, const Value &value, const std::string &serial = serial_a) {
        return entry(handler, column, port, MODE_SET_RESERVE1, &value, serial).error;
    };
    EXPECT_EQ(reserve(6, 1, unsigned_value(6)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(7, 1, unsigned_value(0)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(7, 1, unsigned_value(4)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(7, 1, integer_value(1)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(reserve(4, 1, integer_value(3)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(5, 1, integer_value(3)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(9, 1, integer_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(reserve(6, 5, unsigned_value(1)), missing_in_reserve);
    EXPECT_EQ(reserve(6, 0, unsigned_value(1)), missing_in_reserve);
    EXPECT_EQ(reserve(6, 1, unsigned_value(1), std::string(8, '\0')), missing_in_reserve);
    board.configured[3] = false;
    EXPECT_EQ(reserve(6, 1, unsigned_value(1)), missing_in_reserve);
}

TEST_F(OntConfigTablesTest, ReadsAndWritesTheServicesOfAnOnt) {
    module_handler_function *const handler = tarnONTFullServicesConfigTable_module_handler;
    check_entries(handler, {unsigned_number(4, 1786, 2), unsigned_number(5, 1818, 2)}, 16);
    EXPECT_EQ(entry(handler, 3, 1).error, SNMP_NOSUCHOBJECT);
    const Value value = unsigned_value(1);
    EXPECT_EQ(entry(handler, 3, 1, MODE_SET_RESERVE1, &value).error, SNMP_ERR_NOTWRITABLE);
    for (const int service : {0, 17}) {
        EXPECT_EQ(entry(handler, 4, service).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(entry(handler, 4, service, MODE_SET_RESERVE1, &value).error, missing_in_reserve);
        EXPECT_EQ(entry(handler, 4, service, MODE_SET_ACTION, &value).error, missing_in_action);
    }
    EXPECT_EQ(entry(handler, 4, 1, MODE_SET_ACTION, &value, serial_c).error, SNMP_ERR_INCONSISTENTNAME);
}

TEST_F(OntConfigTablesTest, ReadsAndWritesCustomCrossConnects) {
    module_handler_function *const handler = tarnONTCustomCrossConnectTable_module_handler;
    check_entries(handler, {truth(4, 403), signed_number(5, 405), number(6, 407, 1), signed_number(7, 408)},
                  16);
    EXPECT_EQ(entry(handler, 1, 16).integer, 4);
    EXPECT_EQ(entry(handler, 2, 16).octets, serial_a);
    EXPECT_EQ(entry(handler, 3, 16).integer, 15);
    const Value value = integer_value(1);
    EXPECT_EQ(entry(handler, 3, 16, MODE_SET_RESERVE1, &value).error, SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(entry(handler, 4, 17, MODE_SET_RESERVE1, &value).error, missing_in_reserve);
    EXPECT_EQ(entry(handler, 4, 0, MODE_SET_ACTION, &value).error, missing_in_action);
}

TEST_F(OntConfigTablesTest, WalksTheEntriesOfOntsWithASerial) {
    image.add_ont(1, serial_b);
    image.add_ont(2, serial_a);
    image.ont(3)[4] = 1;  // no serial
    image.add_ont(4, serial_c)[4] = 0;
    image.serve();
    for (next_index_function *next :
         {tarnONTFullServicesConfigTable_next_index, tarnONTCustomCrossConnectTable_next_index}) {
        const auto rows = walk_iterator(next, 3, {0, "", 0});
        ASSERT_EQ(rows.size(), 32U);
        EXPECT_EQ(rows[0].index, (IndexValues{4, serial_b, 1}));
        EXPECT_EQ(rows[15].index, (IndexValues{4, serial_b, 16}));
        EXPECT_EQ(rows[16].index, (IndexValues{4, serial_a, 1}));
    }
}

// ---- Selective tunnels ----

TEST_F(OntConfigTablesTest, WalksEveryTunnelPlaceUntilAnOntThatIsNotInUse) {
    image.add_ont(8, serial_b);
    image.add_ont(9, serial_a);
    image.add_ont(10, serial_c)[4] = 0;
    image.add_ont(11, "TARN\x00\x00\x00\x90"s);
    image.serve();
    const auto rows = walk_nextgen(tarnONTSelectiveTunnelTable_get_next_entry, 3, table_oid, 5);
    ASSERT_EQ(rows.size(), 2U * 16 * 42);
    EXPECT_EQ(rows.front(), row_oid(5, serial_a, {1, 1}));
    EXPECT_EQ(rows[41], row_oid(5, serial_a, {1, 42}));
    EXPECT_EQ(rows[42], row_oid(5, serial_a, {2, 1}));
    EXPECT_EQ(rows[672], row_oid(5, serial_b, {1, 1}));
    EXPECT_EQ(rows.back(), row_oid(5, serial_b, {16, 42}));
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
    const auto next = [](const Oid &name) {
        return next_of(tarnONTSelectiveTunnelTable_get_next_entry, 3, name, 5);
    };
    EXPECT_EQ(next(row_oid(5, serial_c)), row_oid(5, "TARN\x00\x00\x00\x90"s, {1, 1}));
    EXPECT_EQ(next(row_oid(5, serial_a, {3})), row_oid(5, serial_a, {3, 1}));
    EXPECT_EQ(next(row_oid(5, serial_a, {16, 43})), row_oid(5, serial_b, {1, 1}));
    EXPECT_EQ(next(row_oid(5, "TARN\x00\x00\x00\x90"s, {16, 42})), Oid{});
}

TEST_F(OntConfigTablesTest, ReadsAndWritesTunnelPlaces) {
    Bytes record = patterned(70, serial_a);
    std::fill_n(record.begin() + 410, 1344, std::uint8_t{0xFF});
    tarn::store_le16(&record[410 + 84 * 15], 100);
    tarn::store_le16(&record[410 + 84 * 15 + 2], 200);
    std::copy(record.begin(), record.end(), image.ont(70));
    image.serve();
    const auto tunnel = [](std::initializer_list<oid> place, int mode, const Value *value = nullptr,
                           oid column = 5) {
        return call_nextgen(tarnONTSelectiveTunnelTable_table_handler_nextgen, mode, 3,
                            row_oid(column, serial_a, place), value);
    };
    EXPECT_EQ(tunnel({16, 2}, MODE_GET).integer, 200);
    EXPECT_EQ(tunnel({16, 42}, MODE_GET).integer, -1);
    EXPECT_EQ(tunnel({16, 42}, MODE_GET).type, ASN_INTEGER);
    for (const auto &place : {std::initializer_list<oid>{0, 1}, {1, 0}, {17, 1}, {1, 43}}) {
        const Value value = integer_value(5);
        EXPECT_EQ(tunnel(place, MODE_GET).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(tunnel(place, MODE_SET_RESERVE1, &value).error, SNMP_ERR_INCONSISTENTNAME);
    }
    for (const int vid : {0, 4095, -2}) {
        const Value value = integer_value(vid);
        EXPECT_EQ(tunnel({1, 1}, MODE_SET_RESERVE1, &value).error, SNMP_ERR_WRONGVALUE);
    }
    const Value unsigned_vid = unsigned_value(5);
    EXPECT_EQ(tunnel({1, 1}, MODE_SET_RESERVE1, &unsigned_vid).error, SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(tunnel({1, 1}, MODE_SET_RESERVE1, &unsigned_vid, 4).error, missing_in_reserve);

    const Value vid = integer_value(4094);
    const Value none = integer_value(-1);
    EXPECT_EQ(set_together({[&](int mode) {
                                return tunnel({16, 42}, mode, &vid);
                            },
                            [&](int mode) {
                                return tunnel({16, 1}, mode, &none);
                            }}),
              0);
    tarn::store_le16(&record[410 + 84 * 15], 200);  // moved to the front
    tarn::store_le16(&record[410 + 84 * 15 + 2], 4094);
    EXPECT_EQ(sent_record(), record);
}

// ---- Freeness ----

TEST_F(OntConfigTablesTest, ListsTakenPlacesInStoreOrder) {
    const auto place_oid = [](oid column, oid channel, oid id) {
        Oid name = table_oid;
        name.insert(name.end(), {1, column, 4, channel, id});
        return name;
    };
    image.add_ont(0, serial_c);
    image.add_ont(127, serial_a);
    image.add_ont(128, serial_b)[4] = 0;
    image.add_ont(531, serial_b);
    image.serve();
    const auto next = [](const Oid &name) {
        return next_of(tarnONTConfigFreenessTable_get_next_entry, 3, name, 4);
    };
    EXPECT_EQ(walk_nextgen(tarnONTConfigFreenessTable_get_next_entry, 3, table_oid, 4),
              (std::vector<Oid>{place_oid(4, 0, 0), place_oid(4, 1, 63), place_oid(4, 8, 19)}));
    Oid channel_only = table_oid;
    channel_only.insert(channel_only.end(), {1, 4, 4, 1});
    EXPECT_EQ(next(channel_only), place_oid(4, 1, 63));
    EXPECT_EQ(next(place_oid(4, 0, 4294967295)), place_oid(4, 1, 63));
    EXPECT_EQ(next(place_oid(4, 4294967295, 0)), Oid{});

    const auto at = [&](oid column, oid channel, oid id, int mode = MODE_GET) {
        return call_nextgen(tarnONTConfigFreenessTable_table_handler_nextgen, mode, 3,
                            place_oid(column, channel, id));
    };
    EXPECT_EQ(at(4, 1, 63).octets, serial_a);
    EXPECT_EQ(at(4, 8, 19).octets, serial_b);
    for (const auto &[channel, id] : {std::pair{2, 0}, {0, 127}, {8, 20}, {9, 0}}) {
        EXPECT_EQ(at(4, static_cast<oid>(channel), static_cast<oid>(id)).error, SNMP_NOSUCHINSTANCE);
    }
    EXPECT_EQ(at(3, 1, 63).type, ASN_NULL);
    EXPECT_EQ(at(3, 1, 63).error, 0);
    EXPECT_EQ(at(4, 1, 63, MODE_SET_RESERVE1).error, 0);
}

// ---- All records ----

TEST_F(OntConfigTablesTest, WalksAFullSlotCompletelyFromOneImage) {
    std::set<Oid> serials;
    for (int index = 0; index < 532; ++index) {
        std::string serial = "TARN\x00\x00\x00\x00"s;
        serial[6] = static_cast<char>(index * 7 % 256);
        serial[7] = static_cast<char>(index / 3);
        serial[5] = static_cast<char>(index % 3);
        image.add_ont(index, serial)[2072 + 4] = 1;
        serials.insert(row_oid(9, serial));
    }
    ASSERT_EQ(serials.size(), 532U);
    image.serve();
    EXPECT_EQ(walk_nextgen(tarnONTConfigTable_get_next_entry, 3, table_oid, 9),
              std::vector<Oid>(serials.begin(), serials.end()));
    const auto tunnels = walk_nextgen(tarnONTSelectiveTunnelTable_get_next_entry, 3, table_oid, 5, 400000);
    EXPECT_EQ(tunnels.size(), 532U * 672);
    EXPECT_TRUE(std::is_sorted(tunnels.begin(), tunnels.end()));
    EXPECT_EQ(std::adjacent_find(tunnels.begin(), tunnels.end()), tunnels.end());
    EXPECT_EQ(walk_nextgen(tarnONTConfigFreenessTable_get_next_entry, 3, table_oid, 4).size(), 532U);
    EXPECT_EQ(walk_iterator(tarnOntConfigUniPortTable_next_index, 3, {0, "", 0}).size(), 532U);
    EXPECT_EQ(walk_iterator(tarnONTFullServicesConfigTable_next_index, 3, {0, "", 0}).size(), 8512U);
    EXPECT_EQ(board.count(302), 1);
}

}  // namespace
