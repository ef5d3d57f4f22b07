// The tables of ONT performance monitoring.
#include "support/onts.h"
#include "tarn/host_services.h"

#define COUNTER_TABLES(X)                                                    \
    X(tarnONTEthPerformMonitoringHistDataTable, get_port_id_from_oid)        \
    X(tarnONTGalEthPerformMonitoringHistDataTable, get_cc_id_from_oid)       \
    X(tarnONTFecPerformMonitoringHistDataTable, get_dummy_from_oid)          \
    X(tarnONTGEMPortPerformMonitoringDSTable, get_cc_id_from_oid)            \
    X(tarnONTGEMPortPerformMonitoringUSTable, get_cc_id_from_oid)            \
    X(tarnONTCrossConnectDSTable, get_cc_id_from_oid)                        \
    X(tarnONTCrossConnectUSTable, get_cc_id_from_oid)                        \
    X(tarnONTEthFrameExtendedPerformMonitoringDSTable, get_port_id_from_oid) \
    X(tarnONTEthFrameExtendedPerformMonitoringUSTable, get_port_id_from_oid)

#define DECLARE(T, key_reader)                                                       \
    get_next_entry_function T##_get_next_entry;                                      \
    table_handler_nextgen_function T##_table_handler_nextgen;                        \
    int get_colnum_from_oid_##T(const oid *, std::size_t);                           \
    void get_serial_from_oid_##T(const oid *, std::size_t, std::uint8_t *);          \
    int key_reader##_##T(const oid *, std::size_t);                                  \
    int get_counter_id_from_oid_##T(const oid *, std::size_t);                       \
    int get_exact_state_index_2_##T(const oid *, std::size_t, const std::uint8_t *); \
    int get_first_available_state_index_##T(const oid *, std::size_t, const std::uint8_t *);

extern "C" {
COUNTER_TABLES(DECLARE)
get_next_entry_function tarnONTMulticastStatTable_get_next_entry;
table_handler_nextgen_function tarnONTMulticastStatTable_table_handler_nextgen;
get_next_entry_function tarnONTMulticastActiveGroupsTable_get_next_entry;
table_handler_nextgen_function tarnONTMulticastActiveGroupsTable_table_handler_nextgen;
std::uint8_t *get_all_ont_list(int);
std::uint32_t *get_epmhd_counters(int, const std::uint8_t *, int, int, int);
std::uint32_t *get_fpmhd_counters(int, const std::uint8_t *, int, int);
const char *get_epmhd_counter_name(int);
}

namespace {

const Oid prefix = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 20, 1};

struct Readers {
    int (*column)(const oid *, std::size_t);
    void (*serial)(const oid *, std::size_t, std::uint8_t *);
    int (*key)(const oid *, std::size_t);
    int (*counter)(const oid *, std::size_t);
    int (*exact)(const oid *, std::size_t, const std::uint8_t *);
    int (*first)(const oid *, std::size_t, const std::uint8_t *);
};

struct Described {
    const char *name;
    get_next_entry_function *next;
    table_handler_nextgen_function *handler;
    Readers readers;
};

