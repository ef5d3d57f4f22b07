// The envelope: what it stamps, what it logs, what it hands on.
#include "module/common/envelope.h"

#include "support/scripted_board.h"

namespace {

class EnvelopeTest : public ModuleTest {};

TEST_F(EnvelopeTest, StampsItsFieldsAndTouchesNothingElse) {
    board.answer(7, {});
    Bytes request(40, 0xEE);
    request[0] = 7;
    request[1] = 0;
    request[5] = 9;
    tarn::store_le32(&request[20], 40);
    bfree("", 0, ipc_send_request_wrapper(request.data(), "test", 259));
    const Bytes header(request.begin(), request.begin() + 24);
    EXPECT_EQ(header, (Bytes{7, 0, 0xEE, 0xEE, 0xEE, 5, 0xEE, 3, 3,  3, 38, 0,
                             1, 0, 0xEE, 0xEE, 36,   0, 0,    0, 40, 0, 0,  0}));
    EXPECT_EQ(Bytes(request.begin() + 24, request.end()), Bytes(16, 0xEE));
    EXPECT_EQ(board.sent.at(0).timeout_ms, 30000);
}

TEST_F(EnvelopeTest, SendsOnlyTheSwitchUnderAnotherUnit) {
    for (const auto &[written, sent] : {std::pair{9, 5}, {8, 8}, {5, 5}, {17, 17}}) {
        tarn::Request<32> request(1, static_cast<std::uint8_t>(written));
        ipc_send_request_wrapper(request.bytes.data(), "test", 0);
        EXPECT_EQ(board.sent.back().destination(), sent);
    }
}

TEST_F(EnvelopeTest, LogsATransportFailureAndReportsIt) {
    board.silence(70);
    tarn::Request<32> request(70, 8);
    int result = 77;
    EXPECT_EQ(
        ipc_send_request_wrapper_with_result_custom_timeout(request.bytes.data(), "get_it", 0, &result, 50),
        nullptr);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(board.sent.at(0).timeout_ms, 50);
    EXPECT_EQ(board.log, std::vector<std::string>{"3 get_it : no answer 1:(-1)\n"});
}

TEST_F(EnvelopeTest, LogsAnErrorStatusReportsItAndFreesTheAnswer) {
    board.refuse(70, 6);
    tarn::Request<32> request(70, 8);
    int result = 77;
    EXPECT_EQ(ipc_send_request_wrapper_with_result(request.bytes.data(), "get_it", 0, &result), nullptr);
    EXPECT_EQ(result, 6);
    EXPECT_EQ(board.log, std::vector<std::string>{"3 get_it : refused 2:(6)\n"});
    EXPECT_EQ(board.outstanding_blocks, 0);
}

TEST_F(EnvelopeTest, LeavesTheResultAloneOnSuccess) {
    board.answer(70, {});
    tarn::Request<32> request(70, 8);
    int result = 77;
    bfree("", 0, ipc_send_request_wrapper_with_result(request.bytes.data(), "get_it", 0, &result));
    EXPECT_EQ(result, 77);
}

TEST_F(EnvelopeTest, OnlyTheStatisticsVariantKeepsQuietAboutStatus1) {
    tarn::Request<32> request(66, 8);
    board.refuse(66, 1);
    EXPECT_EQ(ipc_send_request_wrapper_for_stat(request.bytes.data(), "count", 0), nullptr);
    EXPECT_TRUE(board.log.empty());
    EXPECT_EQ(ipc_send_request_wrapper(request.bytes.data(), "count", 0), nullptr);
    EXPECT_TRUE(board.logged("3 count : refused 2:(1)\n"));
    board.refuse(66, 2);
    EXPECT_EQ(ipc_send_request_wrapper_for_stat(request.bytes.data(), "count", 0), nullptr);
    EXPECT_TRUE(board.logged("3 count : refused 2:(2)\n"));
}

TEST_F(EnvelopeTest, ReadsAnAnswerOnlyAsFarAsItGoes) {
    board.answer(70, {1, 2, 3, 4, 5});
    const tarn::Answer answer = tarn::ask(tarn::Request<32>(70, 8), "test", 0, 36);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer.get<std::uint16_t>(35), 0x0504);
    EXPECT_EQ(answer.get<std::uint32_t>(35), 0x0504U);  // two bytes beyond the end
    EXPECT_EQ(answer.records(100, 33, 2), 2U);
    EXPECT_EQ(answer.records(100, 4000, 2), 0U);
    Bytes copied(4, 0xEE);
    answer.copy(copied.data(), 34, 4);
    EXPECT_EQ(copied, (Bytes{3, 4, 5, 0}));
}

TEST_F(EnvelopeTest, CountsAShortAnswerAsNone) {
    board.answer(70, {1, 2, 3});
    EXPECT_FALSE(tarn::ask(tarn::Request<32>(70, 8), "get_it", 0, 36));
    EXPECT_EQ(board.log, std::vector<std::string>{"3 get_it : short answer, 35 bytes of 36\n"});
    EXPECT_EQ(board.outstanding_blocks, 0);
}

}  // namespace
