// The tables of profiles, templates and OLT profile lists.
#include <algorithm>

#include "module/config/olt_config.h"
#include "module/config/profiles.h"
#include "module/start/start.h"
#include "support/column_cases.h"
#include "support/config_image.h"
#include "wire/bytes.h"

using namespace std::string_literals;

#define ITERATOR_TABLES(declare)                                                                           \
    declare(tarnONTCrossConnectProfileTable) declare(tarnONTAllocProfileTable)                             \
        declare(tarnONTShapingProfileTable) declare(tarnONTShapingProfileUpstreamTable)                    \
            declare(tarnONTManagementProfileTable) declare(tarnONTPortsProfileTable)                       \
                declare(tarnONTPortsProfileUNITable) declare(tarnONTPortsProfileMCDynamicEntriesTable)     \
                    declare(tarnONTPortsProfileMLDDynamicEntriesTable) declare(tarnONTTemplateValuesTable) \
                        declare(tarnONTTemplateOverridesTable) declare(tarnONTTemplateServicesValuesTable) \
                            declare(tarnONTTemplateServicesOverridesTable)                                 \
                                declare(tarnOLTAddressTableProfilesTable) declare(tarnOLTVlanProfilesTable)
#define DECLARE(T)                                 \
    extern "C" next_index_function T##_next_index; \
    extern "C" module_handler_function T##_module_handler;
ITERATOR_TABLES(DECLARE)

namespace {

// What net-snmp makes of noSuchInstance in the action phase.
constexpr int missing_in_action = SNMP_ERR_NOSUCHNAME;

using Columns = std::vector<ColumnCase>;
using Numbers = std::vector<int>;

// A table over the records of one kind. Row 3, and entry `entry` of it, is read and written.
struct TableCase {
    const char *name;
    next_index_function *next;
    module_handler_function *handler;
    int get_command;
    std::size_t size;
    int count;
    int entries;  // a profile; 0: the table has no second index
    int entry;
    Columns columns;
    Numbers not_writable;
    int row_status;  // 0: none
};

#define TABLE(T) #T, T##_next_index, T##_module_handler

const std::size_t uni = 57 * 2;
const std::size_t mc = 302 + 10 * 19;
const std::size_t mld = 536 + 42 * 19;
const std::size_t six = 280 + 6 * 15;
const std::size_t ten = 376 + 10 * 15;

const TableCase tables[] = {
    {TABLE(tarnONTCrossConnectProfileTable), 246, 298, 128, 0, 0,
     Columns{text(2, 22, 256), text(3, 6, 16), number(4, 278, 2), unsigned_number(5, 280, 1),
             number(6, 281, 2), signed_number(7, 283), number(8, 285, 1), number(9, 286, 2),
             number(10, 288, 2), number(11, 290, 1), number(12, 291, 2), number(13, 293, 2),
             number(14, 295, 2, 65535), unsigned_number(15, 297, 1, 7)},
     Numbers{1, 16, 19, 21}, 20},
    {TABLE(tarnONTAllocProfileTable), 280, 301, 128, 0, 0,
     Columns{text(2, 22, 256), text(3, 6, 16), number(4, 278, 2), number(5, 280, 2),
             unsigned_number(6, 282, 4), unsigned_number(7, 286, 1), unsigned_number(8, 287, 4),
             unsigned_number(9, 291, 4), unsigned_number(10, 295, 4)},
     Numbers{1, 11, 19, 21}, 20},
    {TABLE(tarnONTShapingProfileTable), 137, 1032, 128, 0, 0,
     Columns{text(2, 22, 256), text(3, 6, 16), truth(4, 278)}, Numbers{1, 5, 9, 11, 20}, 10},
    {TABLE(tarnONTShapingProfileUpstreamTable), 137, 1032, 128, 16, 15,
     Columns{truth(2, ten), unsigned_number(3, ten + 2, 4), unsigned_number(4, ten + 6, 4), truth(5, six),
             unsigned_number(6, six + 2, 4)},
     Numbers{7, 20}, 0},
    {TABLE(tarnONTPortsProfileTable), 142, 1622, 32, 0, 0,
     columns_of(text(2, 22, 256), text(3, 6, 16), unsigned_number(4, 280, 1, 3), number(5, 281, 2),
                truth(6, 283), unsigned_number(7, 285, 1), octets(8, 286, 4, ASN_IPADDRESS),
                unsigned_number(9, 290, 4), unsigned_number(10, 294, 4), unsigned_number(11, 298, 4),
                truth(12, 1376), unsigned_number(13, 1378, 2), unsigned_number(14, 1380, 1),
                number(15, 1381, 2), unsigned_number(16, 1388, 2), unsigned_number(17, 1390, 4),
                unsigned_number(21, 1383, 2), unsigned_number(22, 1385, 1), number(23, 1386, 2),
                number(30, 278, 2, 1), unsigned_number(31, 502, 1, 2), number(32, 503, 2), truth(33, 505),
                unsigned_number(34, 507, 1), octets(35, 508, 16), unsigned_number(36, 524, 4),
                unsigned_number(37, 528, 4), unsigned_number(38, 532, 4)),
     Numbers{1, 18, 19, 24, 29, 39}, 20},
    {TABLE(tarnONTPortsProfileUNITable), 142, 1622, 32, 4, 2,
     Columns{number(2, uni + 1398, 1), truth(3, uni + 1403), unsigned_number(4, uni + 1405, 2),
             unsigned_number(5, uni + 1407, 1), number(6, uni + 1408, 2), unsigned_number(7, uni + 1415, 2),
             unsigned_number(8, uni + 1417, 4), truth(9, uni + 1421), unsigned_number(10, uni + 1423, 4),
             unsigned_number(11, uni + 1427, 4), truth(12, uni + 1431), unsigned_number(13, uni + 1433, 4),
             unsigned_number(14, uni + 1437, 4), unsigned_number(15, uni + 1410, 2),
             unsigned_number(16, uni + 1412, 1), number(17, uni + 1413, 2)},
     Numbers{1, 18, 20}, 0},
    {TABLE(tarnONTPortsProfileMCDynamicEntriesTable), 142, 1622, 32, 20, 19,
     Columns{unsigned_number(2, mc, 2, 65535), octets(3, mc + 2, 4, ASN_IPADDRESS),
             octets(4, mc + 6, 4, ASN_IPADDRESS)},
     Numbers{1, 5, 20}, 0},
    {TABLE(tarnONTPortsProfileMLDDynamicEntriesTable), 142, 1622, 32, 20, 19,
     Columns{unsigned_number(2, mld, 2), octets(5, mld + 2, 16), octets(6, mld + 18, 16),
             unsigned_number(7, mld + 34, 2), unsigned_number(8, mld + 36, 2),
             unsigned_number(9, mld + 38, 2), unsigned_number(10, mld + 40, 2)},
     Numbers{1, 3, 4, 11}, 0},
    {TABLE(tarnONTManagementProfileTable), 127, 604, 32, 0, 0,
     Columns{text(2, 22, 256), text(3, 6, 16), text(5, 280, 128), text(6, 408, 26), text(7, 434, 26),
             truth_if_nonzero(8, 278)},
     Numbers{1, 4, 9, 19, 21}, 20},
};

class ProfileTablesTest : public Started<ModuleTest> {
  protected:
    static constexpr int profile = 3;
    Bytes record;