#define DESCRIBE(T, key_reader)                                                                        \
    {#T,                                                                                               \
     T##_get_next_entry,                                                                               \
     T##_table_handler_nextgen,                                                                        \
     {get_colnum_from_oid_##T, get_serial_from_oid_##T, key_reader##_##T, get_counter_id_from_oid_##T, \
      get_exact_state_index_2_##T, get_first_available_state_index_##T}},
const Described tables[] = {COUNTER_TABLES(DESCRIBE){"tarnONTMulticastStatTable",
                                                     tarnONTMulticastStatTable_get_next_entry,
                                                     tarnONTMulticastStatTable_table_handler_nextgen,
                                                     {}},
                            {"tarnONTMulticastActiveGroupsTable",
                             tarnONTMulticastActiveGroupsTable_get_next_entry,
                             tarnONTMulticastActiveGroupsTable_table_handler_nextgen,
                             {}}};

// What each table must look like: keys, counters, and per key its requests of (module, direction).
struct Expected {
    oid keys;
    oid counters;
    std::vector<std::pair<std::uint8_t, std::uint8_t>> requests;
    const char *last_name;
};
const Expected expected[] = {
    {4, 30, {{5, 3}, {6, 3}, {7, 3}}, "Packets 1024 to 1518 octets"},
    {16, 2, {{8, 3}}, "Discarded frames"},
    {1, 6, {{9, 3}}, "FEC seconds"},
    {10, 4, {{3, 1}}, "Received payload bytes"},
    {10, 4, {{3, 0}}, "Transmitted payload bytes"},
    {16, 4, {{2, 1}}, "GEM Fragments"},
    {16, 6, {{2, 0}}, "Bytes"},
    {5, 15, {{15, 1}}, "Packets 1024 to 1518 octets"},
    {5, 15, {{15, 0}}, "Packets 1024 to 1518 octets"},
    {1, 4, {{13, 3}}, "Number of active groups"},
    {16, 6, {{14, 3}}, "Actual bandwidth"},
};

// Answers a counters request with `count` values: value v of module m and key k is m k v as decimal digits.
void answer_counters(std::uint8_t count) {
    board.scripts[66] = [count](const SentRequest &request) {
        const std::uint32_t module = request.bytes[32];
        const std::uint32_t key = tarn::load_le32(&request.bytes[37]);
        Bytes payload(1 + 4 * std::size_t{count});
        payload[0] = count;
        for (std::uint32_t v = 0; v < count; ++v) {
            tarn::store_le32(&payload[1 + 4 * v], module * 10000 + key * 100 + v);
        }
        return make_answer(payload);
    };
}

class CounterTablesTest : public Started<ModuleTest, 2> {
  protected:
    void SetUp() override {
        Started::SetUp();
        Bytes list = list_of({"CCCC0001", "AAAA0001", "BBBB0001"});
        list[5 + 106 + 8] = 6;  // AAAA0001: channel 6, ONT id 0x04030201
        tarn::store_le32(&list[5 + 106 + 12], 0x04030201);
        board.answer(73, list);
        answer_counters(40);
    }
    static Outcome get(const Described &table, oid column, const std::string &ont, oid key, oid counter) {
        return call_nextgen(table.handler, MODE_GET, 2, ont_oid(prefix, column, 3, ont, {key, counter}));
    }
};

TEST_F(CounterTablesTest, OntsFollowInListOrderWithAllKeysAndCounters) {
    for (std::size_t t = 0; t < std::size(tables); ++t) {
        const auto &[keys, counters, requests, name] = expected[t];
        std::vector<Oid> rows;
        for (const char *ont : {"CCCC0001", "AAAA0001", "BBBB0001"}) {
            for (oid key = 1; key <= keys; ++key) {
                for (oid counter = 1; counter <= counters; ++counter) {
                    rows.push_back(ont_oid(prefix, 6, 3, ont, {key, counter}));
                }
            }
        }
        ASSERT_EQ(rows[0].size(), 26U);
        EXPECT_EQ(walk_nextgen(tables[t].next, 2, prefix, 6), rows) << tables[t].name;
        EXPECT_TRUE(next_of(tables[t].next, 4, prefix, 6).empty());
    }
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(CounterTablesTest, SuccessorsOfPartialAndUnknownIdentifiers) {
    const auto next = [](const std::string &ont, const std::vector<oid> &rest) {
        return next_of(tarnONTCrossConnectUSTable_get_next_entry, 2, ont_oid(prefix, 6, 3, ont, rest), 6);
    };
    EXPECT_EQ(next("AAAA0001", {}), ont_oid(prefix, 6, 3, "AAAA0001", {1, 1}));
    EXPECT_EQ(next("AAAA0001", {2}), ont_oid(prefix, 6, 3, "AAAA0001", {2, 1}));
    EXPECT_EQ(next("AAAA0001", {2, 6}), ont_oid(prefix, 6, 3, "AAAA0001", {3, 1}));
    EXPECT_EQ(next("AAAA0001", {2, 4294967295}), ont_oid(prefix, 6, 3, "AAAA0001", {3, 1}));
    EXPECT_EQ(next("AAAA0001", {17, 1}), ont_oid(prefix, 6, 3, "BBBB0001", {1, 1}));
    EXPECT_EQ(next("AAAB0001", {2, 3}), ont_oid(prefix, 6, 3, "CCCC0001", {1, 4}));  // the first greater
    EXPECT_TRUE(next("DDDD0001", {1, 1}).empty());
    EXPECT_TRUE(next("BBBB0001", {16, 6}).empty());
    board.link[2] = false;
    EXPECT_TRUE(next("AAAA0001", {}).empty());
}

TEST_F(CounterTablesTest, AMissFetchesEveryKeyOnceWithTheseRequests) {
    for (std::size_t t = 0; t < std::size(tables); ++t) {
        board.sent.clear();
        const auto &[keys, counters, requests, name] = expected[t];
        EXPECT_EQ(get(tables[t], 6, "AAAA0001", keys, 1).type, ASN_GAUGE);
        EXPECT_EQ(get(tables[t], 6, "AAAA0001", 1, counters).type, ASN_GAUGE);
        std::vector<Bytes> sent;
        for (std::size_t i = t == 0 ? 1 : 0; i < board.sent.size(); ++i) {  // the list comes first
            EXPECT_EQ(board.sent[i].command(), 66);
            EXPECT_EQ(board.sent[i].timeout_ms, 30000);
            sent.push_back(board.payload_of(i));
        }
        std::vector<Bytes> wanted;
        for (std::uint8_t key = 0; key < keys; ++key) {
            for (const auto &[module, direction] : requests) {
                wanted.push_back({module, 0, direction, 0, 6, key, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0, 0});
            }
        }
        EXPECT_EQ(sent, wanted) << tables[t].name;
    }
}

TEST_F(CounterTablesTest, EveryColumnOfEveryTable) {
    for (std::size_t t = 0; t < std::size(tables); ++t) {
        const auto &[keys, counters, requests, name] = expected[t];
        const Described &table = tables[t];
        expect_readings([&](oid column) { return get(table, column, "AAAA0001", keys, counters); },
                        is_number(1, 3), is_octets(2, "AAAA0001"), is_number(3, static_cast<long>(keys)),
                        is_number(4, static_cast<long>(counters)), is_octets(5, name));
        const long last = t == 0 ? 14 : static_cast<long>(counters) - 1;  // the third block begins at value 1
        EXPECT_EQ(get(table, 6, "AAAA0001", keys, counters).integer,
                  requests.back().first * 10000L + (static_cast<long>(keys) - 1) * 100 + last);
        for (const oid column : {0U, 7U}) {
            EXPECT_EQ(get(table, column, "AAAA0001", 1, 1).error, SNMP_NOSUCHINSTANCE);
        }
        EXPECT_EQ(get(table, 6, "AAAA0001", keys + 1, 1).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(get(table, 6, "AAAA0001", 1, counters + 1).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(get(table, 6, "AAAA0001", 0, 1).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(get(table, 6, "DDDD0001", 1, 1).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(get(table, 6, std::string(8, '\0'), 1, 1).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(set_nextgen(table.handler, 2, ont_oid(prefix, 6, 3, "AAAA0001", {1, 1}), unsigned_value(1)),
                  SNMP_ERR_NOTWRITABLE);
    }
}

TEST_F(CounterTablesTest, EthernetPortsJoinThreeBlocks) {
    const auto name = [](oid counter) { return get(tables[0], 5, "AAAA0001", 2, counter).octets; };
    const auto value = [](oid counter) { return get(tables[0], 6, "AAAA0001", 2, counter).integer; };
    EXPECT_EQ(name(1), "Finished intervals");
    EXPECT_EQ(name(15), "Internal MAC receive error counter");
    EXPECT_EQ(name(16), "PPPoE filtered frame counter");
    EXPECT_EQ(name(17), "Drop events");
    EXPECT_EQ(name(30), "Packets 1024 to 1518 octets");
    EXPECT_EQ(value(1), 50100);
    EXPECT_EQ(value(15), 50114);
    EXPECT_EQ(value(16), 60101);
    EXPECT_EQ(value(17), 70101);
    EXPECT_EQ(value(30), 70114);
    EXPECT_STREQ(get_epmhd_counter_name(15), "PPPoE filtered frame counter");
    EXPECT_STREQ(get_epmhd_counter_name(30), "");
    EXPECT_STREQ(get_epmhd_counter_name(-1), "");
}

TEST_F(CounterTablesTest, ShortAnswersAndFailuresLeaveZeros) {
    answer_counters(1);  // not even the second value of the one-value block
    expect_readings([&](oid counter) { return get(tables[0], 6, "AAAA0001", 1, counter); },
                    is_number(1, 50000), is_number(2, 0), is_number(16, 0), is_number(17, 0));

    answer_counters(255);
    EXPECT_EQ(get(tables[1], 6, "AAAA0001", 16, 2).integer, 81501);
    const Script answers = board.scripts[66];  // another ONT, whose key 1 the card refuses
    board.scripts[66] = [answers](const SentRequest &request) {
        return request.bytes[37] == 1 ? make_answer({}, 1) : answers(request);
    };
    EXPECT_EQ(get(tables[1], 6, "BBBB0001", 2, 2).integer, 0);
    EXPECT_EQ(get(tables[1], 6, "BBBB0001", 3, 2).integer, 80201);
    EXPECT_TRUE(board.log.empty());  // a card without counters is nothing to report
    board.silence(66);
    EXPECT_EQ(get(tables[1], 6, "CCCC0001", 3, 2).integer, 0);
}

TEST_F(CounterTablesTest, KeepsOneOntATableUntilItIsStale) {
    get(tables[2], 6, "AAAA0001", 1, 1);
    get(tables[2], 6, "AAAA0001", 1, 2);
    EXPECT_EQ(board.count(66), 1);
    get(tables[2], 6, "BBBB0001", 1, 1);
    get(tables[2], 6, "AAAA0001", 1, 1);
    EXPECT_EQ(board.count(66), 3);
    board.everything_stale = true;
    get(tables[2], 6, "AAAA0001", 1, 1);
    EXPECT_EQ(board.count(66), 4);
}

TEST_F(CounterTablesTest, CounterFunctionsCheckKeyAndSlot) {
    EXPECT_EQ(get_fpmhd_counters(2, serial("AAAA0001"), 6, 1)[5], 90005U);
    EXPECT_EQ(get_epmhd_counters(2, serial("AAAA0001"), 6, 1, 3)[29], 70314U);
    EXPECT_EQ(get_epmhd_counters(2, serial("AAAA0001"), 6, 1, 4), nullptr);
    EXPECT_EQ(get_epmhd_counters(2, serial("AAAA0001"), 6, 1, -1), nullptr);
    EXPECT_EQ(get_epmhd_counters(3, serial("AAAA0001"), 6, 1, 0), nullptr);
}

TEST_F(CounterTablesTest, IdentifiersAreReadOneFurtherThanElsewhere) {
    const std::uint8_t *list = get_all_ont_list(2);
    const Oid name = ont_oid(prefix, 6, 3, "AAAA0001", {1, 2});
    const Oid unlisted = ont_oid(prefix, 6, 3, "BBBC0001", {1, 2});
    for (const auto &[table, next, handler, readers] : tables) {
        if (readers.column == nullptr) {
            continue;
        }
        EXPECT_EQ(readers.column(name.data(), 26), 6) << table;
        std::uint8_t serial_read[8];
        readers.serial(name.data(), 22, serial_read);
        EXPECT_EQ(Bytes(serial_read, serial_read + 8), (Bytes{'A', 'A', 'A', 'A', '0', '0', 0, 0}));
        EXPECT_EQ(readers.key(name.data(), 26), 0);
        EXPECT_EQ(readers.counter(name.data(), 26), 1);
        EXPECT_EQ(readers.counter(name.data(), 25), -1);
        EXPECT_EQ(readers.exact(name.data(), 26, list), 1);
        EXPECT_EQ(readers.first(name.data(), 26, list), 0);
        EXPECT_EQ(readers.exact(unlisted.data(), 26, list), -1);
        EXPECT_EQ(readers.exact(prefix.data(), 12, list), -1);
    }
    board.balloc_fails = true;
    EXPECT_TRUE(next_of(tables[2].next, 2, prefix, 6).empty());
    EXPECT_TRUE(
        board.logged("3 append_index_tarnONTFecPerformMonitoringHistDataTable : memory allocation "
                     "error. Tried to allocate 104 bytes\n"));
}

}  // namespace
