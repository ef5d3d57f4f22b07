// The board protocol's client against scripted chassis.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <future>

#include "host/board/ipc_client.h"
#include "host/board/ipc_result.h"
#include "host/services/block_allocator.h"
#include "support/board_server.h"
#include "tarn/host_services.h"

namespace tarn::host::test {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;

// Far longer than anything here takes, and so short that a test which waits it out is noticed.
constexpr int patient = 20'000;

Bytes request(std::uint16_t command, int slot) {
    return message(command, slot, 33, 0, 7);
}

struct Answer {
    std::uint8_t *bytes = nullptr;
    Answer() = default;
    ~Answer() { bfree(__FILE__, __LINE__, bytes); }
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;
};

class IpcClientTest : public testing::Test {
  protected:
    ~IpcClientTest() override { EXPECT_THAT(outstanding_blocks(), IsEmpty()); }
};

TEST_F(IpcClientTest, OpensTheSlotsConnectionAndKeepsIt) {
    Bytes link;
    Bytes asked;
    BoardServer server({[&](Connection &board) {
        link = board.receive();
        board.send(message(0, 3, 32));
        asked = board.receive();
        board.send(message(70, 3, 585, 0, 0xab));
        board.send(message(71, 3, board.receive().size() + 1));
    }});
    IpcClient client(server.address(), 5s);
    EXPECT_FALSE(client.link(3));
    Answer answer;
    ASSERT_EQ(client.send_request(request(70, 3).data(), &answer.bytes, patient), 0);
    EXPECT_TRUE(client.link(3));
    const Bytes link_frame = {0, 0, 1, 0, 0,  0, 0, 3, 0, 0, 0, 0, 0, 0, 0, 0,
                              0, 0, 0, 0, 32, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(link, link_frame);
    EXPECT_EQ(asked, request(70, 3));
    EXPECT_EQ(Bytes(answer.bytes, answer.bytes + 585), message(70, 3, 585, 0, 0xab));
    EXPECT_TRUE(std::all_of(answer.bytes + 585, answer.bytes + 71'680, [](int byte) { return byte == 0; }))
        << "the block's tail is zero, so that a lying count reads nothing";
    Answer second;
    ASSERT_EQ(client.send_request(request(71, 3).data(), &second.bytes, patient), 0);
    EXPECT_EQ(second.bytes[20], 34);
}

TEST_F(IpcClientTest, PutsAnswersTogetherAndSizesTheImagesBlock) {
    BoardServer server({[](Connection &board) {
        board.accept_link();
        (void)board.receive();
        const Bytes image = message(302, 16, 1'024'036, 0, 5);
        board.send(Bytes(image.begin(), image.begin() + 7));
        board.send(Bytes(image.begin() + 7, image.begin() + 100));
        board.send(Bytes(image.begin() + 100, image.end()));
        (void)board.receive();
        board.send(message(302, 16, 33, 0, 5));
    }});
    IpcClient client(server.address(), 5s);
    Answer answer;
    ASSERT_EQ(client.send_request(request(302, 16).data(), &answer.bytes, patient), 0);
    EXPECT_EQ(Bytes(answer.bytes, answer.bytes + 1'024'036), message(302, 16, 1'024'036, 0, 5));
    Answer short_answer;
    ASSERT_EQ(client.send_request(request(302, 16).data(), &short_answer.bytes, patient), 0);
    EXPECT_TRUE(std::all_of(short_answer.bytes + 33, short_answer.bytes + 1'100'000,
                            [](int byte) { return byte == 0; }));
}

// 16 connections of its own, and of the 48 that are shared those that nobody else is using.
TEST_F(IpcClientTest, ABusySlotUsesSharedConnectionsAndGivesIdleOnesBack) {
    std::promise<void> answers;
    const std::shared_future<void> may_answer = answers.get_future();
    const auto script = [&](Connection &board) {
        board.accept_link();
        for (Bytes asked = board.receive(); !asked.empty(); asked = board.receive()) {
            if (asked[7] == 0) {
                may_answer.wait();
                board.send(message(70, 0, 40));
            }
        }
    };
    BoardServer server(std::vector<std::function<void(Connection &)>>(64 + 17, script));
    IpcClient client(server.address(), 5s);
    std::array<int, 3> sent{};
    client.on_sent([&](const Exchange &exchange) { ++sent[static_cast<std::size_t>(exchange.slot)]; });
    std::vector<ExchangePtr> exchanges;
    const auto start = [&](int slot, int count) {
        for (int i = 0; i < count; ++i) {
            exchanges.push_back(client.start(request(70, slot), patient));
        }
    };
    const auto await = [&](const auto &condition) {
        while (!condition()) {
            client.process();
        }
    };
    start(0, 70);
    await([&] { return sent[0] == 64; });
    start(1, 1);
    await([&] { return sent[1] == 1; });
    EXPECT_EQ(sent[0], 64) << "no more than that wait for the card at a time";
    answers.set_value();
    await([&] {
        return sent[0] == 70 && std::ranges::all_of(exchanges, [](const ExchangePtr &exchange) {
                   return exchange->finished || exchange->slot == 1;
               });
    });
    start(1, 16);
    await([&] { return sent[1] == 17; });
    client.abandon(ipc_result::no_connection);
}

TEST_F(IpcClientTest, NeverTakesALateAnswerForAnotherRequests) {
    std::promise<void> timed_out;
    BoardServer server({[&](Connection &board) {
                            board.accept_link();
                            (void)board.receive();
                            timed_out.get_future().wait();
                            board.send(message(70, 0, 40, 0, 1));  // too late
                            EXPECT_THAT(board.receive(), IsEmpty()) << "the agent closed the connection";
                        },
                        [](Connection &board) {
                            board.accept_link();
                            (void)board.receive();
                            board.send(message(70, 0, 40, 0, 2));
                        }});
    IpcClient client(server.address(), 5s);
    ASSERT_TRUE(client.check_link(0, patient)) << "only an answer is waited for";
    Answer answer;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, 1000), ipc_result::timed_out);
    EXPECT_EQ(answer.bytes, nullptr);
    timed_out.set_value();
    ASSERT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), 0);
    EXPECT_EQ(answer.bytes[32], 2);
    while (client.figures(0).late == 0) {
        client.process();
    }
    const CommandFigures &figures = client.figures(0).commands.at(70);
    EXPECT_EQ((std::tuple{figures.answered, figures.timed_out, client.figures(0).late}),
              (std::tuple{1, 1, 1}));
}

