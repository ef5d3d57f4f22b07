// The requests of the board actions, byte by byte after the stamped header.
#include "module/operations/board_actions.h"

#include <functional>

#include "module/operations/counters.h"
#include "support/scripted_board.h"

namespace {

constexpr std::uint8_t serial[] = {'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78};

class BoardActionsTest : public ModuleTest {};

struct ActionCase {
    const char *name;
    std::function<int()> act;
    int command;
    Bytes payload;
};

const ActionCase actions[] = {
    {"reconfigure_olt", [] { return reconfigure_olt(2); }, 13, Bytes{0}},
    {"reconfigure_olt_channel", [] { return reconfigure_olt_channel(2, 6); }, 14, Bytes{6}},
    {"reset_ont_counters", [] { return reset_ont_counters(2, serial); }, 67,
     Bytes{5, 0, 0, 0, 0, 'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 0}},
    {"reset_pon_channel_counters", [] { return reset_pon_channel_counters(2, 7); }, 67,
     Bytes{16, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"reboot_ont", [] { return reboot_ont(2, serial); }, 16,
     Bytes{'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 0}},
    {"disable_ont", [] { return disable_ont(2, 3, serial); }, 275,
     Bytes{3, 'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 255, 0}},
    {"enable_ont", [] { return enable_ont(2, 3, serial); }, 275,
     Bytes{3, 'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 0, 0}},
    {"ont_default_via_omci", [] { return ont_default_via_omci(2, serial); }, 291,
     Bytes{'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 0}},
    {"set_activation_auth_mode", [] { return set_activation_auth_mode(2, 5, 1); }, 314, Bytes{5, 2, 0}},
    {"set_activation_auth_mode", [] { return set_activation_auth_mode(2, 5, 0); }, 314, Bytes{5, 4, 0}},
};

TEST_F(BoardActionsTest, EachSendsItsRequestAndReportsTheAnswer) {
    for (const ActionCase &action : actions) {
        SCOPED_TRACE(action.name);
        board = ScriptedBoard();
        board.answer(action.command, {});
        EXPECT_EQ(action.act(), 0);
        ASSERT_EQ(board.sent.size(), 1U);
        const SentRequest &request = board.sent[0];
        Bytes header(32, 0);
        header[0] = static_cast<std::uint8_t>(action.command & 0xFF);
        header[1] = static_cast<std::uint8_t>(action.command >> 8);
        header[2] = 1;
        header[5] = 8;
        header[7] = 2;
        header[8] = header[9] = 3;
        header[10] = 38;
        header[12] = 1;
        header[16] = 36;
        header[20] = static_cast<std::uint8_t>(32 + action.payload.size());
        EXPECT_EQ(Bytes(request.bytes.begin(), request.bytes.begin() + 32), header);
        EXPECT_EQ(board.payload_of(0), action.payload);
        EXPECT_EQ(request.timeout_ms, 30000);
        EXPECT_EQ(board.outstanding_blocks, 0);

        board = ScriptedBoard();
        EXPECT_EQ(action.act(), -1);
        EXPECT_EQ(board.log,
                  std::vector<std::string>{std::string("3 ") + action.name + " : no answer 1:(-1)\n"});
    }
}

TEST_F(BoardActionsTest, OltCountersAreResetInTwoHalves) {
    board.answer(67, {});
    EXPECT_EQ(reset_olt_counters(1), 0);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.payload_of(0), (Bytes{16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(board.payload_of(1), (Bytes{16, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));

    board.sent.clear();
    board.silence(67);
    EXPECT_EQ(reset_olt_counters(1), -1);
    EXPECT_EQ(board.sent.size(), 1U);  // the second half waits for the first

    board.scripts[67] = [](const SentRequest &request) {
        return request.bytes[36] == 0 ? make_answer({}) : Bytes{};
    };
    EXPECT_EQ(reset_olt_counters(1), -1);
}

TEST_F(BoardActionsTest, AuthenticationIsOnUnlessTheCardSaysOff) {
    board.answer(313, {6, 4, 0});
    EXPECT_EQ(get_activation_auth_mode(3, 6), 0);
    ASSERT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(board.payload_of(0), (Bytes{6}));
    board.answer(313, {6, 2, 0});
    EXPECT_EQ(get_activation_auth_mode(3, 6), 1);
    board.answer(313, {6, 4, 1});  // 260
    EXPECT_EQ(get_activation_auth_mode(3, 6), 1);
    board.silence(313);
    EXPECT_EQ(get_activation_auth_mode(3, 6), 1);
}

TEST_F(BoardActionsTest, CountersComeWithTheirNumberAndStopAtTheAnswersEnd) {
    board.answer(66, {2, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12});
    Bytes result(7697, 0xEE);
    EXPECT_EQ(abstract_counters_request_w_direction(result.data(), 4, 15, 1, 3, 0x01020304, 0x0A0B0C0D), 0);
    EXPECT_EQ(board.payload_of(0),
              (Bytes{15, 0, 1, 0, 3, 4, 3, 2, 1, 0x0D, 0x0C, 0x0B, 0x0A, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Bytes(result.begin(), result.begin() + 9), (Bytes{2, 1, 0, 0, 0, 0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(Bytes(result.begin() + 9, result.end()), Bytes(7688, 0));

    board.answer(66, {9, 1, 0, 0, 0, 2, 0});  // states nine, holds one and a half
    EXPECT_EQ(abstract_counters_request(result.data(), 4, 8, 3, 1, 2), 0);
    EXPECT_EQ(board.payload_of(1), (Bytes{8, 0, 3, 0, 3, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Bytes(result.begin(), result.begin() + 7), (Bytes{1, 1, 0, 0, 0, 0, 0}));

    board.refuse(66, 1);
    EXPECT_EQ(abstract_counters_request(result.data(), 4, 8, 3, 1, 2), -1);
    EXPECT_EQ(result, Bytes(7697, 0));
    EXPECT_TRUE(board.log.empty());
}

}  // namespace
