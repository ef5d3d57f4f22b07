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

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "host/control/control_socket.h"

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

}  // namespace
}  // namespace tarn::host::test