    void SetUp() override {
        Started::SetUp();
        reset_shaping_profiles_commit_needs();
        reset_ports_profiles_commit_needs();
    }
    // The board holds profile 3 (a pattern) and the last one; the module knows none yet.
    void serve(const TableCase &table) {
        slot_deinitializer(16);
        start({});
        Bytes array(table.size * static_cast<std::size_t>(table.count), 0);
        array[table.size * static_cast<std::size_t>(table.count - 1) + 4] = 1;
        record = pattern(table.size);
        record[4] = 1;
        record[5] = 0;
        std::copy(record.begin(), record.end(),
                  array.begin() + static_cast<std::ptrdiff_t>(profile * table.size));
        board.answer(table.get_command, array);
        for (int other = 1; other <= 3; ++other) {
            board.answer(table.get_command + other, {});
        }
    }
    static IndexValues row_of(const TableCase &table, int number = profile, int entry = -1) {
        if (table.entries == 0) {
            return {number};
        }
        return {number, entry >= 0 ? entry : table.entry};
    }
    static Outcome call(const TableCase &table, int mode, int column, const Value *value = nullptr,
                        const IndexValues &index = {}) {
        static int row = 0;
        return call_iterator(table.handler, mode, column, index.empty() ? row_of(table) : index, &row, value);
    }
    static int set(const TableCase &table, int column, const Value &value, const IndexValues &index = {}) {
        return set_together({[&](int mode) { return call(table, mode, column, &value, index); }});
    }
    static std::function<Outcome(int)> variable(const TableCase &table, int column, Value value,
                                                int number = profile) {
        return [&table, column, value = std::move(value), number](int mode) {
            return call(table, mode, column, &value, row_of(table, number));
        };
    }
    // The record in the one Set that was sent.
    static Bytes sent_record(const TableCase &table) {
        EXPECT_EQ(board.count(table.get_command + 2), 1);
        for (std::size_t i = 0; i < board.sent.size(); ++i) {
            if (board.sent[i].command() == table.get_command + 2) {
                const Bytes payload = board.payload_of(i);
                EXPECT_EQ(payload[0], profile);
                return {payload.begin() + 2, payload.end()};
            }
        }
        return {};
    }
};

TEST_F(ProfileTablesTest, WalksTheProfilesInUse) {
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        const IndexValues shape = table.entries == 0 ? IndexValues{0} : IndexValues{0, 0};
        const auto rows = walk_iterator(table.next, 16, shape);
        const auto per_profile = static_cast<std::size_t>(table.entries == 0 ? 1 : table.entries);
        ASSERT_EQ(rows.size(), 2 * per_profile);
        EXPECT_EQ(rows[0].index, row_of(table, profile, 0));
        EXPECT_EQ(rows[per_profile - 1].index, row_of(table, profile, table.entries - 1));
        EXPECT_EQ(rows[per_profile].index, row_of(table, table.count - 1, 0));
        EXPECT_EQ(walk_iterator(table.next, 0, shape).size(), rows.size());
    }
}

