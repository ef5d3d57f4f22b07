// The small services of the module: blocks, log, clock, OID helpers, slots.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "host/board/slots.h"
#include "host/control/unconfirmed_commits.h"
#include "host/services/block_allocator.h"
#include "host/services/cache_clock.h"
#include "support/captured_log.h"

namespace tarn::host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(BlockAllocator, CountsOutstandingBlocksByPlace) {
    ASSERT_THAT(outstanding_blocks(), IsEmpty());
    void *first = balloc("a.cpp", 7, 100);
    void *second = balloc("a.cpp", 7, 20);
    void *third = balloc("b.cpp", 7, 0);
    std::memset(first, 0xff, 100);

    const auto blocks = outstanding_blocks();
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_EQ(blocks[0].file, "a.cpp");
    EXPECT_EQ(blocks[0].count, 2U);
    EXPECT_EQ(blocks[0].bytes, 120U);
    EXPECT_EQ(blocks[1].file, "b.cpp");
    EXPECT_EQ(blocks[1].bytes, 0U);

    CapturedLog log;
    EXPECT_EQ(report_outstanding_blocks(), 3U);
    EXPECT_THAT(log.lines,
                ElementsAre("2 blocks of 120 bytes in all, allocated at a.cpp:7, were never freed\n",
                            "1 blocks of 0 bytes in all, allocated at b.cpp:7, were never freed\n"));
    bfree("c.cpp", 1, first);
    bfree("c.cpp", 1, second);
    bfree("c.cpp", 1, third);
    EXPECT_THAT(outstanding_blocks(), IsEmpty());
}

TEST(BlockAllocator, TakesNullAndRefusesImpossibleSizes) {
    bfree("a.cpp", 1, nullptr);
    EXPECT_EQ(balloc("a.cpp", 1, SIZE_MAX - 8), nullptr);
    EXPECT_THAT(outstanding_blocks(), IsEmpty());
}

TEST(BlockAllocator, LeavesForeignMemoryAlone) {
    CapturedLog log;
    alignas(16) std::array<char, 128> foreign{};
    bfree("a.cpp", 9, foreign.data() + 64);
    EXPECT_THAT(log.lines,
                ElementsAre("a.cpp:9 frees what was not allocated or is already free; it is left alone\n"));
}

TEST(Logger, ReplacesControlBytesAndKeepsOneLineEnd) {
    EXPECT_EQ(printable("plain \xc3\xa4 text\n"), "plain \xc3\xa4 text");
    EXPECT_EQ(printable("a\nb\r\x1b[2J\x7f\t"), "a?b??[2J??");
    CapturedLog log;
    log_add(log_level::error, "%s : %s 1:(%d)\n", "get_olt_state", "forged\nline", -1);
    EXPECT_THAT(log.lines, ElementsAre("get_olt_state : forged?line 1:(-1)\n"));
}

TEST(Logger, DropsWhatIsBelowTheLevelAndKeepsLongLinesWhole) {
    CapturedLog log;
    set_log_level(log_level::error);
    log_add(log_level::information, "quiet\n");
    const std::string text(5000, 'x');
    log_add(log_level::error, "%s", text.c_str());
    set_log_level(log_level::information);
    EXPECT_THAT(log.lines, ElementsAre(text + "\n"));
}

TEST(Logger, CountsRepeatsOfTheLastLines) {
    CapturedLog log;
    for (int i = 0; i < 1000; ++i) {
        log_add(log_level::error, "the card is silent\n");
        log_add(log_level::error, "another line\n");
    }
    log_add(log_level::error, "once\n");
    flush_log();
    flush_log();
    log_add(log_level::error, "another line\n");
    EXPECT_THAT(log.lines, ElementsAre("the card is silent\n", "another line\n", "once\n",
                                       "the card is silent (came 999 times more)\n",
                                       "another line (came 999 times more)\n", "another line\n"));
}

TEST(Logger, WritesCountsWhoseTimeIsOver) {
    CapturedLog log;
    log_add(log_level::error, "silent\n");
    log_add(log_level::error, "silent\n");
    const auto now = std::chrono::steady_clock::now();
    write_due_repeats(now - std::chrono::seconds(1));
    EXPECT_THAT(log.lines, ElementsAre("silent\n"));
    write_due_repeats(now + std::chrono::seconds(4));
    write_due_repeats(now + std::chrono::seconds(5));
    EXPECT_THAT(log.lines, ElementsAre("silent\n", "silent (came 1 times more)\n"));
}

TEST(Logger, TakesTraceLinesForWhatTheyAre) {
    CapturedLog log;
    const auto trace = [] { log_add(log_level::error, "file: %s; line: %d; slot: %u", "x", 37, 0U); };
    trace();
    set_log_level(log_level::debug);
    trace();
    set_log_level(log_level::information);
    EXPECT_THAT(log.lines, ElementsAre("file: x; line: 37; slot: 0\n"));
}

