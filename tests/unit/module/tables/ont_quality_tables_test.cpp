// Bit errors and utilization of ONTs, and the PPPoE sessions of their clients.
#include "support/onts.h"
#include "tarn/host_services.h"

extern "C" {
get_next_entry_function tarnONTDownstreamBERTable_get_next_entry, tarnOLTPPPoESessionsTable_get_next_entry,
    tarnONTServicesUtilizationTable_get_next_entry;
table_handler_nextgen_function tarnONTDownstreamBERTable_table_handler_nextgen,
    tarnOLTPPPoESessionsTable_table_handler_nextgen, tarnONTServicesUtilizationTable_table_handler_nextgen;
}

namespace {

const Oid errors = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 7};
const Oid services = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 8};
const Oid sessions = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 2, 16};

Oid session_oid(oid column, oid number) {
    Oid name = sessions;
    name.insert(name.end(), {1, column, 3, number});
    return name;
}

class OntQualityTablesTest : public Started<ModuleTest, 2> {
  protected:
    static Outcome of_ont(oid column, const std::string &ont = "AAAA0001") {
        return call_nextgen(tarnONTDownstreamBERTable_table_handler_nextgen, MODE_GET, 2,
                            ont_oid(errors, column, 3, ont));
    }
    static Outcome of_service(oid column, const std::string &ont, oid number) {
        return call_nextgen(tarnONTServicesUtilizationTable_table_handler_nextgen, MODE_GET, 2,
                            ont_oid(services, column, 3, ont, {number}));
    }
    static Outcome of_session(oid column, oid number) {
        return call_nextgen(tarnOLTPPPoESessionsTable_table_handler_nextgen, MODE_GET, 2,
                            session_oid(column, number));
    }
};

// 25 errors in 2^33 + 3 bits.
TEST_F(OntQualityTablesTest, BitErrorsOfAnOnt) {
    board.answer(73, list_of({"CCCC0001", "AAAA0001"}));
    board.answer(277, {'A', 'A', 'A', 'A', '0', '0', '0', '1', 25, 0, 0, 0, 3, 0, 0, 0, 2, 0, 0, 0, 0, 0});
    EXPECT_EQ(walk_nextgen(tarnONTDownstreamBERTable_get_next_entry, 2, errors, 3),
              ont_oids(errors, 3, 3, {{"AAAA0001", {}}, {"CCCC0001", {}}}));
    expect_readings([](oid column) { return of_ont(column); }, is_unsigned(1, 3), is_octets(2, "AAAA0001"),
                    is_unsigned(3, 25), is_octets(5, "2.91E-09"));
    const Outcome bits = of_ont(4);
    EXPECT_EQ(bits.type, ASN_COUNTER64);
    EXPECT_EQ(std::pair(bits.counter.high, bits.counter.low), std::pair(2UL, 3UL));
    EXPECT_EQ(board.count(277), 1);
    EXPECT_EQ(of_ont(3, "CCCC0001").error, SNMP_NOSUCHINSTANCE) << "the record is another ONT's";
    EXPECT_EQ(of_ont(1, "DDDD0001").error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(of_ont(6).error, SNMP_NOSUCHOBJECT);
    board.answer(277, {'C', 'C', 'C', 'C', '0', '0', '0', '1', 25, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    board.everything_stale = true;
    EXPECT_EQ(of_ont(5, "CCCC0001").octets, "0") << "no bits were counted";
}

TEST_F(OntQualityTablesTest, SixteenServicesOfEveryListedOnt) {
    board.answer(73, list_of({"CCCC0001", "AAAA0001"}));
    Bytes record(512);
    record[60] = 0x10;  // service 16
    record[61] = 0x27;
    record[256] = 7;
    record[256 + 60] = 0xFF;
    board.answer(450, record);
    const std::vector<Oid> rows =
        walk_nextgen(tarnONTServicesUtilizationTable_get_next_entry, 2, services, 4);
    ASSERT_EQ(rows.size(), 32U);
    EXPECT_EQ(rows[0], ont_oid(services, 4, 3, "AAAA0001", {1}));
    EXPECT_EQ(rows[31], ont_oid(services, 4, 3, "CCCC0001", {16}));
    expect_readings([](oid column) { return of_service(column, "AAAA0001", 16); }, is_unsigned(1, 3),
                    is_octets(2, "AAAA0001"), is_unsigned(3, 16), is_unsigned(4, 10000), is_unsigned(5, 255));
    EXPECT_EQ(of_service(5, "AAAA0001", 1).integer, 7);
    EXPECT_EQ(board.count(450), 1);
    EXPECT_EQ(of_service(5, "CCCC0001", 1).integer, 7);
    EXPECT_EQ(board.count(450), 2) << "figures are kept for one ONT";
    for (const oid number : {0U, 17U}) {
        EXPECT_EQ(of_service(4, "AAAA0001", number).error, SNMP_NOSUCHINSTANCE);
    }
    EXPECT_EQ(of_service(6, "AAAA0001", 1).error, SNMP_NOSUCHOBJECT);
}

TEST_F(OntQualityTablesTest, SessionsInTheCardsOrder) {
    Bytes answer = {2, 0};
    answer.resize(2 + 31);
    answer.insert(answer.end(), {'A', 'A', 'A', 'A',  '0',  '0',  '0',  '1', 7, 4,    3,    2, 1, 2, 0, 0xAB,
                                 1,   2,   3,   0x39, 0x30, 0x10, 0x0E, 0,   0, 0xFF, 0x0F, 4, 0, 0, 0});
    board.answer(205, answer);
    EXPECT_EQ(walk_nextgen(tarnOLTPPPoESessionsTable_get_next_entry, 2, sessions, 5),
              (std::vector<Oid>{session_oid(5, 1), session_oid(5, 2)}));
    expect_readings([](oid column) { return of_session(column, 2); }, is_unsigned(1, 3),
                    is_octets(2, "AAAA0001"), is_unsigned(3, 7), is_unsigned(4, 0x01020304),
                    is_octets(5, std::string("\2\0\xab\1\2\3", 6)), is_unsigned(6, 12345),
                    is_unsigned(7, 3600), is_unsigned(8, 4095), is_unsigned(9, 4));
    EXPECT_EQ(of_session(6, 3).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(of_session(6, 0).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(of_session(10, 1).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(board.count(205), 1);
    board.answer(205, {0, 0});
    board.everything_stale = true;
    EXPECT_TRUE(next_of(tarnOLTPPPoESessionsTable_get_next_entry, 2, sessions, 5).empty());
    EXPECT_EQ(of_session(6, 1).error, SNMP_NOSUCHINSTANCE);
}

}  // namespace