TEST_F(ProfileTablesTest, ReadsEveryColumn) {
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        expect_reads(table.columns, record, [&](int column) { return call(table, MODE_GET, column); });
        EXPECT_EQ(call(table, MODE_GET, 40).error, SNMP_NOSUCHOBJECT);
        EXPECT_EQ(call(table, MODE_GET, 2, nullptr, row_of(table, 4)).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(call(table, MODE_GET, 2, nullptr, row_of(table, table.count)).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(call(table, MODE_GET, 2, nullptr, row_of(table, -1)).error, SNMP_NOSUCHINSTANCE);
        if (table.row_status != 0) {
            EXPECT_EQ(call(table, MODE_GET, table.row_status).integer, 1);
            EXPECT_EQ(call(table, MODE_GET, 1).integer, profile);
        }
        for (const int column : table.not_writable) {
            if (column != 1) {
                EXPECT_EQ(call(table, MODE_GET, column).error,
                          column == table.row_status ? 0 : SNMP_NOSUCHOBJECT)
                    << column;
            }
        }
    }
}

TEST_F(ProfileTablesTest, WritesEveryColumnAndSendsItsProfile) {
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        expect_writes(
            table.columns, record, [&](int column, const Value &value) { return set(table, column, value); },
            [&] { return sent_record(table); });
        board.silence(table.get_command + 2);
        EXPECT_EQ(set(table, table.columns.front().column, value_to_set(table.columns.front())),
                  SNMP_ERR_COMMITFAILED);
    }
}

TEST_F(ProfileTablesTest, RefusesColumnsAndRowsThatAreNotThere) {
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        const Value value = unsigned_value(1);
        for (const int column : table.not_writable) {
            EXPECT_EQ(call(table, MODE_SET_RESERVE1, column, &value).error, SNMP_ERR_NOTWRITABLE) << column;
        }
        const ColumnCase &last = table.columns.back();
        const Value fitting = value_to_set(last);
        // The first phase asks for no row: the same SET may create it.
        for (const int number : {4, table.count, -1}) {
            const IndexValues index = row_of(table, number);
            EXPECT_EQ(call(table, MODE_SET_RESERVE1, last.column, &fitting, index).error, 0);
            EXPECT_EQ(call(table, MODE_SET_ACTION, last.column, &fitting, index).error, missing_in_action);
        }
        if (table.entries != 0) {
            EXPECT_EQ(
                call(table, MODE_SET_ACTION, last.column, &fitting, row_of(table, 3, table.entries)).error,
                missing_in_action);
        }
        EXPECT_EQ(board.count(table.get_command + 2), 0);
    }
}