TEST(Logger, BeginsALineWithTimeAndLevel) {
    testing::internal::CaptureStderr();
    ASSERT_TRUE(open_log("stderr"));
    log_add(log_level::warning, "one\n");
    snmp_log(LOG_NOTICE, "two ");
    snmp_log(LOG_NOTICE, "halves\n");
    snmp_log(LOG_DEBUG, "below the level\n");
    const std::string time = "20[0-9]{2}-[01][0-9]-[0-3][0-9] [0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3} ";
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::MatchesRegex(time + "warning: one\n" + time + "information: two halves\n"));
    snmp_disable_log();
}

TEST(Logger, ForgetsALineThatManyOthersFollow) {
    CapturedLog log;
    for (const char *line : {"1", "2", "2", "3", "4", "5", "1"}) {
        log_add(log_level::error, "%s\n", line);
    }
    EXPECT_THAT(log.lines, ElementsAre("1\n", "2\n", "3\n", "4\n", "5\n", "2 (came 1 times more)\n", "1\n"));
    flush_log();
}

TEST(Logger, KnowsItsLevelsAndDestinations) {
    EXPECT_EQ(log_level_of("error"), 3);
    EXPECT_EQ(log_level_of("debug"), 7);
    EXPECT_EQ(log_level_of("loud"), -1);
    EXPECT_FALSE(open_log("file /nonexistent/directory/log"));
    EXPECT_FALSE(open_log("printer"));
}

std::int64_t now = 0;
std::int64_t test_clock() {
    return now;
}
constexpr std::int64_t second = 1'000'000'000;

class CacheClock : public testing::Test {
  protected:
    CacheClock() { set_clock_source(test_clock); }
    ~CacheClock() override {
        set_clock_source(nullptr);
        set_cache_period(20);
    }
};

TEST_F(CacheClock, IsStaleFromThePeriodOn) {
    now = 120 * second + 499'999'999;
    EXPECT_EQ(check_cache(100, 500'000'000), 0);
    now = 120 * second + 500'000'000;
    EXPECT_NE(check_cache(100, 500'000'000), 0);
    EXPECT_EQ(check_cache_custom_period(100, 500'000'000, 21), 0);
    EXPECT_NE(check_cache_custom_period(119, 0, 1), 0);
    EXPECT_EQ(check_cache(130, 0), 0) << "a stamp taken after the clock was stopped";
}

TEST_F(CacheClock, ZeroStampsAndZeroPeriodsAreAlwaysStale) {
    now = 3 * second;
    EXPECT_NE(check_cache(0, 0), 0) << "also soon after the machine started";
    EXPECT_EQ(check_cache(0, 1), 0);
    set_cache_period(0);
    EXPECT_NE(check_cache(3, 0), 0);
    EXPECT_NE(check_cache_custom_period(3, 0, 0), 0);
    EXPECT_EQ(check_cache_custom_period(3, 0, 1), 0);
}

TEST_F(CacheClock, ExpiresWhatWasStampedBefore) {
    now = 100 * second;
    EXPECT_EQ(check_cache(99, 999'999'999), 0);
    expire_cached_data();
    EXPECT_NE(check_cache(99, 999'999'999), 0);
    EXPECT_NE(check_cache_custom_period(100, 0, 3600), 0);
    EXPECT_EQ(check_cache(100, 1), 0);
}

TEST_F(CacheClock, CountsHitsAndMissesWhereTheyBelong) {
    now = 100 * second;
    CacheUse of_table;
    const CacheUse before = uncounted_cache_use();
    {
        const CacheUseCount count(of_table);
        (void)check_cache(99, 0);
        (void)check_cache(98, 0);
        (void)check_cache(1, 0);
        const ClockPause others;
        (void)check_cache(1, 0);
    }
    (void)check_cache(99, 0);
    EXPECT_EQ(of_table.hits, 2U);
    EXPECT_EQ(of_table.misses, 1U);
    EXPECT_EQ(uncounted_cache_use().hits - before.hits, 1U);
    EXPECT_EQ(uncounted_cache_use().misses - before.misses, 1U);
}

TEST_F(CacheClock, TellsOnceOfACommitThatNobodyConfirmed) {
    UnconfirmedCommits commits(std::chrono::seconds(60));
    now = 100 * second;
    for (const int slot : {16, 3, 4}) {
        commits.begin(slot);
    }
    commits.end(4);
    now = 130 * second;
    commits.begin(3);
    now = 131 * second;
    EXPECT_THAT(commits.take_expiring(), testing::ElementsAre(std::pair(16, std::chrono::seconds(29))));
    EXPECT_THAT(commits.take_expiring(), IsEmpty()) << "told once";
    now = 160 * second - 1;
    EXPECT_THAT(commits.take_overdue(), IsEmpty());
    now = 160 * second;
    EXPECT_THAT(commits.take_overdue(), ElementsAre(16));
    now = 190 * second;
    EXPECT_THAT(commits.take_overdue(), ElementsAre(3));
    EXPECT_THAT(commits.take_overdue(), IsEmpty());
}

