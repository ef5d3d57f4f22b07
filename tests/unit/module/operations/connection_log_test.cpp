// The connection log of an ONT, as a query and as the text of a table.
#include <cstdlib>

#include "module/operations/ont_connections.h"
#include "module/store/ont_sections.h"
#include "support/config_image.h"
#include "support/onts.h"
#include "wire/record.h"

extern "C" {
next_index_function tarnONTConnectionLogTable_next_index;
module_handler_function tarnONTConnectionLogTable_module_handler;
char *generate_ont_connections(int, const std::uint8_t *);
char *SnToString(const std::uint8_t *, char *, int);
}

namespace {

// An answer of these many entries. Entry i begins at payload byte 14 + 8 + 99 i.
Bytes connections(std::uint8_t count) {
    Bytes payload(14 + 990, 0);
    payload[13] = count;
    return payload;
}

void put_text(std::uint8_t *to, const char *text) {
    std::copy(text, text + std::char_traits<char>::length(text), to);
}

class ConnectionLogTest : public ModuleTest {
  protected:
    void SetUp() override {
        ModuleTest::SetUp();
        setenv("TZ", "UTC", 1);
        tzset();
        start({2});
        image.add_ont(5 * 64 + 9, "TARN0001");
        std::uint8_t *deleted = image.add_ont(2, "AAAA0001");
        deleted[4] = 0;
        image.add_ont(531, std::string("\x01\x02\x03\x04\xAB\xCD\xEF\x00", 8));
        image.serve();
    }
    static std::string log_of(const char *ont) { return generate_ont_connections(2, serial(ont)); }

    ConfigImage image;
};

TEST_F(ConnectionLogTest, TextIsMadeOfTheEntries) {
    Bytes answer = connections(2);
    std::uint8_t *first = &answer[14 + 8];
    put_text(first + 2, "ONT-4E");
    put_text(first + 66, "2.0.16 build 4.5");  // fills its field
    tarn::store_le32(first + 82, 1700000000);  // 2023-11-14 22:13:20
    tarn::store_le32(first + 86, 0);
    first[90] = 3;
    std::uint8_t *second = first + 99;
    std::fill_n(second + 2, 64, 'E');
    tarn::store_le32(second + 86, 4294967295);  // 2106-02-07 06:28:15
    second[90] = 200;
    board.answer(305, answer);
    EXPECT_EQ(log_of("TARN0001"),
              "\n----------------------------------------------\n"
              "    Serial number:       TARN30303031\n"
              "    Equipment ID:        ONT-4E\n"
              "    Version:             2.0.16 build 4.5\n"
              "    LinkUp :             2023-11-14 22:13:20\n"
              "    LinkDown :           ------\n"
              "    Last state :         GPonOntConnectionStateIndicatorType_enum 3\n"
              "\n----------------------------------------------\n"
              "    Serial number:       TARN30303031\n"
              "    Equipment ID:        EEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEEE\n"
              "    Version:             \n"
              "    LinkUp :             ------\n"
              "    LinkDown :           2106-02-07 06:28:15\n"
              "    Last state :         GPonOntConnectionStateIndicatorType_enum 200\n");
    EXPECT_EQ(board.sent.back().destination(), 8);
    EXPECT_EQ(board.last_payload(), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 5, 9, 0, 0, 0}));
    EXPECT_EQ(board.sent.back().timeout_ms, 30000);
}

TEST_F(ConnectionLogTest, NeverTakesMoreThanTenEntries) {
    Bytes answer = connections(255);
    tarn::store_le32(&answer[14 + 8 + 9 * 99 + 82], 1700000000);
    board.answer(305, answer);
    const std::string text = log_of("TARN0001");
    std::size_t entries = 0;
    for (std::size_t at = text.find("Serial number"); at != std::string::npos;
         at = text.find("Serial number", at + 1)) {
        ++entries;
    }
    EXPECT_EQ(entries, 10U);
    EXPECT_NE(text.find("2023-11-14", text.size() - 250), std::string::npos);  // the tenth is read too
}

