// The ONT state table.
#include <cmath>
#include <limits>

#include "module/store/ont_sections.h"
#include "support/config_image.h"
#include "support/onts.h"
#include "tarn/host_services.h"
#include "wire/record.h"

extern "C" {
get_next_entry_function tarnONTStateTable_get_next_entry;
table_handler_nextgen_function tarnONTStateTable_table_handler_nextgen;
void append_index_state(table_entry *, const oid *, std::size_t, const std::uint8_t *, int, int);
void get_serial_from_oid_state(const oid *, std::size_t, std::uint8_t *);
int get_first_available_config_index_2_state(int, const oid *, std::size_t);
}

namespace {

const Oid table = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 1};

class OntStateTableTest : public Started<ModuleTest, 2> {
  protected:
    void SetUp() override {
        Started::SetUp();
        list = list_of({"CCCC0001", "AAAA0001", "BBBB0001"});
        board.answer(73, list);
    }
    static Outcome get(oid column, const std::string &ont = "AAAA0001") {
        return call_nextgen(tarnONTStateTable_table_handler_nextgen, MODE_GET, 2,
                            ont_oid(table, column, 3, ont));
    }
    static int set(oid column, const Value &value, const std::string &ont = "AAAA0001") {
        return set_nextgen(tarnONTStateTable_table_handler_nextgen, 2, ont_oid(table, column, 3, ont), value);
    }
    static Oid next(const Oid &name) { return next_of(tarnONTStateTable_get_next_entry, 2, name, 5); }
    // Readings of the optical module, fetched anew.
    static void answer_optics(const Bytes &record) {
        board.answer(250, record);
        tarn::slot_sections<tarn::OntSections>(2)->ont_i2c = {};
    }

    Bytes list;
};

