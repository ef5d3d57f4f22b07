// Reads in passes, and changes on their own stack, against a scripted card.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <semaphore>

#include "host/board/ipc_result.h"
#include "host/board/pass.h"
#include "host/board/writer.h"
#include "host/services/block_allocator.h"
#include "host/services/cache_clock.h"
#include "support/board_server.h"
#include "tarn/host_services.h"

namespace tarn::host::test {
namespace {

using namespace std::chrono_literals;

// The card answers a request when the test lets it.
class PassTest : public testing::Test {
  protected:
    PassTest()
        : server_({[this](Connection &board) {
              board.accept_link();
              while (true) {
                  const Bytes request = board.receive();
                  if (request.empty()) {
                      return;
                  }
                  answers_.acquire();
                  board.send(message(request[0], 0, 40, request[32] == refused ? 5 : 0, ++answered_));
              }
          }}),
          client_(server_.address(), 1s),
          shared_(client_) {
        set_ipc_client(&client_);
        EXPECT_TRUE(client_.check_link(0, 20'000));
    }
    ~PassTest() override {
        set_ipc_client(nullptr);
        client_.abandon(ipc_result::no_connection);
        answers_.release(16);
        EXPECT_THAT(outstanding_blocks(), testing::IsEmpty());
    }

    static constexpr std::uint8_t refused = 99;  // with status 5

    // As the module asks: byte 32 of the answer, or the failure.
    static int ask(std::uint8_t item = 7) {
        Bytes request = message(70, 0, 33, 0, item);
        void *answer = nullptr;
        const int result = ipcSendRequest(request.data(), &answer, 20'000);
        if (result < 0) {
            return result;
        }
        const int value = static_cast<std::uint8_t *>(answer)[32];
        bfree(__FILE__, __LINE__, answer);
        return value;
    }
    void await(AnswerMemory &memory) {
        while (!memory.complete()) {
            client_.process();
        }
    }

    std::counting_semaphore<32> answers_{0};
    std::uint8_t answered_ = 0;  // of the server's thread
    BoardServer server_;
    IpcClient client_;
    SharedRequests shared_;
};

int expired(const timespec &stamp) {
    return check_cache_custom_period(stamp.tv_sec, stamp.tv_nsec, 3600);
}

timespec now() {
    timespec time{};
    (void)clock_gettime(CLOCK_MONOTONIC, &time);
    return time;
}

TEST_F(PassTest, WhatIsNotThereYetIsThereInTheNextPassAndItsStampsDoNotCount) {
    AnswerMemory memory;
    const timespec before = now();
    timespec stamped{};
    {
        const Pass pass(shared_, memory, {});
        stamped = now();  // as sections are that are stamped before they are asked for
        EXPECT_EQ(ask(), ipc_result::not_yet);
        EXPECT_EQ(pass.omissions(), 1);
    }
    EXPECT_EQ(expired(before), 0);
    EXPECT_EQ(expired(stamped), 1);
    answers_.release();
    await(memory);
    const Pass again(shared_, memory, {});
    EXPECT_EQ(ask(), 1);
    EXPECT_EQ(ask(), 1) << "remembered until the request is served";
    EXPECT_EQ(again.omissions(), 0);
    EXPECT_EQ(expired(now()), 0);
}

// Its error is logged in a pass that counts.
TEST_F(PassTest, WhatFailedInAPassThatIsThrownAwayIsReadAgainInTheNextOne) {
    AnswerMemory memory;
    {
        const Pass pass(shared_, memory, {});
        EXPECT_EQ(ask(refused), ipc_result::not_yet);
    }
    answers_.release();
    await(memory);
    timespec stamped{};
    {
        const Pass pass(shared_, memory, {});
        stamped = now();
        EXPECT_EQ(ask(refused), 1);
        EXPECT_EQ(ask(8), ipc_result::not_yet);
    }
    EXPECT_EQ(expired(stamped), 1);
}

TEST_F(PassTest, TwoWhoWantTheSameShareARequestUnlessSomethingChangedInBetween) {
    AnswerMemory first;
    AnswerMemory second;
    const auto serve = [&](AnswerMemory &memory) {
        const Pass pass(shared_, memory, {});
        return ask();
    };
    EXPECT_EQ(serve(first), ipc_result::not_yet);
    EXPECT_EQ(serve(second), ipc_result::not_yet);
    shared_.forget(touched_slots(0));
    second.forget(touched_slots(0));
    answers_.release();
    await(first);
    EXPECT_EQ(serve(first), 1);
    answers_.release();
    const int later = serve(second);
    await(second);
    EXPECT_THAT(later, testing::AnyOf(2, ipc_result::not_yet));
    EXPECT_EQ(serve(second), 2);
}

TEST_F(PassTest, AChangeWaitsOnItsOwnStackAndBarsItsSlot) {
    Writer writer(client_);
    AnswerMemory memory;
    int result = 0;
    writer.run(touched_slots(0), [&] { result = ask(1) * 10 + ask(2); });
    EXPECT_TRUE(writer.busy());
    {
        Pass pass(shared_, memory, {writer.slots(), nullptr});
        EXPECT_EQ(ask(), ipc_result::not_yet);
        EXPECT_TRUE(pass.met_bar());
        EXPECT_TRUE(pass.may_touch(1));
    }
    EXPECT_TRUE(memory.complete()) << "nothing is asked of a slot that is barred";
    answers_.release(2);
    while (!writer.resume()) {
        client_.process();
    }
    EXPECT_EQ(result, 12);
}

}  // namespace
}  // namespace tarn::host::test
