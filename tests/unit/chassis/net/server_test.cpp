// Real sockets: frames, the link frame, slots that don't wait for each other, socket files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "chassis/net/control_server.h"
#include "chassis/net/server.h"
#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

using Local = asio::local::stream_protocol;

// A client's connection; reads block until the chassis has written or closed.
struct Client {
    asio::io_context context;
    Local::socket socket{context};

    explicit Client(const std::string &path) { socket.connect(Local::endpoint(path)); }
    void send(const Bytes &bytes) { asio::write(socket, asio::buffer(bytes)); }
    // One frame; empty when the connection is closed.
    Bytes receive() {
        Bytes frame(32);
        asio::error_code error;
        asio::read(socket, asio::buffer(frame), error);
        if (error) {
            return {};
        }
        frame.resize(load_le32(frame.data() + 20));
        asio::read(socket, asio::buffer(frame.data() + 32, frame.size() - 32));
        return frame;
    }
    Bytes ask(const Bytes &request) {
        send(request);
        return receive();
    }
    int link(int slot) { return ask(make_request(slot, 0, 0, "")).at(14); }
    std::string line(const std::string &text) {
        asio::write(socket, asio::buffer(text + '\n'));
        return next_line();
    }
    // Empty when the connection is closed.
    std::string next_line() {
        asio::error_code error;
        const std::size_t length = asio::read_until(socket, asio::dynamic_buffer(lines_), '\n', error);
        const std::string answer = lines_.substr(0, length);
        lines_.erase(0, length);
        return answer;
    }

  private:
    std::string lines_;
};

