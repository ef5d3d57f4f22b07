// The address table in its three forms, and the session lists.
#include "module/operations/address_table.h"

#include "module/abi/sample_data.h"
#include "module/operations/sessions.h"
#include "support/scripted_board.h"

namespace {

// An entry of this serial; `mark` is its first byte, byte 0.
Bytes entry_of(const std::string &serial, std::uint8_t mark) {
    Bytes entry(37, 0);
    entry[0] = mark;
    std::copy(serial.begin(), serial.end(), entry.begin() + 21);
    return entry;
}

Bytes answer_of(const std::vector<Bytes> &entries) {
    Bytes payload(3 + 37 * entries.size());
    payload[0] = 255;
    payload[1] = static_cast<std::uint8_t>(entries.size() & 0xFF);
    payload[2] = static_cast<std::uint8_t>(entries.size() >> 8);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::copy(entries[i].begin(), entries[i].end(), payload.begin() + static_cast<long>(3 + 37 * i));
    }
    return payload;
}

class AddressTableTest : public Started<ModuleTest, 0> {
  protected:
    static const tarn::SessionSections &sessions_of_slot() {
        return *tarn::slot_sections<tarn::SessionSections>(0);
    }
    static const tarn::AddressSections &db() { return *tarn::slot_sections<tarn::AddressSections>(0); }
    static std::string sorted_marks() {
        std::string marks;
        for (std::size_t i = 0; tarn::address_by_serial(db(), i) != nullptr; ++i) {
            marks += static_cast<char>(tarn::address_by_serial(db(), i)[0]);
        }
        return marks;
    }
};

