// The state queries: request bytes, what is copied where, when the board is asked again, what a failure
// leaves.
#include <cmath>

#include "module/config/olt_channel_config.h"
#include "module/operations/channel_queries.h"
#include "module/operations/ont_queries.h"
#include "module/store/channel_sections.h"
#include "module/store/ont_sections.h"
#include "support/onts.h"
#include "wire/bytes.h"

namespace {

// Eight channel records after the selector byte; byte b of channel c is 16 c + b modulo 256.
Bytes channel_records(std::uint8_t added = 0) {
    Bytes payload(1 + 8 * 69);
    payload[0] = 255;
    for (std::size_t c = 0; c < 8; ++c) {
        for (std::size_t b = 0; b < 69; ++b) {
            payload[1 + 69 * c + b] = static_cast<std::uint8_t>(16 * c + b + added);
        }
    }
    return payload;
}

class BoardQueriesTest : public Started<ModuleTest, 2> {};

TEST_F(BoardQueriesTest, ChannelStateTakesTheAskedChannelOnly) {
    board.answer(70, channel_records());
    const std::uint8_t *record = get_olt_channel_state(2, 3);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record[0], 48);
    EXPECT_EQ(record[68], 116);
    EXPECT_EQ(tarn::slot_sections<tarn::ChannelSections>(2)->channel_states[4][0], 0);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.sent[0].destination(), 8);
    EXPECT_EQ(board.payload_of(0), (Bytes{3}));
    EXPECT_EQ(board.sent[0].timeout_ms, 3000);

    get_olt_channel_state(2, 3);
    EXPECT_EQ(board.sent.size(), 1U);  // fresh
    get_olt_channel_state(2, 4);
    EXPECT_EQ(board.sent.size(), 2U);  // a stamp of its own
    EXPECT_EQ(get_olt_channel_state(2, 8), nullptr);
    EXPECT_EQ(get_olt_channel_state(2, -1), nullptr);
}

TEST_F(BoardQueriesTest, AFailureLeavesTheOldContentsAndOneLineAPeriod) {
    board.answer(70, channel_records());
    get_olt_channel_state(2, 0);
    board.silence(70);
    board.everything_stale = true;
    const std::uint8_t *record = get_olt_channel_state(2, 0);
    EXPECT_EQ(record[5], 5);  // the old contents
    board.everything_stale = false;
    get_olt_channel_state(2, 0);
    EXPECT_EQ(board.sent.size(), 2U);
    Bytes cut = channel_records(50);
    cut.resize(300);
    board.answer(70, cut);
    board.everything_stale = true;
    EXPECT_EQ(get_olt_channel_state(2, 0)[1], 1);
    EXPECT_EQ(board.log,
              (std::vector<std::string>{"3 get_olt_channel_state : no answer 1:(-1)\n",
                                        "3 get_olt_channel_state : short answer, 332 bytes of 585\n"}));
}

TEST_F(BoardQueriesTest, ShortFormUpdatesTwoFieldsOfEveryChannel) {
    board.answer(70, channel_records());
    board.answer(71, channel_records(100));
    get_olt_channel_state(2, 7);
    const std::uint8_t *first = get_olt_channels_state_lite(2);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.payload_of(1), (Bytes{255}));
    EXPECT_EQ(board.sent[1].timeout_ms, 3000);
    const std::uint8_t *seventh = first + 7 * 69;
    const Bytes head(seventh, seventh + 12);
    EXPECT_EQ(head, (Bytes{112, 113, 114, 215, 216, 117, 118, 219, 220, 221, 222, 123}));
    EXPECT_EQ(Bytes(first, first + 5), (Bytes{0, 0, 0, 103, 104}));
}

TEST_F(BoardQueriesTest, OltStateAndIdentityAreThirtyTwoByteRequests) {
    Bytes state(32);
    state[0] = 1;
    state[31] = 9;
    board.answer(69, state);
    const std::uint8_t *record = get_olt_state(2);
    EXPECT_EQ(Bytes(record, record + 32), state);
    EXPECT_EQ(board.sent[0].bytes.size(), 32U);
    EXPECT_EQ(board.sent[0].timeout_ms, 30000);
    get_hardware_information(2);
    get_version_information(2);
    EXPECT_EQ(board.sent[1].command(), 413);
    EXPECT_EQ(board.sent[2].command(), 412);
    board.silence(69);
    board.everything_stale = true;
    get_olt_state(2);
    board.everything_stale = false;
    EXPECT_EQ(get_olt_state(2)[31], 9);  // stamped by the failed attempt
    EXPECT_EQ(board.count(69), 2);
}

