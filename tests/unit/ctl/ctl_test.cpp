// What tarnctl makes of slot lists and of answers.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "ctl/client.h"
#include "ctl/commands.h"
#include "ctl/report.h"

namespace tarn::ctl {
namespace {

TEST(Slots, AreListsOfSlotsAndRanges) {
    EXPECT_EQ(parse_slots("3"), (std::vector<int>{3}));
    EXPECT_EQ(parse_slots("16,1-3,2"), (std::vector<int>{1, 2, 3, 16}));
    for (const char *wrong : {"", "0", "17", "-1", "1-", "1,", "3-1", "1;2", "one", "1 2", "99999999999"}) {
        EXPECT_THROW(parse_slots(wrong), std::invalid_argument) << wrong;
    }
}

TEST(Commands, DestroyOnlyAfterAQuestion) {
    std::vector<std::string_view> asking;
    std::vector<std::string_view> of_profiles;
    for (const Command &command : commands()) {
        if (!command.question.empty()) {
            asking.push_back(command.name);
        }
        if (command.of_profiles) {
            of_profiles.push_back(command.name);
        }
    }
    EXPECT_EQ(asking, (std::vector<std::string_view>{"rollback", "default", "reload"}));
    EXPECT_EQ(of_profiles, (std::vector<std::string_view>{"commit", "confirm", "rollback", "default"}));
}

struct Case {
    const char *answer;
    const char *text;
    int status;
};

TEST(Reports, SayWhatHappenedAndFailWhenAnythingFailed) {
    for (const auto &[answer, text, status] :
         {Case{R"({"results":[{"slot":1,"result":0},{"slot":2,"result":0}]})", "slot 1: done\nslot 2: done\n",
               0},
          {R"({"results":[{"slot":1,"result":0},{"slot":2,"result":-2}]})",
           "slot 1: done\nslot 2: failed: no answer (-2)\n", 1},
          {R"({"results":[{"slot":4,"error":"not up"},{"slot":5,"result":0}]})",
           "slot 4: failed: not up\nslot 5: done\n", 1},
          {R"({"results":[]})", "no slot is up\n", 1},
          {R"({"result":0})", "done\n", 0},
          {R"({"result":-1})", "failed: no answer (-1)\n", 1},
          {R"({"error":"unknown"})", "failed: unknown\n", 1},
          {R"({"slots":[{"slot":1,"served":true,"up":true},{"slot":2,"served":true,"up":false},)"
           R"({"slot":3,"served":false,"up":false}]})",
           "slot 1: up\nslot 2: down\nslot 3: not served\n", 0},
          {R"({"version":"1"})", "{\n  \"version\": \"1\"\n}\n", 0}}) {
        const Json parsed = Json::parse(answer);
        EXPECT_EQ(describe(parsed), text);
        EXPECT_EQ(exit_status(parsed), status) << answer;
    }
}

// A socket that answers one line with `answer`, byte by byte, and closes.
class OneAnswer {
  public:
    explicit OneAnswer(std::string answer) : listener_(socket(AF_UNIX, SOCK_STREAM, 0)) {
        std::string name = (std::filesystem::temp_directory_path() / "tarn-ctl-XXXXXX").string();
        directory_ = mkdtemp(name.data());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        EXPECT_EQ(listen(listener_, 1), 0);
        thread_ = std::thread([this, text = std::move(answer)] {
            const int connection = accept(listener_, nullptr, nullptr);
            char byte = 0;
            while (recv(connection, &byte, 1, 0) == 1 && byte != '\n') {
                asked += byte;
            }
            for (const char c : text) {
                (void)send(connection, &c, 1, MSG_NOSIGNAL);
            }
            (void)close(connection);
        });
    }
    OneAnswer(const OneAnswer &) = delete;
    OneAnswer &operator=(const OneAnswer &) = delete;
    ~OneAnswer() {
        join();
        (void)close(listener_);
        std::filesystem::remove_all(directory_);
    }
    [[nodiscard]] std::string path() const { return directory_ + "/socket"; }
    void join() {
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    std::string asked;

  private:
    int listener_;
    std::string directory_;
    std::thread thread_;
};

TEST(Client, AsksOneLineAndReadsOneLine) {
    OneAnswer agent("{\"result\":0}\n");
    EXPECT_EQ(ask(agent.path(), {{"do", "commit"}, {"slots", {1, 2}}})["result"], 0);
    agent.join();
    EXPECT_EQ(agent.asked, R"({"do":"commit","slots":[1,2]})");
}

TEST(Client, SaysWhatIsWrong) {
    for (const char *answer : {"", "{\"result\":0}", "nonsense\n", "[]\n"}) {
        const OneAnswer agent(answer);
        EXPECT_THROW(ask(agent.path(), {{"do", "slots"}}), std::runtime_error) << answer;
    }
    EXPECT_THROW(ask("/nonexistent/socket", {{"do", "slots"}}), std::runtime_error);
    EXPECT_THROW(ask(std::string(200, 'x'), {{"do", "slots"}}), std::runtime_error);
}

}  // namespace
}  // namespace tarn::ctl
