// Requests that are refused: the status, a bare header, and a line in the log.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

TEST(Refusals, StatusAndLogLine) {
    const std::string ont = "5441524e00000001";
    const std::string no_ont = "5441524e000000ff";
    struct Case {
        int slot;
        int command;
        int destination;
        std::string payload;
        int status;
        std::string reason;
    };
    const std::vector<Case> cases = {
        {0, 69, 8, "00", 2, "get_olt_state), length 33: refused with status 2: length 33, expected 32"},
        {0, 70, 8, "", 2, "length 32, expected 33"},
        {0, 80, 8, "ff", 2, "length 33, expected 47"},
        {0, 86, 8, "00" + zeros(96), 2, "length 129, expected 130"},
        {0, 314, 8, "0002", 2, "length 34, expected 35"},
        {0, 9999, 8, "", 3, "command 9999 (unknown), length 32: refused with status 3: unknown command"},
        {0, 74, 8, "", 3, "unknown command"},
        {0, 70, 5, "00", 4, "wrong destination 5"},
        {0, 70, 9, "00", 4, "wrong destination 9"},
        {0, 70, 8, "08", 2, "channel 8 out of range"},
        {0, 71, 8, "fe", 2, "channel 254 out of range"},
        {0, 73, 8, "08", 2, "channel 8 out of range"},
        {0, 79, 8, "08", 2, "channel 8 out of range"},
        {0, 80, 8, "08" + zeros(14), 2, "channel 8 out of range"},
        {0, 205, 8, "08", 2, "channel 8 out of range"},
        {0, 14, 8, "ff", 2, "channel 255 out of range"},
        {0, 85, 8, "ff", 2, "channel 255 out of range"},
        {0, 86, 8, "08" + zeros(97), 2, "channel 8 out of range"},
        {0, 313, 8, "08", 2, "channel 8 out of range"},
        {0, 314, 8, "080200", 2, "channel 8 out of range"},
        {0, 314, 8, "000300", 2, "activation mode 3, expected 2 or 4"},
        {0, 305, 8, zeros(8) + "08" + zeros(4), 2, "channel 8 out of range"},
        {0, 305, 8, zeros(8) + "0002000000", 6, "no such ONT"},
        {0, 72, 8, no_ont + zeros(5), 6, "no such ONT"},
        {0, 72, 8, zeros(13), 6, "no such ONT"},
        {0, 16, 8, no_ont + zeros(5), 6, "no such ONT"},
        {0, 67, 8, "0600" + zeros(16), 2, "counter group 6, expected 5 or 16"},
        {0, 67, 8, "1000000008" + zeros(13), 2, "channel 8 out of range"},
        {0, 67, 8, "0500000000" + no_ont + zeros(5), 6, "no such ONT"},
        {0, 275, 8, "00" + ont + zeros(4) + "0100", 2, "value 1, expected 0 or 255"},
        {0, 275, 8, "08" + ont + zeros(4) + "0000", 2, "channel 8 out of range"},
        {0, 275, 8, "01" + ont + zeros(4) + "ff00", 6, "no such ONT"},
        {16, 69, 8, "", 3, "not a command for this slot"},
        {9, 69, 8, "", 7, "no card"},
    };
    for (const Case &c : cases) {
        TestChassis test;
        const Bytes request = make_request(c.slot, c.command, c.destination, c.payload);
        Bytes expected(request.begin(), request.begin() + 32);
        expected[14] = static_cast<std::uint8_t>(c.status);
        expected[20] = 32;
        expected[21] = 0;
        EXPECT_EQ(to_hex(test.chassis.request(c.slot, request).bytes), to_hex(expected)) << c.reason;
        EXPECT_NE(test.log_text.str().find(c.reason + "\n"), std::string::npos) << test.log_text.str();
    }
}

TEST(Refusals, AnotherSlotsByteAndAnotherKind) {
    TestChassis test;
    EXPECT_EQ(test.chassis.request(0, make_request(5, 69, 8, "")).bytes.at(14), 7);
    Bytes request = make_request(0, 69, 8, "");
    request[2] = 0;
    EXPECT_EQ(test.chassis.request(0, request).bytes.at(14), 2);
    request[2] = 1;
    request[6] = 1;  // destination 264
    EXPECT_EQ(test.chassis.request(0, request).bytes.at(14), 4);
    EXPECT_NE(test.log_text.str().find("slot byte 5 on the connection of slot 0"), std::string::npos);
    EXPECT_NE(test.log_text.str().find("kind 0, expected 1"), std::string::npos);
}

TEST(Refusals, ARefusedRequestChangesNothing) {
    TestChassis test;
    const std::string config = test.payload(0, 85, "01");
    test.status(0, 86, "01" + zeros(96));
    test.status(0, 86, "01" + zeros(97), 5);
    EXPECT_EQ(test.payload(0, 85, "01"), config);
    test.status(0, 275, "005441524e0000000100000000fe00");
    EXPECT_TRUE(test.chassis.card(0)->onts[0].enabled);
}

}  // namespace
}  // namespace tarn::chassis