// Of its parked requests the event loop only knows what the descriptor tells.
TEST_F(IpcClientTest, WhatIsAnsweredWhileSomethingElseIsDoneIsStillTold) {
    std::promise<void> answered;
    const auto prompt = [](Connection &board) {
        board.accept_link();
        (void)board.receive();
        board.send(message(70, 0, 40));
    };
    const auto slow = [&](Connection &board) {
        board.accept_link();
        (void)board.receive();
        answered.get_future().wait();
    };
    BoardServer server({prompt, slow});
    IpcClient client(server.address(), 5s);
    const ExchangePtr first = client.start(request(70, 0), patient);
    const ExchangePtr second = client.start(request(71, 0), patient);
    const auto is_readable = [&] {
        pollfd descriptor{client.descriptor(), POLLIN, 0};
        return ::poll(&descriptor, 1, 0) == 1;
    };
    while (!first->finished) {
        client.wait(*second, std::chrono::steady_clock::now() + 1ms);
    }
    EXPECT_TRUE(is_readable());
    client.process();
    EXPECT_TRUE(is_readable()) << "nobody was served yet";
    client.process_for_all();
    EXPECT_FALSE(is_readable());
    client.wake();
    client.process();
    EXPECT_TRUE(is_readable()) << "somebody else's look at the cards is no turn";
    answered.set_value();
}

TEST_F(IpcClientTest, WhatIsHalfSentWhenItsTimeIsOverNeverArrives) {
    std::promise<void> timed_out;
    std::promise<Bytes> arrived;
    BoardServer server({[&](Connection &board) {
        board.accept_link();
        timed_out.get_future().wait();
        arrived.set_value(board.receive());
    }});
    IpcClient client(server.address(), 5s);
    Answer answer;
    const Bytes large = message(70, 0, 3U << 20U);  // more than the sockets hold
    EXPECT_EQ(client.send_request(large.data(), &answer.bytes, 100), ipc_result::timed_out);
    timed_out.set_value();
    std::future<Bytes> frame = arrived.get_future();
    while (frame.wait_for(1ms) == std::future_status::timeout) {
        client.process();
    }
    EXPECT_THAT(frame.get(), IsEmpty());
}

