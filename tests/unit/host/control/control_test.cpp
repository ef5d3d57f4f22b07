// The control socket: who may open it, lines in and out, and what they are answered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include <net-snmp/agent/net-snmp-agent-includes.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "host/control/card_trace.h"
#include "host/control/control_socket.h"
#include "support/board_server.h"

namespace tarn::host::test {
namespace {

using testing::HasSubstr;

class ControlTest : public testing::Test {
  protected:
    ControlTest() {
        std::string name = (std::filesystem::temp_directory_path() / "tarn-control-XXXXXX").string();
        directory = mkdtemp(name.data());
        path = directory + "/control";
    }
    ~ControlTest() override {
        control.reset();
        for (const int client : clients) {
            (void)close(client);
        }
        std::filesystem::remove_all(directory);
    }
    bool open() {
        control = ControlSocket::open(
            path, [this](const std::string &line) { return asked.emplace_back(line), "<" + line + ">\n"; },
            error);
        return control != nullptr;
    }
    int connect_client() {
        const int client = clients.emplace_back(socket(AF_UNIX, SOCK_STREAM, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
        serve();
        return client;
    }
    // Lets net-snmp's event loop see everything that waits.
    static void serve() {
        for (int turn = 0; turn < 20; ++turn) {
            (void)agent_check_and_process(0);
        }
    }
    // What comes back for the text: nothing yet, lines, or "closed".
    static std::string exchange(int client, const std::string &text) {
        (void)send(client, text.data(), text.size(), MSG_NOSIGNAL);
        serve();
        char buffer[4096];
        const ssize_t count = recv(client, buffer, sizeof buffer, MSG_DONTWAIT);
        if (count == 0 || (count < 0 && errno == ECONNRESET)) {
            return "closed";
        }
        return {buffer, count > 0 ? static_cast<std::size_t>(count) : 0};
    }

    std::string directory;
    std::string path;
    std::string error;
    std::vector<std::string> asked;
    std::vector<int> clients;
    std::unique_ptr<ControlSocket> control;
};

TEST_F(ControlTest, AnswersLineByLine) {
    ASSERT_TRUE(open()) << error;
    const int first = connect_client();
    const int second = connect_client();
    EXPECT_EQ(exchange(first, "one"), "");
    EXPECT_EQ(exchange(second, "a\nb\n"), "<a>\n<b>\n");
    EXPECT_EQ(exchange(first, " line\nand"), "<one line>\n");
    EXPECT_EQ(asked, (std::vector<std::string>{"a", "b", "one line"}));
}

TEST_F(ControlTest, RefusesALineWithoutEndAndKeepsAnswering) {
    ASSERT_TRUE(open()) << error;
    const int greedy = connect_client();
    const std::string part(16384, 'x');
    std::string got;
    for (int i = 0; i < 5 && got.empty(); ++i) {
        got = exchange(greedy, part);
    }
    EXPECT_EQ(got, "{\"error\":\"the line is too long\"}\n");
    EXPECT_EQ(exchange(greedy, part), "closed");
    EXPECT_EQ(exchange(connect_client(), "still\n"), "<still>\n");
    for (std::size_t i = 0; i < ControlSocket::most_connections; ++i) {
        connect_client();
    }
    EXPECT_EQ(exchange(clients.back(), ""), "closed");
}

TEST_F(ControlTest, IsTheUsersAloneAndLeavesNoFile) {
    ASSERT_TRUE(open()) << error;
    struct stat status {};
    ASSERT_EQ(lstat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    control.reset();
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ControlTest, TakesThePlaceOfASocketThatNobodyListensOnOnly) {
    ASSERT_TRUE(open()) << error;
    const std::unique_ptr<ControlSocket> other = std::move(control);
    EXPECT_FALSE(open());
    EXPECT_THAT(error, HasSubstr("Address already in use"));
    path = directory + "/file";
    std::ofstream(path) << "precious";
    EXPECT_FALSE(open());
    EXPECT_TRUE(std::filesystem::exists(path));
    path = directory + "/stale";
    const int stale = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(stale, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    (void)close(stale);
    EXPECT_TRUE(open()) << error;
    path = std::string(200, 'x');
    EXPECT_EQ(ControlSocket::open(path, {}, error), nullptr);
    EXPECT_THAT(error, HasSubstr("too long"));
}

TEST(CardTrace, DropsWhatASlowReaderDoesNotTakeAndTellsHowMuch) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    CardTrace trace;
    EXPECT_FALSE(trace.take_over(R"({"do":"trace","slot":20})", ends[0]));
    ASSERT_TRUE(trace.take_over(R"({"do":"trace","slot":3})", ends[0]));
    Exchange exchange;
    exchange.slot = 2;
    exchange.request = message(72, 2, 45, 0, 1);
    constexpr int lines = 10'000;  // far more than a socket keeps
    for (int i = 0; i < lines; ++i) {
        trace.sent(exchange);
    }
    exchange.slot = 4;
    trace.sent(exchange);
    std::string got;
    std::array<char, 65536> buffer{};
    for (int i = 0; i < 20; ++i) {
        ssize_t count = 0;
        while ((count = recv(ends[1], buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0) {
            got.append(buffer.data(), static_cast<std::size_t>(count));
        }
        trace.tidy();
    }
    const std::size_t told = got.find("{\"dropped\":");
    ASSERT_NE(told, std::string::npos);
    EXPECT_EQ(std::ranges::count(got, '\n') - 2 + std::stoi(got.substr(told + 11)), lines);
    EXPECT_THAT(got, HasSubstr(R"("slot":3,"what":"request","name":"get_ont_state","command":72,"length":45,)"
                               R"("destination":0,"release":"0.0.0.0.0","serial":"0101010101010101"})"));
    EXPECT_EQ(got.back(), '\n');
    (void)close(ends[1]);
}

}  // namespace
}  // namespace tarn::host::test