TEST_F(ProfileTablesTest, CreatesAProfileWithTheColumnsOfTheSameSetAndDeletesOne) {
    for (const TableCase &table : tables) {
        if (table.row_status == 0) {
            continue;
        }
        SCOPED_TRACE(table.name);
        serve(table);
        board.sent.clear();
        EXPECT_EQ(set_together({variable(table, table.row_status, integer_value(4), 5),
                                variable(table, 3, octets_value("gold"), 5)}),
                  0);
        std::vector<int> commands;
        for (const SentRequest &sent : board.sent) {
            if (commands.empty() || commands.back() != sent.command()) {
                commands.push_back(sent.command());
            }
        }
        EXPECT_EQ(commands,
                  (std::vector<int>{table.get_command, table.get_command + 1, table.get_command + 2}));
        const Bytes sent = board.last_payload();
        EXPECT_EQ(sent[0], 5);
        EXPECT_EQ(std::string(sent.begin() + 8, sent.begin() + 13), "gold\0"s);
        EXPECT_EQ(set(table, table.row_status, integer_value(4), {3}), SNMP_ERR_NOCREATION);
        EXPECT_EQ(set(table, table.row_status, integer_value(4), {table.count}), SNMP_ERR_NOCREATION);

        // A profile that goes is not sent again.
        serve(table);
        board.sent.clear();
        EXPECT_EQ(set_together({variable(table, 3, octets_value("gone")),
                                variable(table, table.row_status, integer_value(6))}),
                  0);
        EXPECT_EQ(board.count(table.get_command + 3), 1);
        EXPECT_EQ(board.count(table.get_command + 2), 0);
        EXPECT_EQ(set(table, table.row_status, integer_value(6), {table.count}), SNMP_ERR_GENERR);
        board.silence(table.get_command + 3);
        EXPECT_EQ(set(table, table.row_status, integer_value(6)), SNMP_ERR_GENERR);
    }
}

// Neither a cache that never holds anything nor a creation, which makes the array expire, may cost an edit.
TEST_F(ProfileTablesTest, KeepsTheEditsOfOneSet) {
    board.everything_stale = true;
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        const ColumnCase &first = table.columns.front();
        const ColumnCase &last = table.columns.back();
        board.sent.clear();
        EXPECT_EQ(set_together({variable(table, first.column, value_to_set(first)),
                                variable(table, last.column, value_to_set(last))}),
                  0);
        // Read again for the row of the first edit only.
        EXPECT_EQ(board.count(table.get_command), 1);
        const Bytes payload = board.last_payload();
        for (const ColumnCase &column : {first, last}) {
            EXPECT_FALSE(std::equal(payload.begin() + 2 + static_cast<long>(column.offset),
                                    payload.begin() + 2 + static_cast<long>(column.offset + column.size),
                                    record.begin() + static_cast<long>(column.offset)))
                << column.column;
        }
    }
    const TableCase &table = tables[0];
    serve(table);
    board.sent.clear();
    EXPECT_EQ(
        set_together({variable(table, 3, octets_value("edited")), variable(table, 20, integer_value(4), 5),
                      variable(table, 3, octets_value("new"), 5)}),
        0);
    EXPECT_EQ(board.count(248), 2);
    const Bytes edited = board.payload_of(board.sent.size() - 2);
    EXPECT_EQ(edited[0], 3);
    EXPECT_EQ(std::string(edited.begin() + 8, edited.begin() + 14), "edited");
}