TEST_F(OntStateTableTest, WalksInSerialOrderAndSkipsFreePositions) {
    const std::vector<Oid> rows =
        ont_oids(table, 5, 3, {{"AAAA0001", {}}, {"BBBB0001", {}}, {"CCCC0001", {}}});
    EXPECT_EQ(walk_nextgen(tarnONTStateTable_get_next_entry, 2, table, 5), rows);
    EXPECT_EQ(rows[0].size(), 23U);
    EXPECT_EQ(next(ont_oid(table, 5, 3, std::string(8, '\0'))), rows[0]);
    EXPECT_EQ(next(ont_oid(table, 5, 3, "AAAA0002")), rows[1]);  // not listed
    EXPECT_EQ(next(ont_oid(table, 5, 3, "AAAA")), rows[0]);      // a short serial is filled with zeros
    EXPECT_EQ(next(ont_oid(table, 5, 3, "BBBB0001", {7})), rows[2]);
    EXPECT_TRUE(next(rows[2]).empty());
    EXPECT_EQ(board.count(73), 1);
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(OntStateTableTest, HasNoRowsWithoutLinkListOrDatabase) {
    board.link[2] = false;
    EXPECT_TRUE(next(table).empty());
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(get(2).octets, "AAAA0001");  // asked for by name it answers from what the card last said
    EXPECT_TRUE(next_of(tarnONTStateTable_get_next_entry, 4, table, 5).empty());
}

TEST_F(OntStateTableTest, ListColumnsComeFromTheListRecord) {
    std::uint8_t *record = &list[5 + 106];
    record[8] = 0xF6;
    tarn::store_le32(record + 12, 0xFFFFFF01);
    std::fill_n(record + 18, 32, 'x');  // texts that fill their fields
    std::fill_n(record + 50, 18, 'y');
    std::fill_n(record + 91, 15, 'z');
    tarn::store_le16(record + 68, 0xFFFE);
    tarn::store_double(record, tarn::f64_at(70), -21.49);
    board.answer(73, list);
    expect_readings([&](oid column) { return get(column); }, is_unsigned(1, 3), is_octets(2, "AAAA0001"),
                    is_number(3, 0xF6), is_unsigned(4, 0xFFFFFF01), is_integer(5, 0xFFFE),
                    is_integer(11, -214), is_octets(12, std::string(32, 'x')),
                    is_octets(17, std::string(18, 'y')), is_octets(18, std::string(15, 'z')));
    for (const oid column : {20U, 21U, 22U, 23U}) {
        EXPECT_EQ(get(column).integer, 0) << column;
        EXPECT_EQ(get(column).type, ASN_GAUGE) << column;
    }
    for (const oid column : {0U, 19U, 27U}) {
        EXPECT_EQ(get(column).error, SNMP_NOSUCHOBJECT) << column;
    }
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(OntStateTableTest, PowerOfTheListIsBoundedAndHasASentinel) {
    const std::pair<double, long> cases[] = {
        {std::nan(""), 65535}, {2.99, 29}, {1e300, 2147483647}, {-INFINITY, -2147483648L}};
    for (const auto &[power, shown] : cases) {
        tarn::store_double(&list[5 + 106], tarn::f64_at(70), power);
        board.answer(73, list);
        tarn::slot_sections<tarn::OntSections>(2)->all_ont_list_stamp = {};
        EXPECT_EQ(get(11).integer, shown) << power;
    }
}

TEST_F(OntStateTableTest, StateColumnsComeFromTheStateRecord) {
    Bytes record(170, 0);
    tarn::store_le16(&record[66], 0xFFFD);
    tarn::store_le16(&record[68], 1);
    std::fill_n(record.begin() + 70, 16, 'v');
    tarn::store_le16(&record[86], 0xFFFB);
    tarn::store_double(record.data(), tarn::f64_at(128), 12.3456);
    board.answer(72, record);
    expect_readings([&](oid column) { return get(column); }, is_unsigned(6, 0xFFFD), is_integer(7, 1),
                    is_octets(8, std::string(16, 'v')), is_number(9, -5), is_unsigned(10, 12345));
    EXPECT_EQ(board.count(72), 1);
    EXPECT_EQ(board.count(73), 2);  // each of the two list queries has its own stamp
    EXPECT_EQ(board.payload_of(2), (Bytes{'A', 'A', 'A', 'A', '0', '0', '0', '1', 0, 0, 0, 0, 0}));

    const std::pair<double, long> cases[] = {
        {std::nan(""), 0}, {-3, 0}, {1e10, 4294967295}, {INFINITY, 4294967295}};
    for (const auto &[value, shown] : cases) {
        tarn::store_le16(&record[68], 2);
        tarn::store_double(record.data(), tarn::f64_at(128), value);
        board.answer(72, record);
        tarn::slot_sections<tarn::OntSections>(2)->ont_states = {};
        EXPECT_EQ(get(10).integer, shown) << value;
        EXPECT_EQ(get(7).integer, 2);
    }
}

TEST_F(OntStateTableTest, AnOntThatIsNotAskedShowsItsCachedState) {
    list[5 + 106 + 68] = 13;
    board.answer(73, list);
    EXPECT_EQ(get(6).integer, 0);
    EXPECT_EQ(board.count(72), 0);
}

TEST_F(OntStateTableTest, OpticsColumnsConvertTheirReadings) {
    const auto reading = [](int offset, int value) {
        Bytes record(14, 0);
        tarn::store_le16(&record[static_cast<std::size_t>(offset)], static_cast<std::uint16_t>(value));
        return record;
    };
    struct Case {
        oid column;
        int offset;
        int reading;
        long shown;
    };
    const Case cases[] = {
        {13, 0, 4999, 9998},  {13, 0, 5000, -20000}, {13, 0, -1000, -32000},   {13, 0, -999, -1998},
        {14, 2, 4999, 9998},  {14, 2, 5000, -20000}, {14, 2, -1000, -32000},   {14, 2, -1, -2},
        {15, 6, 256, 0},      {15, 6, 512, 20},      {15, 6, -300, -11},       {15, 6, 257, 10},
        {16, 8, -29, -29000}, {16, 8, -30, 32767},   {16, 8, 127, 127000},     {24, 4, 255, 255},
        {24, 4, 3, 1},        {24, 4, 0, 2},         {25, 10, -32768, -65536}, {26, 12, 65535, 131070},
    };
    for (const Case &c : cases) {
        answer_optics(reading(c.offset, c.reading));
        const Outcome shown = get(c.column);
        EXPECT_EQ(shown.integer, c.shown) << "column " << c.column << " reading " << c.reading;
        EXPECT_EQ(shown.type, c.column == 26 ? ASN_GAUGE : ASN_INTEGER);
    }
    Bytes unread = reading(8, 5);
    unread[4] = 255;
    answer_optics(unread);
    EXPECT_EQ(get(16).integer, 32767);
    EXPECT_EQ(board.last_payload(), (Bytes{'A', 'A', 'A', 'A', '0', '0', '0', '1', 0, 0, 0, 0, 0}));
}

TEST_F(OntStateTableTest, AMissingOntIsNoInstance) {
    for (const oid column : {1U, 2U, 6U, 13U, 19U, 20U}) {
        EXPECT_EQ(get(column, "DDDD0001").error, SNMP_NOSUCHINSTANCE) << column;
        EXPECT_EQ(get(column, std::string(8, '\0')).error, SNMP_NOSUCHINSTANCE) << column;
    }
    // The list of the per-ONT queries does not know this ONT any more.
    get(2);
    board.answer(73, list_of({"CCCC0001"}));
    EXPECT_EQ(get(6).error, SNMP_NOSUCHINSTANCE);
    EXPECT_TRUE(board.logged("3 get_ont_state : Can't find ont state with this serial\n"));
}

TEST_F(OntStateTableTest, TriggersActOnExactlyOne) {
    for (const int command : {15, 16, 291}) {
        board.answer(command, {});
    }
    for (const oid column : {20U, 21U, 22U, 23U}) {
        EXPECT_EQ(set(column, unsigned_value(0)), 0);
        EXPECT_EQ(set(column, unsigned_value(2)), 0);
        EXPECT_EQ(set(column, integer_value(1)), SNMP_ERR_WRONGTYPE);
    }
    EXPECT_EQ(board.count(73), static_cast<int>(board.sent.size()));
    const Bytes expected{'A', 'A', 'A', 'A', '0', '0', '0', '1', 0, 0, 0, 0, 0};
    for (const auto &[column, command] : {std::pair{20U, 15}, {22U, 16}, {23U, 291}}) {
        EXPECT_EQ(set(column, unsigned_value(1)), 0);
        EXPECT_EQ(board.sent.back().command(), command);
        EXPECT_EQ(board.sent.back().destination(), 8);
        EXPECT_EQ(board.last_payload(), expected);
    }
    for (const int command : {15, 16, 291}) {
        board.silence(command);
    }
    EXPECT_EQ(set(20, unsigned_value(1)), 0);  // whether these two worked is not reported
    EXPECT_EQ(set(21, unsigned_value(1)), 0);
    EXPECT_EQ(set(22, unsigned_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(set(23, unsigned_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(set(2, octets_value("AAAA0001")), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set(19, unsigned_value(1)), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set(22, unsigned_value(1), "DDDD0001"), SNMP_ERR_NOCREATION);
}

TEST_F(OntStateTableTest, FirmwareUpdateNamesTheOntByChannelAndNumber) {
    ConfigImage image;
    image.add_ont(5 * 64 + 9, "AAAA0001");
    image.serve();
    board.answer(18, {});
    EXPECT_EQ(set(21, unsigned_value(1)), 0);
    ASSERT_EQ(board.count(18), 1);
    const Bytes &sent = board.sent.back().bytes;
    ASSERT_EQ(sent.size(), 438U);
    EXPECT_EQ(Bytes(sent.begin() + 32, sent.begin() + 37), (Bytes{5, 9, 0, 0, 0}));
}

TEST_F(OntStateTableTest, IdentifiersAreBuiltAndReadByPositionAndFailuresLogged) {
    table_entry entry{};
    append_index_state(&entry, table.data(), table.size(), serial("BBBB0001"), 2, 5);
    ASSERT_EQ(entry.length, 23U);
    EXPECT_EQ(Oid(entry.name, entry.name + entry.length), ont_oid(table, 5, 3, "BBBB0001"));
    std::uint8_t read[8];
    get_serial_from_oid_state(entry.name, 20, read);
    EXPECT_EQ(Bytes(read, read + 8), (Bytes{'B', 'B', 'B', 'B', '0', 0, 0, 0}));
    bfree("", 0, entry.name);
    const Oid first = ont_oid(table, 5, 3, "AAAA0001");
    const Oid last = ont_oid(table, 5, 3, "CCCC0001");
    EXPECT_EQ(get_first_available_config_index_2_state(2, first.data(), first.size()), 1022);
    EXPECT_EQ(get_first_available_config_index_2_state(2, last.data(), last.size()), -1);
    board.balloc_fails = true;
    EXPECT_TRUE(next(table).empty());
    call_nextgen(tarnONTStateTable_table_handler_nextgen, 77, 2, first);
    EXPECT_EQ(board.log, (std::vector<std::string>{
                             "3 append_index_state : memory allocation error. Tried to allocate 92 bytes\n",
                             "3 tarnONTStateTable_table_handler_nextgen : Unknown mode : 77\n"}));
}

}  // namespace