class Servers : public testing::Test {
  protected:
    Servers() : directory_(std::filesystem::temp_directory_path() / "tarn-chassis-XXXXXX") {
        if (mkdtemp(directory_.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
    }
    ~Servers() override {
        stop();
        std::filesystem::remove_all(directory_);
    }

    void start() {
        server_.emplace(context_, test_.chassis);
        server_->listen_unix(socket_path());
        control_.emplace(context_, test_.chassis, control_path(), [this] { context_.stop(); });
        test_.chassis.on_pull = [this](int slot) { server_->close_slot(slot); };
        thread_ = std::thread([this] { context_.run(); });
    }
    void stop() {
        if (thread_.joinable()) {
            context_.stop();
            thread_.join();
        }
        control_.reset();
        server_.reset();
    }

    [[nodiscard]] std::string socket_path() const { return directory_ + "/board"; }
    [[nodiscard]] std::string control_path() const { return directory_ + "/control"; }

    std::string directory_;
    TestChassis test_;
    asio::io_context context_;
    std::optional<Server> server_;
    std::optional<ControlServer> control_;
    std::thread thread_;
};

TEST_F(Servers, AConnectionBelongsToTheSlotOfItsLinkFrame) {
    start();
    Client client(socket_path());
    EXPECT_EQ(client.link(0), 0);
    EXPECT_EQ(client.ask(make_request(0, 69, 8, "")).size(), 64U);
    EXPECT_EQ(client.ask(make_request(5, 69, 8, "")).at(14), 7);
    EXPECT_EQ(client.link(0), 0);
    EXPECT_EQ(client.ask(make_request(0, 73, 8, "ff")).size(), 37 + 3 * 106U);
    for (const int slot : {16, 17, 18}) {
        Client services(socket_path());
        EXPECT_EQ(services.link(slot), 0);
        EXPECT_EQ(services.ask(make_request(slot, 69, 8, "")).at(14), 3);
    }
    // Two requests sent at once are answered in order.
    Bytes both = make_request(0, 313, 8, "01");
    const Bytes second = make_request(0, 69, 8, "");
    both.insert(both.end(), second.begin(), second.end());
    EXPECT_EQ(client.ask(both).at(0), 313 - 256);
    EXPECT_EQ(client.receive().at(0), 69);
}

TEST_F(Servers, LinksThatAreRefusedAreClosed) {
    start();
    for (const int slot : {9, 19, 255}) {
        Client client(socket_path());
        EXPECT_EQ(client.link(slot), 7);
        EXPECT_TRUE(client.receive().empty());
    }
    Client no_link(socket_path());
    EXPECT_EQ(no_link.ask(make_request(0, 69, 8, "")).at(14), 2);
    EXPECT_TRUE(no_link.receive().empty());
    for (const char *length : {"1f000000", "01004000"}) {
        Client client(socket_path());
        EXPECT_EQ(client.link(0), 0);
        client.send(
            from_hex("4500010000080000030326000100000024000000" + std::string(length) + "0000000000000000"));
        EXPECT_TRUE(client.receive().empty());
    }
}

TEST_F(Servers, ASlowOrSilentSlotHoldsUpNoOther) {
    test_.chassis.faults().add({.kind = FaultKind::slow, .value = 600000, .slot = 0, .command = 69});
    test_.chassis.faults().add({.kind = FaultKind::silent, .slot = 5, .command = 69});
    test_.chassis.faults().add({.kind = FaultKind::dropped, .slot = 5, .command = 70});
    start();
    Client slow(socket_path());
    Client silent(socket_path());
    EXPECT_EQ(slow.link(0), 0);
    EXPECT_EQ(silent.link(5), 0);
    slow.send(make_request(0, 69, 8, ""));
    silent.send(make_request(5, 69, 8, ""));
    Client other(socket_path());
    EXPECT_EQ(other.link(5), 0);
    EXPECT_EQ(other.ask(make_request(5, 313, 8, "00")).size(), 35U);
    // The silent card takes the next request; nothing is left of the one that it ignored.
    EXPECT_EQ(silent.ask(make_request(5, 313, 8, "00")).at(0), 313 - 256);
    EXPECT_TRUE(silent.ask(make_request(5, 70, 8, "00")).empty());
    // A pulled card's connections are closed, also one that waits for its answer.
    Client control(control_path());
    EXPECT_EQ(control.line(R"({"do":"card-pull","slot":0})"), "{}\n");
    EXPECT_TRUE(slow.receive().empty());
    EXPECT_EQ(Client(socket_path()).link(0), 7);
}

TEST_F(Servers, SocketFiles) {
    {
        // Left behind by a process that is gone.
        asio::io_context context;
        Local::acceptor dead(context, Local::endpoint(socket_path()));
    }
    ASSERT_TRUE(std::filesystem::exists(socket_path()));
    start();
    EXPECT_EQ(Client(socket_path()).link(0), 0);
    struct stat status {};
    ASSERT_EQ(stat(control_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);

    Server second(context_, test_.chassis);
    EXPECT_THROW(second.listen_unix(socket_path()), std::runtime_error);
    EXPECT_EQ(Client(socket_path()).link(0), 0);
    const std::string file = directory_ + "/file";
    std::ofstream(file) << "precious";
    EXPECT_THROW(second.listen_unix(file), std::runtime_error);
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_THROW(second.listen_unix(directory_ + "/" + std::string(200, 'x')), std::runtime_error);
    stop();
    EXPECT_FALSE(std::filesystem::exists(socket_path()));
    EXPECT_FALSE(std::filesystem::exists(control_path()));
}

TEST_F(Servers, TcpIsForLoopbackOnly) {
    Server server(context_, test_.chassis);
    const std::uint16_t port = server.listen_tcp("127.0.0.1:0");
    EXPECT_NE(port, 0);
    for (const char *address :
         {"0.0.0.0:0", "192.0.2.1:0", "127.0.0.1", "127.0.0.1:x", "127.0.0.1:65536", ":1"}) {
        EXPECT_THROW(server.listen_tcp(address), std::runtime_error) << address;
    }
    start();
    asio::io_context context;
    asio::ip::tcp::socket socket(context);
    socket.connect({asio::ip::make_address("127.0.0.1"), port});
    asio::write(socket, asio::buffer(make_request(0, 0, 0, "")));
    Bytes answer(32);
    asio::read(socket, asio::buffer(answer));
    EXPECT_EQ(answer.at(14), 0);
    stop();
}

TEST_F(Servers, ControlLines) {
    start();
    Client client(control_path());
    EXPECT_EQ(client.line(R"({"do":"fault-list"})"
                          "\n"
                          R"({"do":"counts"})"),
              "{\"faults\":[]}\n");
    EXPECT_EQ(client.next_line(), "{\"counts\":[],\"total\":0}\n");
    Client other(control_path());
    // What the client still writes is taken, so that it gets to the answer.
    EXPECT_EQ(other.line(std::string(std::size_t{16} * ControlServer::max_line, ' ')),
              "{\"error\":\"the line is too long\"}\n");
    EXPECT_EQ(other.next_line(), "");
    EXPECT_EQ(client.line(R"({"do":"shutdown"})"), "{}\n");
    thread_.join();
}

}  // namespace
}  // namespace tarn::chassis
