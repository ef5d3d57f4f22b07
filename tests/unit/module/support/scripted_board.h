// A board that records requests and plays the answers that a test scripts, with the host's other services
// beside it: a clock that the test sets, a log that it reads, an allocator that counts.
#ifndef TARN_TESTS_UNIT_MODULE_SUPPORT_SCRIPTED_BOARD_H
#define TARN_TESTS_UNIT_MODULE_SUPPORT_SCRIPTED_BOARD_H

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

struct SentRequest {
    Bytes bytes;
    int timeout_ms;

    [[nodiscard]] int command() const { return bytes[0] | bytes[1] << 8; }
    [[nodiscard]] int destination() const { return bytes[5]; }
    [[nodiscard]] int slot() const { return bytes[7]; }
};

// What the board does with a request: answers these bytes (an empty vector: transport failure -1).
using Script = std::function<Bytes(const SentRequest &)>;

struct ImageHeader {
    std::uint32_t packed_version;
    std::uint32_t fourth_number;
    std::string description;
};

struct ScriptedBoard {
    std::vector<SentRequest> sent;
    std::map<int, Script> scripts;  // by command
    std::vector<std::string> log;   // "3 text"
    int outstanding_blocks = 0;
    bool balloc_fails = false;

    // Sections are fresh while fetched at all; age() makes every stamp stale once.
    bool everything_stale = false;
    std::map<int, bool> link;        // check_slot_link; up unless said
    std::map<int, bool> configured;  // slot_isconfigured; yes unless said
    int firmware_select = 0;         // check_firmware_select's answer
    std::function<int(const char *)> remove_firmware;
    std::vector<std::pair<int, std::string>> traps;
    // The firmware library: headers by path, no header unless said; an empty text makes the call fail.
    std::map<std::string, ImageHeader> headers;
    std::string md5 = "0123456789abcdef0123456789abcdef";
    std::string tftp_root = "/tftpboot";
    std::string ont_firmware_path = "ont";
    // Waits until a download has reported its end.
    void wait_for_traps(std::size_t count);

    // Answers a command always with the same payload, after a header with status 0 and the true length.
    void answer(int command, const Bytes &payload);
    // ... with an error status, or not at all (transport result -1).
    void refuse(int command, int status);
    void silence(int command);
    [[nodiscard]] int count(int command) const;
    // The request's bytes after the header.
    [[nodiscard]] Bytes payload_of(std::size_t request) const;
    [[nodiscard]] Bytes last_payload() const { return payload_of(sent.size() - 1); }
    [[nodiscard]] bool logged(const std::string &line) const;
};

extern ScriptedBoard board;

// A whole answer: header with status and true length, then the payload.
Bytes make_answer(const Bytes &payload, int status = 0);

// Starts every test with a fresh board and the given slots (and 16) up; ends it with everything stopped and
// no block outstanding.
class ModuleTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    void start(std::initializer_list<int> slots);
};

// ... with these slots up from the beginning.
template <typename Fixture, int... slots>
class Started : public Fixture {
  protected:
    void SetUp() override {
        Fixture::SetUp();
        Fixture::start({slots...});
    }
};

#endif