TEST_F(IpcClientTest, ATrickleOfBytesDoesNotStretchTheTimeOut) {
    std::promise<void> over;
    BoardServer server({[&](Connection &board) {
        board.accept_link();
        (void)board.receive();
        auto done = over.get_future();
        const Bytes answer = message(70, 0, 2000);
        for (std::size_t i = 0; i < answer.size() && done.wait_for(5ms) == std::future_status::timeout; ++i) {
            board.send({answer[i]});
        }
    }});
    IpcClient client(server.address(), 5s);
    Answer answer;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, 100), ipc_result::timed_out);
    over.set_value();
}

TEST_F(IpcClientTest, ClosesTheConnectionOnProtocolErrors) {
    const std::vector<Bytes> wrong_answers = {
        message(71, 0, 40),       // another command
        message(70, 1, 40),       // another slot
        message(70, 0, 0),        // too short to be true
        message(70, 0, 4194305),  // longer than any message
    };
    for (Bytes wrong : wrong_answers) {
        wrong.resize(32);
        BoardServer server({[&](Connection &board) {
            board.accept_link();
            (void)board.receive();
            board.send(wrong);
            EXPECT_THAT(board.receive(), IsEmpty());
        }});
        IpcClient client(server.address(), 5s);
        Answer answer;
        EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient),
                  ipc_result::protocol_error);
        EXPECT_EQ(answer.bytes, nullptr);
    }
}

TEST_F(IpcClientTest, TellsWhyThereIsNoAnswer) {
    BoardServer server({[](Connection &board) {
                            board.accept_link();
                            (void)board.receive();
                            board.send(Bytes(50, 0));  // a piece of an answer, then the end
                        },
                        [](Connection &board) { board.accept_link(7); }});
    IpcClient client(server.address(), 5s);
    Answer answer;
    Bytes header_only = request(0, 0);
    EXPECT_EQ(client.send_request(header_only.data(), &answer.bytes, patient), ipc_result::protocol_error);
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::no_card);
    EXPECT_FALSE(client.link(0));

    IpcClient nobody(*parse_chassis_address("unix:/nonexistent/socket"), 5s);
    EXPECT_EQ(nobody.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::no_connection);
    EXPECT_EQ(nobody.send_request(request(70, 19).data(), &answer.bytes, patient), ipc_result::bad_request);
    Bytes no_length = request(70, 0);
    no_length[20] = 31;
    EXPECT_EQ(nobody.send_request(no_length.data(), &answer.bytes, patient), ipc_result::bad_request);
}

TEST_F(IpcClientTest, AnAnswerCutOffIsLost) {
    BoardServer server({[](Connection &board) {
        board.accept_link();
        (void)board.receive();
        Bytes cut = message(70, 0, 100);
        cut.resize(60);
        board.send(cut);
    }});
    IpcClient client(server.address(), 5s);
    Answer answer;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient),
              ipc_result::connection_lost);
}

TEST_F(IpcClientTest, LeavesASilentCardAloneUntilItAnswers) {
    std::atomic<int> requests = 0;  // counted by the server's thread
    const auto silent = [&](Connection &board) {
        board.accept_link();
        while (!board.receive().empty()) {
            ++requests;
        }
    };
    BoardServer server({silent, silent});
    IpcClient client(server.address(), 3600s);
    Answer answer;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, 30), ipc_result::timed_out);
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::timed_out)
        << "once a time-out made the card suspect, it is not waited for long";
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::on_hold);
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::on_hold);
    EXPECT_LE(requests, 2);
}

TEST_F(IpcClientTest, ACardThatIsLeftAloneIsAskedByTheAgentItself) {
    const auto closing = [](Connection &board) {
        board.accept_link();
        (void)board.receive();
    };
    Bytes asked;
    BoardServer server({closing, closing, closing, [&](Connection &board) {
                            board.accept_link();
                            asked = board.receive();
                            board.send(message(69, 0, 64));
                            board.send(message(70, 0, board.receive().size()));
                        }});
    IpcClient client(server.address(), 500ms);  // a card that is slower is asked again
    Answer answer;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient),
                  ipc_result::connection_lost);
    }
    EXPECT_EQ(client.state(0), CardState::closing);
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), ipc_result::on_hold);
    while (client.state(0) == CardState::closing) {
        client.process();
    }
    EXPECT_EQ(asked, (Bytes{69, 0, 1, 0, 0,  8, 0, 0, 3, 3, 38, 0, 1, 0, 0, 0,
                            36, 0, 0, 0, 32, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0, 0}));
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, patient), 0);
}

