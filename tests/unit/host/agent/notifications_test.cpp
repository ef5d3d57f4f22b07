// What is told of by itself: how much of it, and which ONTs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <net-snmp/net-snmp-config.h>

#include <net-snmp/net-snmp-includes.h>

#include "host/agent/notifications.h"
#include "support/board_server.h"
#include "support/captured_log.h"

namespace tarn::host::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Notifications, AreCutToSoManyAMinuteAndTheOthersTold) {
    const CapturedLog log;
    int sent = 0;
    Notifications notifications(2, [&](variable_list *) { ++sent; });
    const auto begin = Notifications::Clock::now();
    for (const auto at : {0s, 10s, 59s, 59s}) {
        notifications.notify({.what = Notification::card_up, .slot = 3}, begin + at);
    }
    notifications.tell_held_back(begin + 59s);
    EXPECT_THAT(log.lines, IsEmpty());
    notifications.tell_held_back(begin + 60s);
    notifications.notify({.what = Notification::card_up, .slot = 3}, begin + 61s);
    EXPECT_THAT(log.lines, ElementsAre(testing::HasSubstr("2 notifications of a minute were held back")));
    EXPECT_EQ((std::tuple{sent, notifications.sent(), notifications.held_back()}), (std::tuple{3, 3, 2}));
}

TEST(Notifications, OfOntsLeaveRoomForCardsAndCommitsAreAlwaysTold) {
    const CapturedLog log;
    std::vector<int> sent;
    int what = 0;
    Notifications notifications(4, [&](variable_list *) { sent.push_back(what); });
    const auto begin = Notifications::Clock::now();
    using enum Notification;
    for (const Notification kind :
         {ont_lost, ont_lost, ont_lost, card_down, card_down, card_down, commit_expiring}) {
        what = static_cast<int>(kind);
        notifications.notify(
            {.what = kind, .slot = 3, .ont = kind == ont_lost ? std::optional(OntChange{}) : std::nullopt},
            begin);
    }
    EXPECT_THAT(sent, ElementsAre(6, 6, 2, 2, 5));
    EXPECT_EQ(notifications.held_back(), 2U);
}

// An ONT list of a card, with one ONT of these last serial bytes and state codes each.
Bytes list(std::initializer_list<std::pair<std::uint8_t, std::uint8_t>> onts) {
    Bytes answer = message(73, 2, 37 + onts.size() * 106);
    answer[33] = static_cast<std::uint8_t>(onts.size());
    std::size_t at = 37;
    for (const auto &[serial, code] : onts) {
        answer[at + 7] = serial;
        answer[at + 8] = 5;
        answer[at + 68] = code;
        at += 106;
    }
    return answer;
}

TEST(OntWatch, TellsOfWorkingOntsThatGoAndComeBack) {
    OntWatch watch;
    const Bytes of_all = message(73, 2, 33, 0, 255);
    const auto changes = [&](const Bytes &answer) {
        std::vector<std::tuple<int, int, bool>> seen;
        for (const OntChange &change : watch.take(2, of_all, answer)) {
            seen.emplace_back(change.serial[7], change.channel, change.lost);
        }
        return seen;
    };
    EXPECT_THAT(changes(list({{1, 7}, {2, 7}, {3, 13}})), IsEmpty()) << "the first list";
    EXPECT_THAT(changes(list({{1, 11}, {3, 7}})),
                ElementsAre(std::tuple(1, 5, true), std::tuple(2, 5, true)));
    EXPECT_THAT(changes(list({{1, 11}, {3, 7}})), IsEmpty());
    EXPECT_THAT(watch.take(2, message(73, 2, 33, 0, 4), list({})), IsEmpty()) << "of one channel";
    Bytes cut = list({{1, 7}, {2, 7}, {3, 7}});
    cut.resize(37 + 106);
    EXPECT_THAT(changes(cut), IsEmpty()) << "cut";
    EXPECT_THAT(changes(list({{1, 7}})), ElementsAre(std::tuple(3, 5, true), std::tuple(1, 5, false)));
    EXPECT_THAT(changes(message(73, 2, 37, 5)), IsEmpty()) << "refused";
    watch.forget(2);
    EXPECT_THAT(changes(list({})), IsEmpty());
}

}  // namespace
}  // namespace tarn::host::test
