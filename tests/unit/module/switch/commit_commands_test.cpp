// The commands that commit, confirm, roll back, save and reset a configuration.
#include "module/switch/blade_config_management.h"
#include "support/scripted_board.h"

namespace {

class CommitCommandsTest : public ModuleTest {};

TEST_F(CommitCommandsTest, EachIsOneBareRequestToItsUnitOfTheSlot) {
    struct Case {
        int (*call)(int slot);
        int low;
        int high;
        int unit;
        int failure;
    };
    for (const auto &[call, low, high, unit, failure] : {Case{slot_lib_set_commit_change, 150, 1, 5, -1},
                                                         {slot_lib_set_confirm_change, 165, 1, 5, -1},
                                                         {slot_lib_set_rollback_change, 164, 1, 5, -1},
                                                         {slot_lib_set_save_to_startup, 61, 0, 5, -1},
                                                         {slot_lib_set_to_default, 163, 1, 5, -1},
                                                         {slot_lib_set_reread_config, 150, 1, 8, -2},
                                                         {slot_lib_set_reload_blade_slot, 151, 1, 8, -2}}) {
        board = ScriptedBoard();
        EXPECT_EQ(call(4), failure);
        board.answer(low | high << 8, {});
        EXPECT_EQ(call(256 + 3), 0);
        ASSERT_EQ(board.sent.size(), 2U);
        EXPECT_EQ(board.sent[0].slot(), 4);
        EXPECT_EQ(board.sent[1].timeout_ms, 30000);
        Bytes expected(32, 0);
        expected[0] = static_cast<std::uint8_t>(low);
        expected[1] = static_cast<std::uint8_t>(high);
        expected[2] = 1;
        expected[5] = static_cast<std::uint8_t>(unit);
        expected[7] = 3;
        for (const auto &[at, value] : {std::pair{8, 3}, {9, 3}, {10, 38}, {12, 1}, {16, 36}, {20, 32}}) {
            expected[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(value);
        }
        EXPECT_EQ(board.sent[1].bytes, expected);
    }
}

TEST_F(CommitCommandsTest, TheProfileStoresAreToldInTurnUntilOneIsSilent) {
    for (const auto &[call, code] : {std::pair<int (*)(), int>{slot_lib_confirm_blade_profiles, 0x01A5},
                                     {slot_lib_set_commit_blade_profiles, 0x0196},
                                     {slot_lib_set_rollback_blade_profiles, 0x01A4},
                                     {slot_lib_set_default_blade_profiles, 0x01A3}}) {
        board = ScriptedBoard();
        board.answer(code, {});
        EXPECT_EQ(call(), 0);
        ASSERT_EQ(board.sent.size(), 3U);
        for (const std::size_t i : {0U, 1U, 2U}) {
            EXPECT_EQ(board.sent[i].slot(), static_cast<int>(16 + i));
            EXPECT_EQ(board.sent[i].destination(), 5);
            EXPECT_EQ(board.sent[i].bytes.size(), 32U);
        }
        board.sent.clear();
        board.scripts[code] = [](const SentRequest &request) {
            return request.slot() == 17 ? Bytes{} : make_answer({});
        };
        EXPECT_EQ(call(), -1);
        EXPECT_EQ(board.sent.size(), 2U);
    }
}

}  // namespace