TEST_F(BoardQueriesTest, BothListQueriesFillOneListUnderTwoStamps) {
    board.answer(73, list_of({"CCCC1111", "AAAA1111", "BBBB1111"}));
    get_ont_list(2);
    EXPECT_EQ(board.payload_of(0), (Bytes{255}));
    EXPECT_EQ(board.sent[0].timeout_ms, 10000);
    const auto &db = *tarn::slot_sections<tarn::OntSections>(2);
    EXPECT_EQ(db.ont_list[0][0], 'C');
    // The free positions come first, then the ONTs by serial.
    EXPECT_EQ(db.ont_list_by_serial[0], 3);
    EXPECT_EQ(db.ont_list_by_serial[1020], 1023);
    EXPECT_EQ(db.ont_list_by_serial[1021], 1);
    EXPECT_EQ(db.ont_list_by_serial[1022], 2);
    EXPECT_EQ(db.ont_list_by_serial[1023], 0);

    board.answer(73, list_of({"DDDD1111"}));
    get_all_ont_list(2);
    EXPECT_EQ(board.sent[1].timeout_ms, 3000);
    EXPECT_EQ(db.ont_list[0][0], 'D');
    EXPECT_EQ(db.ont_list[1][0], 0);  // the rest is cleared
    get_ont_list(2);
    get_all_ont_list(2);
    EXPECT_EQ(board.sent.size(), 2U);
}

TEST_F(BoardQueriesTest, EqualSerialsKeepTheirListOrderAndAFailureTheList) {
    board.answer(73, list_of({"BBBB1111", "AAAA1111", "BBBB1111", "AAAA1111"}));
    get_ont_list(2);
    const auto &sorted = tarn::slot_sections<tarn::OntSections>(2)->ont_list_by_serial;
    EXPECT_EQ(std::vector(sorted.begin() + 1020, sorted.end()), (std::vector<std::uint16_t>{1, 3, 0, 2}));
    board.silence(73);  // which leaves the list for a period
    board.everything_stale = true;
    get_ont_list(2);
    board.everything_stale = false;
    EXPECT_EQ(get_ont_list(2)[0], 'B');
    EXPECT_EQ(board.count(73), 2);
}

TEST_F(BoardQueriesTest, TheCountOfAListIsBoundedByTheListAndTheAnswer) {
    Bytes payload = list_of(std::vector<std::string>(1024, "AAAA1111"));
    tarn::store_le32(&payload[1], 0xFFFFFFFF);
    board.answer(73, payload);
    get_ont_list(2);
    EXPECT_TRUE(board.logged("3 get_ont_list : 4294967295 ONTs stated, 1024 taken\n"));
    EXPECT_EQ(tarn::slot_sections<tarn::OntSections>(2)->ont_list[1023][0], 'A');

    payload = list_of({"AAAA1111", "BBBB1111", "CCCC1111"});
    payload.resize(5 + 2 * 106 + 50);
    board.answer(73, payload);
    get_all_ont_list(2);
    EXPECT_TRUE(board.logged("3 get_all_ont_list : 3 ONTs stated, 2 taken\n"));
    EXPECT_EQ(tarn::slot_sections<tarn::OntSections>(2)->ont_list[2][0], 0);
}

TEST_F(BoardQueriesTest, LookupsEndAtTheFirstFreePosition) {
    board.answer(73, list_of({"BBBB1111", std::string(8, '\0'), "AAAA1111"}));
    EXPECT_EQ(get_ont_state_id_by_serial(2, serial("BBBB1111")), 0);
    EXPECT_EQ(get_ont_state_id_by_serial(2, serial("\0\0\0\0\0\0\0\0")), 1);
    EXPECT_EQ(get_ont_state_id_by_serial(2, serial("AAAA1111")), 65535);
    // ... but the record lookup goes on after it
    const std::uint8_t *record = get_all_ont_state_list_by_serial(2, serial("AAAA1111"));
    EXPECT_EQ(record, tarn::slot_sections<tarn::OntSections>(2)->ont_list[2].data());
    EXPECT_EQ(get_all_ont_state_list_by_serial(2, serial("ZZZZ1111")), nullptr);
    board.answer(73, list_of({}));
    board.everything_stale = true;
    EXPECT_EQ(get_ont_state_id_by_serial(2, serial("BBBB1111")), 65535);
}

TEST_F(BoardQueriesTest, OntStateAsksBySerialAndAFailureLeavesZeros) {
    board.answer(73, list_of({"AAAA1111", "BBBB2222"}));
    Bytes state(170, 0x5A);
    board.answer(72, state);
    const std::uint8_t *record = get_ont_state(2, serial("BBBB2222"));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(Bytes(record, record + 170), state);
    EXPECT_EQ(board.payload_of(1), (Bytes{'B', 'B', 'B', 'B', '2', '2', '2', '2', 0, 0, 0, 0, 0}));
    EXPECT_EQ(board.sent[1].timeout_ms, 3000);
    get_ont_state(2, serial("BBBB2222"));
    EXPECT_EQ(board.count(72), 1);

    board.silence(72);
    board.everything_stale = true;
    get_ont_state(2, serial("BBBB2222"));
    board.everything_stale = false;
    EXPECT_EQ(get_ont_state(2, serial("BBBB2222"))[100], 0);
    EXPECT_EQ(board.count(72), 2);

    EXPECT_EQ(get_ont_state(2, serial("CCCC3333")), nullptr);
    EXPECT_EQ(board.log.back(), "3 get_ont_state : Can't find ont state with this serial\n");
}

