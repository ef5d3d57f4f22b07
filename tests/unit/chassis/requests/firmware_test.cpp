// Firmware updates, as requests start them and as the next requests see them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

constexpr const char *serial_1 = "5441524e00000001";

std::string text_field(const std::string &text, std::size_t size) {
    std::string hex = to_hex(Bytes(text.begin(), text.end()));
    return hex + zeros(size - text.size());
}

// The payload of an update over OMCI: the ONT's channel and number, then the image.
std::string update(const std::string &ont, const std::string &file, const std::string &size_and_crc) {
    return ont + text_field(file, 128) + text_field("ont", 256) + size_and_crc + zeros(9);
}

// State code of the first ONT of slot 0 as listed.
int first_code(TestChassis &test) {
    return load_le16(test.send(0, 73, "ff").bytes.data() + 37 + 68);
}

TEST(Firmware, AnOntIsUpdatedAndComesBack) {
    TestChassis test;
    const std::string request = update("0000000000", "fw", zeros(8));
    test.clock_ms = 1000;
    EXPECT_EQ(test.status(0, 18, request), 0);
    EXPECT_EQ(first_code(test), 13);
    EXPECT_EQ(test.status(0, 18, request), board_status::busy);
    EXPECT_EQ(test.status(0, 18, update("0500000000", "fw", zeros(8))), board_status::no_such_item);
    EXPECT_EQ(test.status(0, 18, update("0800000000", "fw", zeros(8))), board_status::malformed);
    test.clock_ms = 6000;
    EXPECT_EQ(update_progress(test.chassis.card(0)->onts[0], test.chassis.now()), 50);
    test.clock_ms = 11000;
    EXPECT_EQ(first_code(test), 3);
    test.clock_ms = 16000;
    EXPECT_EQ(first_code(test), 7);
    EXPECT_EQ(test.status(0, 18, request), 0);
}

TEST(Firmware, AnImageIsCheckedAgainstItsSizeAndCrc) {
    std::string root = testing::TempDir() + "tarn-tftp-XXXXXX";
    ASSERT_NE(mkdtemp(root.data()), nullptr);
    ASSERT_EQ(std::system(("mkdir " + root + "/ont").c_str()), 0);
    std::ofstream(root + "/ont/fw") << "image\n";
    TestChassis test;
    test.chassis.card(0)->firmware.tftp_root = root;
    EXPECT_EQ(test.status(0, 18, update("0000000000", "none", "06000000f277c6c9")),
              board_status::no_such_item);
    EXPECT_EQ(test.status(0, 18, update("0000000000", "fw", "07000000f277c6c9")), board_status::malformed);
    EXPECT_EQ(test.status(0, 18, update("0000000000", "fw", "06000000f377c6c9")), board_status::malformed);
    EXPECT_EQ(first_code(test), 7);
    EXPECT_EQ(test.status(0, 18, update("0000000000", "fw", "06000000f277c6c9")), 0);
    EXPECT_EQ(first_code(test), 13);
    EXPECT_EQ(std::system(("rm -r " + root).c_str()), 0);
}

TEST(Firmware, ScheduledUpdatesRunWhenTheyAreDue) {
    TestChassis test;
    EXPECT_EQ(test.payload(0, 225, "0100"), "010000000000");
    EXPECT_EQ(test.status(0, 222, serial_1 + zeros(5) + "0100" + text_field("by serial", 128)), 0);
    EXPECT_EQ(test.status(0, 222, zeros(8) + "0702000000" + "0100" + text_field("nobody", 128)), 0);
    const auto task = [](const std::string &id, const std::string &ont, const std::string &status,
                         const std::string &file, const std::string &counter) {
        return "0000" + id + "000000" + ont + "0000" + status + "00" + text_field(file, 128) + zeros(4) +
               counter + "00";
    };
    const std::string by_serial = "0100" + std::string(serial_1) + zeros(5);
    const std::string by_number = "0000" + zeros(8) + "0702000000";
    EXPECT_EQ(test.payload(0, 225, "0100"), "010002000000" + task("01", by_serial, "00", "by serial", "00") +
                                                task("02", by_number, "00", "nobody", "00"));
    test.clock_ms = 8000;
    EXPECT_EQ(first_code(test), 13);
    EXPECT_EQ(test.payload(0, 225, "0100"), "010002000000" + task("01", by_serial, "01", "by serial", "1e") +
                                                task("02", by_number, "03", "nobody", "00"));
    test.clock_ms = 20000;
    EXPECT_EQ(test.status(0, 223, zeros(8) + "0702000000" + "0100"), 0);
    EXPECT_EQ(test.payload(0, 225, "0100"), "010001000000" + task("01", by_serial, "02", "by serial", "64"));
    EXPECT_EQ(test.status(0, 223, zeros(8) + "0702000000" + "0100"), board_status::no_such_item);
    EXPECT_EQ(test.status(0, 223, serial_1 + zeros(5) + "0100"), 0);
    EXPECT_EQ(test.payload(0, 225, "0100"), "010000000000");
    EXPECT_EQ(test.status(0, 222, zeros(8) + "0800000000" + "0100" + zeros(128)), board_status::malformed);
}

TEST(Firmware, TheCardIsUpdatedAndReadsTheRules) {
    TestChassis test;
    EXPECT_EQ(test.status(0, 17), 0);
    EXPECT_EQ(first_code(test), 3);
    EXPECT_EQ(test.status(0, 310), 0);
    EXPECT_EQ(test.chassis.card(0)->firmware.card_updates, 1U);
    EXPECT_EQ(test.chassis.card(0)->firmware.rule_reads, 1U);
}

}  // namespace
}  // namespace tarn::chassis
