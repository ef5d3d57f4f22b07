// Faults: what they do to answers, whom they hit, and when they end.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

TEST(Faults, SilentAndDroppedRequestsAreNotCarriedOut) {
    TestChassis test;
    test.chassis.faults().add({.kind = FaultKind::silent, .slot = 0, .command = 314});
    EXPECT_EQ(test.send(0, 314, "010400").outcome, Outcome::silent);
    test.chassis.faults().clear({}, {});
    EXPECT_EQ(test.payload(0, 313, "01"), "010200");
    test.chassis.faults().add({.kind = FaultKind::dropped, .slot = 0});
    EXPECT_EQ(test.send(0, 314, "010400").outcome, Outcome::dropped);
    test.chassis.faults().clear({}, 0);
    EXPECT_EQ(test.payload(0, 313, "01"), "010200");
    EXPECT_NE(test.log_text.str().find("command 314 (set_activation_auth_mode), length 35: fault silent\n"),
              std::string::npos);
}

TEST(Faults, SpoiltAnswers) {
    TestChassis test;
    Faults &faults = test.chassis.faults();
    const Bytes whole = test.send(0, 80, all_addresses).bytes;
    ASSERT_EQ(whole.size(), 35 + 2 * 37U);

    faults.add({.kind = FaultKind::truncated, .value = 50, .times = 1});
    Bytes cut = test.send(0, 80, all_addresses).bytes;
    EXPECT_EQ(cut.size(), 50U);
    EXPECT_EQ(load_le32(cut.data() + 20), 50U);
    EXPECT_EQ(load_le16(cut.data() + 33), 2);

    faults.add({.kind = FaultKind::wrong_length, .value = 5000, .times = 1});
    const Bytes lying = test.send(0, 80, all_addresses).bytes;
    EXPECT_EQ(lying.size(), whole.size());
    EXPECT_EQ(load_le32(lying.data() + 20), 5000U);

    faults.add({.kind = FaultKind::corrupt, .value = 40, .times = 1});
    const Bytes corrupt = test.send(0, 80, all_addresses).bytes;
    ASSERT_EQ(corrupt.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        EXPECT_EQ(whole[i] ^ corrupt[i], i >= 40 && i < 56 ? 0xFF : 0) << i;
    }
    // As far as the answer goes.
    faults.add({.kind = FaultKind::corrupt, .value = 34, .times = 1});
    EXPECT_EQ(test.payload(0, 313, "01"), "0102ff");

    // Each answer's count where it has it: 16 bits of addresses and sessions, 32 of ONTs, 8 of connections.
    faults.add({.kind = FaultKind::wrong_count, .value = 0xFFFFFFFF});
    EXPECT_EQ(test.payload(0, 80, all_addresses).substr(0, 6), "ffffff");
    EXPECT_EQ(test.payload(0, 205, "ff").substr(0, 4), "ffff");
    EXPECT_EQ(test.payload(0, 73, "01").substr(0, 12), "01ffffffff54");
    EXPECT_EQ(test.payload(0, 305, zeros(13)).substr(0, 30), zeros(13) + "ff00");
    EXPECT_EQ(test.payload(0, 313, "01"), "010200");
    // An image counts its compressed bytes after them.
    EXPECT_EQ(load_le32(test.send(0, 302, "", 5).bytes.data() + 1024032), 0xFFFFFFFF);

    faults.add({.kind = FaultKind::status, .value = 5});
    const Bytes busy = test.send(0, 80, all_addresses).bytes;
    EXPECT_EQ(busy.size(), 32U);
    EXPECT_EQ(busy.at(14), 5);
}

TEST(Faults, HitOnlyTheirSlotAndCommandAndAsOftenAsAsked) {
    TestChassis test;
    Faults &faults = test.chassis.faults();
    faults.add({.kind = FaultKind::status, .value = 9, .slot = 0, .command = 69, .times = 2});
    EXPECT_EQ(test.status(5, 69), 0);
    EXPECT_EQ(test.status(0, 313, "00"), 0);
    EXPECT_EQ(test.status(0, 69), 9);
    EXPECT_EQ(faults.list().at(0).times, 1U);
    EXPECT_EQ(test.status(0, 69), 9);
    EXPECT_TRUE(faults.list().empty());
    EXPECT_EQ(test.status(0, 69), 0);

    // Several at once; link frames only when they are named.
    faults.add({.kind = FaultKind::slow, .value = 300});
    faults.add({.kind = FaultKind::slow, .value = 200, .slot = 0});
    faults.add({.kind = FaultKind::status, .value = 6, .slot = 0});
    const Reply reply = test.send(0, 69);
    EXPECT_EQ(reply.delay_ms, 300U);
    EXPECT_EQ(reply.bytes.at(14), 6);
    EXPECT_EQ(test.send(0, 0, "", 0).delay_ms, 0U);
    EXPECT_EQ(test.status(0, 0, "", 0), 0);
    faults.add({.kind = FaultKind::status, .value = 5, .slot = 0, .command = 0});
    EXPECT_EQ(test.status(0, 0, "", 0), 5);
    EXPECT_EQ(faults.clear({}, 0), 3U);
    EXPECT_EQ(faults.list().size(), 1U);
    EXPECT_EQ(test.send(0, 69).delay_ms, 300U);
}

}  // namespace
}  // namespace tarn::chassis