TEST_F(ConnectionLogTest, KeepsTheEntriesOfOneOntUnderItsOwnNameOnly) {
    board.answer(305, connections(1));
    log_of("TARN0001");
    log_of("TARN0001");
    EXPECT_EQ(board.count(305), 1);
    board.silence(305);
    board.everything_stale = true;
    EXPECT_NE(log_of("TARN0001"), "");
    board.everything_stale = false;
    // A deleted record counts too. Nothing came for it.
    EXPECT_EQ(log_of("AAAA0001"), "");
    EXPECT_EQ(board.last_payload(), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0}));
    log_of("AAAA0001");
    EXPECT_EQ(board.count(305), 3);
    board.answer(305, Bytes(14 + 989, 1));  // too short to be a block
    log_of("TARN0001");
    EXPECT_TRUE(board.logged("3 get_ont_connections : short answer, 1035 bytes of 1036\n"));
    EXPECT_EQ(tarn::slot_sections<tarn::OntSections>(2)->connections_count, 0);
}

TEST_F(ConnectionLogTest, UnconfiguredOntsHaveAnEmptyLog) {
    EXPECT_EQ(log_of("ZZZZ0001"), "");
    EXPECT_TRUE(board.logged("3 generate_ont_connections : Can't find ont with this serial\n"));
    EXPECT_EQ(get_ont_connections(2, serial("ZZZZ0001")), nullptr);
    EXPECT_TRUE(board.logged("3 get_ont_connections : Can't find ont state with this serial\n"));
    EXPECT_EQ(board.count(305), 0);
}

TEST_F(ConnectionLogTest, TableListsTheConfiguredOntsInStoreOrder) {
    const auto rows = walk_iterator(tarnONTConnectionLogTable_next_index, 2, {0, ""});
    EXPECT_EQ(
        indices_of(tarnONTConnectionLogTable_next_index, 2, {0, ""}),
        (std::vector<IndexValues>{
            {3, "AAAA0001"}, {3, "TARN0001"}, {3, std::string("\x01\x02\x03\x04\xAB\xCD\xEF\x00", 8)}}));
    EXPECT_TRUE(walk_iterator(tarnONTConnectionLogTable_next_index, 5, {0, ""}).empty());

    board.answer(305, connections(1));
    const auto get = [&](int column, void *row) {
        return call_iterator(tarnONTConnectionLogTable_module_handler, MODE_GET, column, rows[2].index, row);
    };
    const Outcome log = get(3, rows[2].row);
    EXPECT_EQ(log.type, ASN_OCTET_STR);
    EXPECT_EQ(log.octets.substr(0, 89),
              "\n----------------------------------------------\n    Serial number:       01020304ABCDEF00");
    EXPECT_EQ(board.last_payload(), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 8, 19, 0, 0, 0}));
    for (const int column : {1, 2, 4}) {
        EXPECT_EQ(get(column, rows[2].row).error, SNMP_NOSUCHOBJECT) << column;
    }
    EXPECT_EQ(get(3, nullptr).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(set_iterator(tarnONTConnectionLogTable_module_handler, 3, rows[2].index, rows[2].row,
                           octets_value("x")),
              0);
}

TEST_F(ConnectionLogTest, SerialsPrintWithOrWithoutTheirVendor) {
    char buffer[26];
    const auto print = [&](const char *text, int size) -> std::string {
        const char *printed = SnToString(serial(text), buffer, size);
        return printed != nullptr ? printed : "(null)";
    };
    EXPECT_EQ(print("AZAZ\x01\x02\xAB\xFF", 13), "AZAZ0102ABFF");
    EXPECT_EQ(print("AZAZ\x01\x02\xAB\xFF", 12), "(null)");
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(print("AzAZ\x01\x02\xAB\xFF", 17), "417A415A0102ABFF");
    EXPECT_EQ(print("AzAZ\x01\x02\xAB\xFF", 16), "(null)");
    EXPECT_EQ(print("AZAZ\x01\x02\xAB\xFF", 0), "(null)");
    EXPECT_EQ(SnToString(serial("AZAZ0001"), nullptr, 26), nullptr);
}

}  // namespace