TEST_F(BoardQueriesTest, StateCode13KeepsTheCardUnasked) {
    Bytes list = list_of({"AAAA1111"});
    list[5 + 68] = 13;
    board.answer(73, list);
    board.answer(72, Bytes(170, 1));
    const std::uint8_t *record = get_ont_list(2);
    ASSERT_NE(get_ont_state_check_state(2, record), nullptr);
    EXPECT_EQ(board.count(72), 0);
    Bytes other(106, 0);
    other[0] = 'Z';
    other[68] = 13;
    EXPECT_EQ(get_ont_state_check_state(2, other.data()), nullptr);
    EXPECT_EQ(board.log.back(), "3 get_ont_state_check_state : Can't find ont state with this serial\n");
}

TEST_F(BoardQueriesTest, ASerialInsideTheListSurvivesTheRefreshThatMovesIt) {
    board.answer(73, list_of({"AAAA1111", "BBBB2222"}));
    const std::uint8_t *record = get_ont_list(2) + 106;
    board.answer(73, list_of({"CCCC3333", "DDDD4444", "BBBB2222"}));
    board.answer(72, Bytes(170, 9));
    board.everything_stale = true;
    EXPECT_EQ(get_ont_state_check_state(2, record),
              tarn::slot_sections<tarn::OntSections>(2)->ont_states[2].record.data());
    EXPECT_EQ(board.last_payload()[0], 'B');
}

TEST_F(BoardQueriesTest, APositionThatChangesHandsShowsNothingOfItsFormerOnt) {
    board.answer(73, list_of({"AAAA1111", "BBBB2222"}));
    board.answer(72, Bytes(170, 9));
    get_ont_state(2, serial("AAAA1111"));
    get_ont_state(2, serial("BBBB2222"));
    board.answer(73, list_of({"AAAA1111", "CCCC3333"}));
    board.silence(72);
    tarn::slot_sections<tarn::OntSections>(2)->ont_list_stamp.clear();
    EXPECT_EQ(get_ont_state(2, serial("CCCC3333"))[0], 0);
    EXPECT_EQ(board.count(72), 3);
    EXPECT_EQ(get_ont_state(2, serial("AAAA1111"))[0], 9);
    EXPECT_EQ(board.count(72), 3);
}

struct OntSection {
    std::uint8_t *(*query)(int, const std::uint8_t *);
    int command;
    std::size_t size;
    int timeout_ms;
    bool stamped_by_failure;
};

TEST_F(BoardQueriesTest, PerOntSectionsAskBySerialUnderTheirOwnRules) {
    board.answer(73, list_of({"AAAA1111"}));
    for (const OntSection &section : {OntSection{get_ont_i2c, 250, 14, 3000, true},
                                      {get_ont_uni_ports_state, 298, 66, 5000, false},
                                      {get_ont_downstream_ber, 277, 22, 30000, false}}) {
        SCOPED_TRACE(section.command);
        board.sent.clear();
        board.silence(section.command);
        section.query(2, serial("AAAA1111"));
        section.query(2, serial("AAAA1111"));
        EXPECT_EQ(board.count(section.command), section.stamped_by_failure ? 1 : 2);
        board.answer(section.command, Bytes(section.size, 7));
        board.everything_stale = true;
        const std::uint8_t *record = section.query(2, serial("AAAA1111"));
        board.everything_stale = false;
        EXPECT_EQ(Bytes(record, record + section.size), Bytes(section.size, 7));
        EXPECT_EQ(board.sent.back().timeout_ms, section.timeout_ms);
        EXPECT_EQ(board.last_payload(), (Bytes{'A', 'A', 'A', 'A', '1', '1', '1', '1', 0, 0, 0, 0, 0}));
    }
}

TEST_F(BoardQueriesTest, ChannelConfigurationIsStampedOnlyByAnAnswerAndClearedByAWrite) {
    Bytes answer(98, 0x42);
    answer[0] = 5;
    board.answer(85, answer);
    board.answer(86, {});
    board.silence(85);
    EXPECT_NE(get_olt_channel_config(2, 5), nullptr);
    board.answer(85, answer);
    std::uint8_t *record = get_olt_channel_config(2, 5);
    EXPECT_EQ(Bytes(record, record + 97), Bytes(97, 0x42));
    get_olt_channel_config(2, 5);
    EXPECT_EQ(board.count(85), 2);
    EXPECT_EQ(board.payload_of(0), (Bytes{5}));

    record[0] = 1;
    EXPECT_EQ(set_olt_channel_config(2, 5), 0);
    Bytes expected(98, 0x42);
    expected[0] = 5;
    expected[1] = 1;
    EXPECT_EQ(board.payload_of(2), expected);
    get_olt_channel_config(2, 5);
    EXPECT_EQ(board.count(85), 3);
    board.silence(86);
    EXPECT_EQ(set_olt_channel_config(2, 5), -1);
    EXPECT_EQ(set_olt_channel_config(2, 8), -1);
    EXPECT_EQ(board.count(86), 2);
}

}  // namespace
