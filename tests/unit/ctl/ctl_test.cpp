// What tarnctl makes of slot lists and of answers.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "ctl/chassis.h"
#include "ctl/client.h"
#include "ctl/commands.h"
#include "ctl/report.h"
#include "ctl/serial.h"

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
           R"({"slot":3,"served":false,"up":false},{"slot":4,"served":true,"up":true,"card":"silent"}]})",
           "slot 1: up\nslot 2: down\nslot 3: not served\nslot 4: up, silent\n", 0},
          // What the chassis says: values, tables of what is alike, bytes.
          {R"({})", "done\n", 0},
          {R"({"faults":[]})", "no faults\n", 0},
          {R"({"edited":false,"serial":"5441524e0000000a"})", "edited: false\nserial: TARN-00:00:00:0a\n", 0},
          {R"({"rows":[{"a":1,"b":"x"},{"a":100,"c":"0123456789012345678901234567890123"}],"total":2})",
           "a    b  c\n1    x  -\n100  -  01234567890123456789012345678901...\ntotal: 2\n", 0},
          {R"({"hex":"000102030405060708090a0b0c0d0e0f10"})",
           "    0 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n   16 10\n", 0}}) {
        const Json parsed = Json::parse(answer);
        EXPECT_EQ(describe(parsed), text);
        EXPECT_EQ(exit_status(parsed), status) << answer;
    }
}

TEST(Serials, AreReadAsTheyAreWritten) {
    for (const char *text : {"TARN-00:00:00:0A", "TARN0000000a", "5441524E0000000a"}) {
        EXPECT_EQ(serial_digits(text), "5441524e0000000a") << text;
    }
    EXPECT_EQ(serial_digits("0123-45:67:89:ab"), "30313233456789ab");
    for (const char *wrong : {"", "TARN", "TARN-00:00:00", "TARN-00:00:00:0g", "5441524e0000000a0", "-"}) {
        EXPECT_THROW(serial_digits(wrong), std::invalid_argument) << wrong;
    }
    EXPECT_EQ(serial_text("5441524e0000000a"), "TARN-00:00:00:0a");
    EXPECT_EQ(serial_text("0041524e0000000a"), "0041524e0000000a");
    EXPECT_EQ(serial_text("no serial"), "no serial");
}

const ChassisCommand &chassis_command(std::string_view group, std::string_view name) {
    const auto all = chassis_commands();
    const auto found = std::ranges::find_if(
        all, [&](const ChassisCommand &c) { return c.group == group && c.name == name; });
    EXPECT_NE(found, all.end()) << group << ' ' << name;
    return *found;
}

TEST(ChassisCommands, AskForWhatIsMeant) {
    struct Asked {
        const char *group;
        const char *name;
        std::vector<std::string> values;
        const char *request;  // null: the values are wrong
    };
    const std::string ont = "TARN-00:00:00:01";
    for (
        const auto &[group, name, values, request] : {
            Asked{"", "pull", {"3"}, R"({"do":"card-pull","slot":2})"},
            {"", "pull", {"17"}, nullptr},
            {"", "pull", {"1-2"}, nullptr},
            {"", "insert", {"profiles"}, nullptr},
            {"", "config", {"olt-profiles"}, R"({"do":"state-get","item":"config","slot":17})"},
            {"", "clock", {""}, R"({"do":"clock"})"},
            {"", "clock", {"0.5"}, R"({"do":"clock","factor":0.5})"},
            {"", "clock", {"fast"}, nullptr},
            {"ont",
             "down",
             {"1", ont},
             R"({"do":"state-set","item":"ont-signal","value":0,"slot":0,"serial":"5441524e00000001"})"},
            {"ont", "down", {"1", ""}, nullptr},
            {"ont",
             "power",
             {"16", ont, "-24.3"},
             R"({"do":"state-set","item":"optical-power","slot":15,"serial":"5441524e00000001","value":-243})"},
            {"ont", "power", {"16", ont, "nan"}, nullptr},
            {"ont",
             "record",
             {"2", ont},
             R"({"do":"state-get","item":"ont-config","slot":1,"serial":"5441524e00000001"})"},
            {"fault",
             "add",
             {"slow", "network", "70", "2", "500", "", "", "", "", ""},
             R"({"do":"fault-add","kind":"slow","slot":18,"command":70,"times":2,"milliseconds":500})"},
            {"fault", "add", {"slow", "", "", "2x", "", "", "", "", "", ""}, nullptr},
            {"fault", "clear", {"", "4"}, R"({"do":"fault-clear","slot":3})"},
            {"log", "show", {"", "302", "", "5"}, R"({"do":"requests","command":302,"limit":5})"},
        }) {
        const ChassisCommand &command = chassis_command(group, name);
        if (request == nullptr) {
            EXPECT_THROW(chassis_request(command, values), std::invalid_argument) << name;
        } else {
            EXPECT_EQ(chassis_request(command, values).dump(), request);
        }
    }
}

TEST(Report, ShowsObjectsIndentedAndListsAsTables) {
    EXPECT_EQ(describe(Json::parse(R"({"agent":{"blocks":3},"cards":[{"slot":1,"card":"ok"}],"cache":[]})")),
              "agent:\n  blocks: 3\nslot  card\n1     ok\nno cache\n");
}

TEST(ChassisCommands, CountSlotsFrom1) {
    Json answer = Json::parse(R"({"cards":[{"slot":0,"onts":4},{"slot":18}],"slot":15,"total":16})");
    recount_slots(answer);
    EXPECT_EQ(answer.dump(), R"({"cards":[{"slot":1,"onts":4},{"slot":"network"}],"slot":16,"total":16})");
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