TEST_F(AddressTableTest, KeepsTheCardsOrderAndSortsBySerialStably) {
    board.answer(80, answer_of({entry_of("BBBB0001", 'a'), entry_of("AAAA0001", 'b'),
                                entry_of("BBBB0001", 'c'), entry_of("AAAA0000", 'd')}));
    const std::uint8_t *entries = get_global_ont_address_table(0);
    EXPECT_EQ(entries[0], 'a');
    EXPECT_EQ(entries[3 * 37], 'd');
    EXPECT_EQ(sorted_marks(), "dbac");
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.payload_of(0), (Bytes{255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    get_global_ont_address_table(0);
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(AddressTableTest, NoEntriesAndNoAnswerAreDifferentThings) {
    board.answer(80, answer_of({entry_of("AAAA0001", 'a')}));
    get_global_ont_address_table(0);
    board.silence(80);
    board.everything_stale = true;
    get_global_ont_address_table(0);
    EXPECT_EQ(tarn::address_entries(db()), 1U);
    board.answer(80, answer_of({}));
    EXPECT_NE(get_global_ont_address_table(0), nullptr);
    EXPECT_EQ(tarn::address_entries(db()), 0U);
    EXPECT_EQ(sorted_marks(), "");
    EXPECT_STREQ(get_global_ont_address_table_raw(0), "v1");
    EXPECT_EQ(db().address_text_length, 2U);
}

TEST_F(AddressTableTest, AnOversizedCountTakesOnlyWholeEntriesOfTheAnswer) {
    Bytes payload = answer_of({entry_of("AAAA0001", 'a'), entry_of("BBBB0001", 'b')});
    payload[1] = payload[2] = 0xFF;
    payload.resize(payload.size() - 1);
    board.answer(80, payload);
    get_global_ont_address_table(0);
    EXPECT_EQ(tarn::address_entries(db()), 1U);
    EXPECT_EQ(board.log,
              std::vector<std::string>{"3 get_global_ont_address_table : 65535 entries stated, 1 taken\n"});
}

TEST_F(AddressTableTest, AllOf65535EntriesAreSorted) {
    std::vector<Bytes> entries;
    for (int i = 0; i < 65535; ++i) {
        Bytes entry = entry_of("AAAA", 'x');
        entry[25] = static_cast<std::uint8_t>((65534 - i) >> 8);
        entry[26] = static_cast<std::uint8_t>((65534 - i) & 0xFF);
        entries.push_back(entry);
    }
    board.answer(80, answer_of(entries));
    get_global_ont_address_table(0);
    ASSERT_EQ(tarn::address_entries(db()), 65535U);
    EXPECT_EQ(tarn::address_by_serial(db(), 0)[25], 0);
    EXPECT_EQ(tarn::address_by_serial(db(), 65534)[25], 255);
    EXPECT_EQ(tarn::address_by_serial(db(), 65534)[26], 254);
    EXPECT_EQ(tarn::address_by_serial(db(), 65535), nullptr);
}

TEST_F(AddressTableTest, RawTextHas56CharactersAnEntryWhateverTheValues) {
    Bytes usual = entry_of("ABCD", 0);
    const std::uint8_t fields[] = {0x11, 0x00, 0x64, 0x00, 0x02, 0x00, 0xC8, 0x00,  // values at 0, 2, 4, 6
                                   0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};             // MAC at 8
    std::copy(std::begin(fields), std::end(fields), usual.begin());
    usual[18] = 7;
    usual[20] = 3;
    usual[24] = 0xFE;
    usual[28] = 0x01;
    Bytes wide = usual;
    wide[2] = 0x18;  // -1000: one character wider than its field
    wide[3] = 0xFC;
    wide[18] = 0xE8;  // 1000
    wide[19] = 0x03;
    wide[20] = 12;
    board.answer(80, answer_of({usual, wide, usual}));
    const std::string record = "|414243FE00000001,3,007,00:1A:2B:3C:4D:5E,0002,0200,0100";
    const std::string cut = "|414243FE00000001,12,1000,00:1A:2B:3C:4D:5E,0002,0200,-1";
    ASSERT_EQ(record.size(), 56U);
    EXPECT_EQ(get_global_ont_address_table_raw(0), "v1" + record + cut + record);
    EXPECT_EQ(db().address_text_length, 2U + 3 * 56);
    get_global_ont_address_table_raw(0);
    EXPECT_EQ(board.sent.size(), 1U);
}

TEST_F(AddressTableTest, AnAnswerWithoutSessionsEmptiesTheList) {
    Bytes payload(2 + 2 * 31, 0);
    payload[0] = 2;
    payload[2] = 'p';
    payload[2 + 31] = 'q';
    board.answer(205, payload);
    const std::uint8_t *sessions = get_pppoe_sessions(0);
    EXPECT_EQ(sessions[0], 'p');
    EXPECT_EQ(sessions[31], 'q');
    EXPECT_EQ(board.payload_of(0), (Bytes{255}));
    board.answer(205, {0, 0});
    board.everything_stale = true;
    EXPECT_EQ(get_pppoe_sessions(0), nullptr);
    EXPECT_EQ(sessions_of_slot().pppoe_session_count, 0);
    board.answer(205, payload);
    get_pppoe_sessions(0);
    cleanup_pppoe_sessions(0);
    EXPECT_EQ(sessions_of_slot().pppoe_session_count, 0);
    EXPECT_FALSE(sessions_of_slot().pppoe_stamp.is_set());
}

TEST_F(AddressTableTest, StatisticsAreAskedForOncePerPeriod) {
    board.answer(79, {});
    EXPECT_EQ(get_igmp_stats(0), nullptr);
    EXPECT_EQ(get_igmp_stats(0), nullptr);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.payload_of(0), (Bytes{255}));
}

TEST_F(AddressTableTest, SampleDataFillsTheSectionsWithoutACard) {
    fake_global_ont_address_table(0);
    fake_pppoe_sessions(0);
    fake_igmp_stats(0);
    EXPECT_EQ(tarn::address_entries(db()), 14U);
    EXPECT_EQ(sessions_of_slot().pppoe_session_count, 10);
    EXPECT_NE(tarn::address_by_serial(db(), 13), nullptr);
    EXPECT_TRUE(board.sent.empty());
}

}  // namespace