TEST(IpcPatience, ShrinksForASuspectCardAndGrowsBackForASlowOne) {
    EXPECT_EQ(patience_ms(0, 30000), 30000);
    EXPECT_EQ(patience_ms(1, 30000), 1000);
    EXPECT_EQ(patience_ms(1, 500), 500);
    EXPECT_EQ(patience_ms(2, 30000), 2000);
    EXPECT_EQ(patience_ms(4, 30000), 8000);
    EXPECT_EQ(patience_ms(100, 30000), 8000);
    EXPECT_EQ(patience_ms(100, 3000), 3000);
}

TEST_F(IpcClientTest, OneAnswerEndsTheHold) {
    // Answers one command only, on whichever connection it comes.
    const auto answers_71 = [](Connection &board) {
        board.accept_link();
        for (Bytes frame = board.receive(); !frame.empty(); frame = board.receive()) {
            if (frame[0] == 71) {
                board.send(message(71, 0, frame.size()));
            }
        }
    };
    BoardServer server({answers_71, answers_71, answers_71, answers_71});
    IpcClient client(server.address(), 0s);  // a hold that is over at once
    Answer answer;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, 30), ipc_result::timed_out);
    EXPECT_EQ(client.send_request(request(70, 0).data(), &answer.bytes, 30), ipc_result::timed_out);
    EXPECT_EQ(client.send_request(request(71, 0).data(), &answer.bytes, patient), 0);
    Answer none;
    EXPECT_EQ(client.send_request(request(70, 0).data(), &none.bytes, 30), ipc_result::timed_out);
}

TEST_F(IpcClientTest, NoticesThatACardIsPulledAndPutBack) {
    std::promise<void> pulled;
    BoardServer server({[&](Connection &board) {
                            board.accept_link();
                            pulled.get_future().wait();
                        },
                        [](Connection &board) { board.accept_link(7); },
                        [](Connection &board) {
                            board.accept_link();
                            (void)board.receive();
                        }});
    IpcClient client(server.address(), 5s);
    EXPECT_TRUE(client.check_link(4, patient));
    EXPECT_TRUE(client.check_link(4, patient)) << "over the same connection";
    pulled.set_value();
    while (client.check_link(4, patient)) {
    }
    EXPECT_FALSE(client.link(4));
    EXPECT_TRUE(client.check_link(4, patient));
}

TEST(IpcErrors, HaveTextsForAllCodes) {
    EXPECT_STREQ(ipcGetError(ipc_result::timed_out), "no answer within the time-out");
    EXPECT_STREQ(ipcGetError(ipc_result::on_hold), "card on hold after time-outs");
    EXPECT_STREQ(ipcGetError(2), "malformed request");
    EXPECT_STREQ(ipcGetError(-1000), "transport failure");
    EXPECT_STREQ(ipcGetError(200), "refused by the card");
    set_ipc_client(nullptr);
    void *answer = nullptr;
    EXPECT_EQ(ipcSendRequest(request(70, 0).data(), &answer, 1), ipc_result::no_connection);
    EXPECT_EQ(check_slot_link(0), 0);
}

TEST(ChassisAddress, IsASocketPathOrANumericAddress) {
    EXPECT_EQ(parse_chassis_address("unix:chassis.socket")->socket_address.ss_family, AF_UNIX);
    EXPECT_EQ(parse_chassis_address("/run/tarn/chassis")->socket_address.ss_family, AF_UNIX);
    EXPECT_EQ(parse_chassis_address("tcp:127.0.0.1:4000")->socket_address.ss_family, AF_INET);
    EXPECT_EQ(parse_chassis_address("[::1]:4000")->socket_address.ss_family, AF_INET6);
    EXPECT_FALSE(parse_chassis_address("tcp:chassis.example:4000"));
    EXPECT_FALSE(parse_chassis_address("127.0.0.1"));
    EXPECT_FALSE(parse_chassis_address("unix:"));
    EXPECT_FALSE(parse_chassis_address("unix:/" + std::string(200, 'x')));
}

}  // namespace
}  // namespace tarn::host::test