TEST_F(CacheClock, StandsStillWhileOnePduIsServed) {
    now = 100 * second;
    {
        const PduClock clock(1);
        now = 130 * second;
        EXPECT_EQ(agent_time(), 100 * second);
        EXPECT_EQ(check_cache(90, 0), 0);
    }
    EXPECT_EQ(agent_time(), 130 * second);
    {
        const PduClock same_pdu(1);
        EXPECT_EQ(agent_time(), 100 * second);
    }
    const PduClock next_pdu(2);
    EXPECT_EQ(agent_time(), 130 * second);
    EXPECT_NE(check_cache(90, 0), 0);
}

TEST(OidHelpers, ReadPositionsCountedFromZero) {
    const oid name[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 42, 4294967295UL};
    EXPECT_EQ(get_colnum_from_oid(name, 14), 42);
    EXPECT_EQ(get_colnum_from_oid(name, 12), 0);
    EXPECT_EQ(get_int_from_oid(name, 14, 0), 0);
    EXPECT_EQ(get_int_from_oid(name, 14, 11), 11);
    EXPECT_EQ(get_int_from_oid(name, 14, 13), -1);
    EXPECT_EQ(get_int_from_oid(name, 14, 14), 0);
    EXPECT_EQ(get_int_from_oid(name, 14, -1), 0);
    netsnmp_variable_list binding{};
    binding.name = const_cast<oid *>(name);
    binding.name_length = 13;
    oid_pair pair{};
    create_pair(&pair, &binding);
    EXPECT_EQ(pair.name, name);
    EXPECT_EQ(pair.length, 13U);
}

std::vector<std::string> slot_calls;
int initializer_result = 0;
int record_start(int slot) {
    slot_calls.push_back("start " + std::to_string(slot));
    return initializer_result;
}
int record_stop(int slot) {
    slot_calls.push_back("stop " + std::to_string(slot));
    return 0;
}

void record_buffer() {
    slot_calls.emplace_back("buffer");
}

class SlotsTest : public testing::Test {
  protected:
    SlotsTest() {
        slot_calls.clear();
        initializer_result = 0;
    }
    CapturedLog log;
};

TEST_F(SlotsTest, FollowTheLinksOfTheServedSlots) {
    Slots slots(SlotSet("0000000000001011"), record_start, record_stop, record_buffer);
    std::set<int> links = {0, 1, 2, 3};
    const auto has_link = [&links](int slot) { return links.contains(slot); };
    EXPECT_TRUE(slots.follow(has_link));
    EXPECT_THAT(slots.up(), ElementsAre(0, 1, 3));
    EXPECT_FALSE(slots.follow(has_link));
    EXPECT_THAT(slot_calls, ElementsAre("start 0", "start 1", "start 3"));

    slot_calls.clear();
    links.erase(1);
    EXPECT_TRUE(slots.follow(has_link));
    EXPECT_THAT(slots.up(), ElementsAre(0, 3));
    EXPECT_FALSE(slots.is_up(1));
    EXPECT_THAT(slot_calls, ElementsAre("stop 1", "buffer"));

    slot_calls.clear();
    links.clear();
    EXPECT_TRUE(slots.follow(has_link));
    EXPECT_THAT(slot_calls, ElementsAre("stop 0", "buffer", "stop 3", "buffer"))
        << "the chassis' profiles are read through the shared buffer also without a card";
}

TEST_F(SlotsTest, SayOnceThatASlotCannotBeStartedAndTryAgain) {
    Slots slots(SlotSet(1), record_start, record_stop, record_buffer);
    const auto always = [](int) { return true; };
    initializer_result = -1;
    EXPECT_FALSE(slots.start_chassis());
    EXPECT_FALSE(slots.follow(always));
    EXPECT_FALSE(slots.follow(always));
    initializer_result = 0;
    EXPECT_TRUE(slots.follow(always));
    EXPECT_THAT(slot_calls, ElementsAre("start 16", "start 0", "start 0", "start 0"));
    EXPECT_THAT(log.lines, ElementsAre("slot 1: the module cannot start it\n", "slot 1: line card up\n"));
}

TEST(ConfiguredSlots, AreWhatTheConfigurationSays) {
    set_configured_slots({SlotSet(0b1), SlotSet(0b11), {{2, 7, 63}}});
    EXPECT_NE(slot_isconfigured(0), 0);
    EXPECT_EQ(slot_isconfigured(1), 0);
    EXPECT_NE(slot_isconfigured_candidate(1), 0);
    EXPECT_EQ(slot_isconfigured(-1), 0);
    EXPECT_EQ(slot_isconfigured(16), 0);
    EXPECT_NE(check_firmware_select(2, 7, 63), 0);
    EXPECT_EQ(check_firmware_select(2, 7, 62), 0);
}

}  // namespace
}  // namespace tarn::host::test