TEST_F(ProfileTablesTest, AFailedSetLeavesNothingForTheNextOne) {
    const TableCase &table = tables[0];
    serve(table);
    EXPECT_EQ(set_together(
                  {variable(table, 3, octets_value("abandoned")), variable(table, 14, integer_value(65536))}),
              SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(board.count(248), 0);
    EXPECT_EQ(set(table, 4, integer_value(1)), 0);
    const Bytes sent = board.last_payload();
    EXPECT_EQ(std::string(sent.begin(), sent.end()).find("abandoned"), std::string::npos);

    // What fails before its first edit leaves the array as it is: it is neither read again nor given up.
    call(table, MODE_GET, 4);
    board.silence(table.get_command);
    board.sent.clear();
    EXPECT_EQ(set(table, 14, integer_value(65536)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set(table, table.row_status, integer_value(4)), SNMP_ERR_NOCREATION);
    EXPECT_EQ(call(table, MODE_GET, 4).error, 0);
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(set(table, 4, integer_value(2)), 0);
}

// What the chassis refused is neither shown nor sent with the next edit, not even if the array cannot be
// read.
TEST_F(ProfileTablesTest, ARefusedSetIsDropped) {
    for (const TableCase &table : tables) {
        SCOPED_TRACE(table.name);
        serve(table);
        const ColumnCase &column = table.columns.front();
        const Outcome before = call(table, MODE_GET, column.column);
        board.silence(table.get_command + 2);
        EXPECT_EQ(set(table, column.column, value_to_set(column)), SNMP_ERR_COMMITFAILED);
        const Outcome after = call(table, MODE_GET, column.column);
        EXPECT_EQ(after.octets, before.octets);
        EXPECT_EQ(after.integer, before.integer);
        EXPECT_EQ(set(table, column.column, value_to_set(column)), SNMP_ERR_COMMITFAILED);
        board.silence(table.get_command);
        board.answer(table.get_command + 2, {});
        board.sent.clear();
        EXPECT_EQ(set(table, column.column, value_to_set(column)), SNMP_ERR_GENERR);
        if (table.row_status != 0) {
            serve(table);
            board.silence(table.get_command + 1);
            EXPECT_EQ(set(table, table.row_status, integer_value(4), {5}), SNMP_ERR_NOCREATION);
            EXPECT_EQ(call(table, MODE_GET, 3, nullptr, {5}).error, SNMP_NOSUCHINSTANCE);
        }
        EXPECT_EQ(board.count(table.get_command + 2), 0);
    }
}

TEST_F(ProfileTablesTest, NothingIsCreatedInAnArrayThatWasNeverRead) {
    for (const TableCase &table : tables) {
        if (table.row_status != 0) {
            SCOPED_TRACE(table.name);
            serve(table);
            board.silence(table.get_command);
            EXPECT_EQ(set(table, table.row_status, integer_value(4), {5}), SNMP_ERR_GENERR);
            EXPECT_EQ(board.count(table.get_command + 1), 0);
            EXPECT_TRUE(board.logged("3 "s + table.name +
                                     " : address 16 has not sent its configuration, which is "
                                     "not overwritten\n"));
            EXPECT_EQ(set(table, table.row_status, integer_value(4), {table.count}), SNMP_ERR_NOCREATION);
            EXPECT_EQ(set(table, table.row_status, integer_value(6), {table.count}), SNMP_ERR_GENERR);
            EXPECT_EQ(board.count(table.get_command + 3), 0);
            EXPECT_EQ(set(table, table.row_status, integer_value(6), {5}), 0);
            EXPECT_EQ(board.count(table.get_command + 3), 1);
        }
    }
}

TEST_F(ProfileTablesTest, ChecksValues) {
    const auto reserve = [](std::size_t table, int column, const Value &value) {
        return call(tables[table], MODE_SET_RESERVE1, column, &value).error;
    };
    constexpr std::size_t crossconnect = 0;
    constexpr std::size_t upstream = 3;
    constexpr std::size_t ports = 4;
    constexpr std::size_t multicast = 6;
    constexpr std::size_t management = 8;
    EXPECT_EQ(reserve(crossconnect, 3, octets_value(std::string(16, 'n'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(crossconnect, 3, octets_value(std::string(15, 'n'))), 0);
    EXPECT_EQ(reserve(crossconnect, 2, octets_value(std::string(256, 'n'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(crossconnect, 15, unsigned_value(8)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(crossconnect, 14, integer_value(65536)), 0);
    EXPECT_EQ(reserve(ports, 4, unsigned_value(0)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(ports, 4, unsigned_value(4)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(ports, 8, address_value("12345")), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(ports, 8, octets_value("1234")), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(reserve(ports, 30, integer_value(2)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(ports, 31, unsigned_value(0)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(ports, 35, octets_value(std::string(15, 'x'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(multicast, 3, address_value("abc")), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(management, 5, octets_value(std::string(128, 'x'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(management, 6, octets_value(std::string(26, 'x'))), 0);
    EXPECT_EQ(reserve(management, 7, octets_value(std::string(27, 'x'))), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(upstream, 1, unsigned_value(1)), SNMP_ERR_WRONGTYPE);

    serve(tables[crossconnect]);
    EXPECT_EQ(set(tables[crossconnect], 14, integer_value(65536)), SNMP_ERR_WRONGVALUE);
    serve(tables[upstream]);
    EXPECT_EQ(set(tables[upstream], 1, integer_value(1)), SNMP_ERR_NOTWRITABLE);
}

// ---- Templates ----

class TemplateTablesTest : public ModuleTest {
  protected:
    ConfigImage image;
    Bytes record;

    void SetUp() override {
        ModuleTest::SetUp();
        start({});
        record = pattern(473);
        record[4] = 1;
        record[5] = 0;
        std::copy(record.begin(), record.end(), image.ont_template(7));
        image.ont_template(31)[4] = 1;
        image.serve();
        board.answer(301, {});
    }
    static Outcome call(module_handler_function *handler, int mode, int column, const IndexValues &index,
                        const Value *value = nullptr) {
        static int row = 0;
        return call_iterator(handler, mode, column, index, &row, value);
    }
    static Bytes sent_record() {
        EXPECT_EQ(board.count(301), 1);
        const Bytes payload = board.last_payload();
        EXPECT_EQ(payload[0], 7);
        return {payload.begin() + 2, payload.end()};
    }
    void check(module_handler_function *handler, const std::vector<ColumnCase> &columns,
               const IndexValues &index) {
        static int row = 0;
        expect_reads(columns, record, [&](int column) { return call(handler, MODE_GET, column, index); });
        expect_writes(
            columns, record,
            [&](int column, const Value &value) { return set_iterator(handler, column, index, &row, value); },
            sent_record);
    }
};

TEST_F(TemplateTablesTest, ReadsAndWritesValues) {
    Columns columns = columns_of(text(2, 6, 16), text(3, 22, 256), octets(4, 278, 8), truth(7, 301),
                                 unsigned_number(9, 461, 2), unsigned_number(19, 321, 2), truth(22, 305),
                                 unsigned_number(31, 453, 2), number(32, 465, 2, 3),
                                 unsigned_number(37, 309, 4), unsigned_number(38, 315, 4), truth(39, 469));
    for (int service = 0; service < 8; ++service) {
        const auto offset = 2 * static_cast<std::size_t>(service);
        columns.push_back(unsigned_number(11 + service, 325 + offset, 2));
        columns.push_back(unsigned_number(23 + service, 389 + offset, 2));
    }
    check(tarnONTTemplateValuesTable_module_handler, columns, {7});
}

TEST_F(TemplateTablesTest, ClearsTenOctetsOfThePassword) {
    static int row = 0;
    EXPECT_EQ(call(tarnONTTemplateValuesTable_module_handler, MODE_GET, 6, {7}).octets,
              std::string(record.begin() + 288, record.begin() + 299));
    EXPECT_EQ(set_iterator(tarnONTTemplateValuesTable_module_handler, 6, {7}, &row, octets_value("pw")), 0);
    Bytes expected = record;
    std::fill_n(expected.begin() + 288, 10, std::uint8_t{0});
    expected[288] = 'p';
    expected[289] = 'w';
    EXPECT_EQ(sent_record(), expected);
}

TEST_F(TemplateTablesTest, ReadsAndWritesOverrides) {
    std::vector<ColumnCase> columns = {truth(4, 286),  truth(6, 299),  truth(7, 303),  truth(9, 463),
                                       truth(19, 323), truth(22, 307), truth(31, 455), truth(32, 467),
                                       truth(37, 313), truth(38, 319), truth(39, 471)};
    for (int service = 0; service < 8; ++service) {
        const auto offset = 2 * static_cast<std::size_t>(service);
        columns.push_back(truth(11 + service, 357 + offset));
        columns.push_back(truth(23 + service, 421 + offset));
    }
    check(tarnONTTemplateOverridesTable_module_handler, columns, {7});
}

TEST_F(TemplateTablesTest, ReadsAndWritesServices) {
    check(tarnONTTemplateServicesValuesTable_module_handler,
          {unsigned_number(2, 355, 2), unsigned_number(3, 419, 2)}, {7, 16});
    check(tarnONTTemplateServicesOverridesTable_module_handler, {truth(2, 387), truth(3, 451)}, {7, 16});
}

TEST_F(TemplateTablesTest, WalksTheTemplatesInUse) {
    for (next_index_function *next :
         {tarnONTTemplateValuesTable_next_index, tarnONTTemplateOverridesTable_next_index}) {
        EXPECT_EQ(indices_of(next, 16, {0}), (std::vector<IndexValues>{{7}, {31}}));
    }
    for (next_index_function *next :
         {tarnONTTemplateServicesValuesTable_next_index, tarnONTTemplateServicesOverridesTable_next_index}) {
        const auto rows = walk_iterator(next, 16, {0, 0});
        ASSERT_EQ(rows.size(), 32U);
        EXPECT_EQ(rows[0].index, (IndexValues{7, 1}));
        EXPECT_EQ(rows[31].index, (IndexValues{31, 16}));
    }
}

TEST_F(TemplateTablesTest, CreatesAndDeletesByTheFlagAlone) {
    static int row = 0;
    module_handler_function *const values = tarnONTTemplateValuesTable_module_handler;
    EXPECT_EQ(set_iterator(values, 100, {7}, &row, integer_value(6)), 0);
    Bytes expected = record;
    expected[4] = 0;
    EXPECT_EQ(sent_record(), expected);
    board.sent.clear();
    EXPECT_EQ(set_iterator(values, 100, {9}, nullptr, integer_value(4)), 0);
    EXPECT_EQ(board.last_payload()[0], 9);
    EXPECT_EQ(board.last_payload()[6], 1);
    board.sent.clear();
    EXPECT_EQ(set_iterator(values, 100, {7}, &row, integer_value(2)), 0);
    EXPECT_EQ(sent_record(), record);

    // Columns may come before the row status, also when every read fetches.
    board.everything_stale = true;
    board.sent.clear();
    const Value name = octets_value("new");
    const Value create = integer_value(4);
    EXPECT_EQ(set_together({[&](int mode) { return call(values, mode, 2, {11}, &name); },
                            [&](int mode) { return call(values, mode, 100, {11}, &create); }}),
              0);
    EXPECT_EQ(board.count(302), 1);
    EXPECT_EQ(board.count(301), 1);
    const Bytes sent = board.last_payload();
    EXPECT_EQ(Bytes(sent.begin(), sent.begin() + 12), (Bytes{11, 0, 0, 0, 0, 0, 1, 0, 'n', 'e', 'w', 0}));
}

TEST_F(TemplateTablesTest, EditsATemplateThatIsNotInUseOnlyWithItsCreation) {
    const auto variable = [](module_handler_function *handler, int column, int number, const Value &value) {
        return [=](int mode) { return call(handler, mode, column, {number, 16}, &value); };
    };
    const auto create = [&](int number) {
        return variable(tarnONTTemplateValuesTable_module_handler, 100, number, integer_value(4));
    };
    std::vector<std::function<Outcome(int)>> edits = {
        variable(tarnONTTemplateValuesTable_module_handler, 39, 9, integer_value(1)),
        variable(tarnONTTemplateOverridesTable_module_handler, 39, 9, integer_value(1)),
        variable(tarnONTTemplateServicesValuesTable_module_handler, 2, 9, unsigned_value(1)),
        variable(tarnONTTemplateServicesOverridesTable_module_handler, 2, 9, integer_value(1))};
    const auto refused = [&] {
        for (const auto &edit : edits) {
            EXPECT_EQ(set_together({edit}), SNMP_ERR_INCONSISTENTNAME);
            EXPECT_EQ(set_together({create(8), edit}), SNMP_ERR_INCONSISTENTNAME);
        }
        EXPECT_EQ(board.count(301), 0);
    };
    refused();
    const Value too_much = integer_value(4);
    EXPECT_EQ(set_together({create(9), variable(tarnONTTemplateValuesTable_module_handler, 32, 7, too_much)}),
              SNMP_ERR_WRONGVALUE);
    refused();
    edits.push_back(create(9));
    EXPECT_EQ(set_together(edits), 0);
    ASSERT_EQ(board.count(301), 1);
    const Bytes sent = board.last_payload();
    for (const std::size_t at : {4U, 469U, 471U, 355U, 387U}) {
        EXPECT_EQ(sent[2 + at], 1) << at;
    }
}

TEST_F(TemplateTablesTest, SendsEachEditedTemplateOnceInOrder) {
    const Value name = octets_value("n");
    const auto variable = [&](int number) {
        return [&, number](int mode) {
            return call(tarnONTTemplateValuesTable_module_handler, mode, 2, {number}, &name);
        };
    };
    EXPECT_EQ(set_together({variable(31), variable(7)}), 0);
    ASSERT_EQ(board.count(301), 2);
    EXPECT_EQ(board.payload_of(board.sent.size() - 2)[0], 7);
    EXPECT_EQ(board.last_payload()[0], 31);
    board.silence(301);
    EXPECT_EQ(set_together({variable(7)}), SNMP_ERR_COMMITFAILED);
    // Not sent with the next edit, also if the templates do not come again; nor are any that never came.
    board.answer(301, {});
    board.silence(302);
    board.sent.clear();
    EXPECT_EQ(set_together({variable(31)}), SNMP_ERR_GENERR);
    cleanup_lib();
    start({});
    EXPECT_EQ(set_together({variable(31)}), SNMP_ERR_GENERR);
    EXPECT_EQ(board.count(301), 0);
}

TEST_F(TemplateTablesTest, ChecksValuesAndIndices) {
    const auto reserve = [](module_handler_function *handler, int column, const Value &value) {
        return call(handler, MODE_SET_RESERVE1, column, {7, 1}, &value).error;
    };
    module_handler_function *const values = tarnONTTemplateValuesTable_module_handler;
    EXPECT_EQ(reserve(values, 4, octets_value("1234567")), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(values, 4, octets_value("123456789")), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(reserve(values, 32, integer_value(4)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(reserve(values, 2, octets_value(std::string(16, 'n'))), SNMP_ERR_WRONGLENGTH);
    for (const int column : {1, 5, 8, 10, 20, 21, 33, 36, 40, 99, 101}) {
        const Value one = integer_value(1);
        EXPECT_EQ(reserve(values, column, one), SNMP_ERR_NOTWRITABLE) << column;
        EXPECT_EQ(call(values, MODE_SET_ACTION, column, {7}, &one).error, 0) << column;
        EXPECT_EQ(call(values, MODE_GET, column, {7}).error, SNMP_NOSUCHOBJECT) << column;
    }
    EXPECT_EQ(reserve(tarnONTTemplateOverridesTable_module_handler, 2, integer_value(1)),
              SNMP_ERR_NOTWRITABLE);
    for (const int truth : {0, 3}) {
        EXPECT_EQ(reserve(tarnONTTemplateServicesOverridesTable_module_handler, 2, integer_value(truth)),
                  SNMP_ERR_WRONGVALUE);
    }
    const Value value = integer_value(1);
    EXPECT_EQ(call(values, MODE_SET_ACTION, 7, {32}, &value).error, missing_in_action);
    EXPECT_EQ(
        call(tarnONTTemplateServicesOverridesTable_module_handler, MODE_SET_ACTION, 2, {7, 17}, &value).error,
        missing_in_action);
    for (const int column : {5, 7}) {
        EXPECT_EQ(call(values, MODE_GET, column, {8}).error, SNMP_NOSUCHINSTANCE);
    }
}

// ---- OLT profile lists ----

TEST_F(ProfileTablesTest, ListsOltProfilesByNumberAndName) {
    const struct {
        int command;
        std::size_t size;
        std::uint8_t *(*get)();
        next_index_function *next;
        module_handler_function *handler;
    } lists[] = {{103, 7454, get_olt_address_table_profiles, tarnOLTAddressTableProfilesTable_next_index,
                  tarnOLTAddressTableProfilesTable_module_handler},
                 {97, 294, get_olt_vlan_profiles, tarnOLTVlanProfilesTable_next_index,
                  tarnOLTVlanProfilesTable_module_handler}};
    for (const auto &list : lists) {
        Bytes array(list.size * 32, 0);
        array[4] = 1;
        array[5 * list.size + 5] = 1;
        array[31 * list.size + 4] = 1;
        std::copy_n("first", 5, array.begin() + 22);
        std::fill_n(array.begin() + static_cast<std::ptrdiff_t>(31 * list.size + 22), 256, std::uint8_t{'x'});
        array.back() = 9;
        board.answer(list.command, array);
        EXPECT_EQ(indices_of(list.next, 16, {0}), (std::vector<IndexValues>{{0}, {5}, {31}}));
        EXPECT_EQ(board.sent.back().slot(), 17);
        EXPECT_EQ(list.get()[array.size() - 1], 9);
        void *loop_context = nullptr;
        void *data = nullptr;
        netsnmp_variable_list index{};
        ASSERT_EQ(list.next(&loop_context, &data, &index, 16), &index);
        EXPECT_EQ(loop_context, list.get());
        EXPECT_EQ(data, list.get());
        snmp_reset_var_buffers(&index);
        const auto get = [&](int column, int number) {
            static int row = 0;
            return call_iterator(list.handler, MODE_GET, column, {number}, &row);
        };
        EXPECT_EQ(get(1, 31).integer, 31);
        EXPECT_EQ(get(2, 0).octets, "first");
        EXPECT_EQ(get(2, 5).octets, "");
        EXPECT_EQ(get(2, 31).octets, std::string(256, 'x'));
        EXPECT_EQ(get(3, 0).error, SNMP_NOSUCHOBJECT);
        EXPECT_EQ(call_iterator(list.handler, MODE_GET, 1, {0}, nullptr).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(call_iterator(list.handler, MODE_GET, 3, {0}, nullptr).error, SNMP_NOSUCHOBJECT);
        int row = 0;
        EXPECT_EQ(set_iterator(list.handler, 2, {0}, &row, octets_value("n")), 0);
    }
}

}  // namespace
