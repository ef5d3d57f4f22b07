// Updates of firmware and their schedule: the requests byte by byte, and what bad images and answers do.
#include "module/operations/firmware_update.h"

#include <sys/stat.h>

#include <filesystem>

#include "module/operations/update_scheduler.h"
#include "module/store/update_sections.h"
#include "support/config_image.h"
#include "support/file_tree.h"

namespace {

constexpr std::uint8_t serial[] = {'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78};

class FirmwareUpdateTest : public Started<FileTest, 2> {
  protected:
    void SetUp() override {
        Started::SetUp();
        ConfigImage image;
        image.add_ont(5 * 64 + 9, "ABCD\x12\x34\x56\x78");
        image.serve();
        board.tftp_root = at("/tftp");
        std::filesystem::create_directories(at("/tftp/ont"));
    }
    // The last request, of these many bytes, with nothing but zeros outside the given places.
    static Bytes last(int command, std::size_t length) {
        const SentRequest &request = board.sent.back();
        EXPECT_EQ(request.command(), command);
        EXPECT_EQ(request.destination(), 8);
        EXPECT_EQ(request.slot(), 2);
        EXPECT_EQ(request.bytes.size(), length);
        return {request.bytes.begin() + 32, request.bytes.end()};
    }
};

void put(Bytes &bytes, std::size_t at, const Bytes &part) {
    std::copy(part.begin(), part.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

TEST_F(FirmwareUpdateTest, UpdatesTheCardAndOnts) {
    board.answer(17, {});
    board.answer(18, {});
    EXPECT_EQ(update_olt_firmware(2), 0);
    EXPECT_EQ(last(17, 32), Bytes{});
    EXPECT_EQ(update_ont_firmware(2, serial), 0);
    Bytes expected(406, 0);
    put(expected, 0, {5, 9, 0, 0, 0});
    EXPECT_EQ(last(18, 438), expected);

    board.silence(17);
    board.refuse(18, 5);
    EXPECT_EQ(update_olt_firmware(2), -1);
    EXPECT_EQ(update_ont_firmware(2, serial), -1);
    board.log.clear();
    const std::size_t sent = board.sent.size();
    EXPECT_EQ(mass_update_ont_firmware(2), 0);
    constexpr std::uint8_t unknown[8] = {'X'};
    EXPECT_EQ(update_ont_firmware(2, unknown), -1);
    EXPECT_EQ(board.log, std::vector<std::string>{"3 update_ont_firmware : unable to find ont id\n"});
    EXPECT_EQ(board.sent.size(), sent);
}

TEST_F(FirmwareUpdateTest, SendsAnImagesSizeAndCrcOverOmci) {
    std::string content;
    for (int i = 0; i < 1500; ++i) {
        content += static_cast<char>(i * 7);
    }
    write(at("/tftp/ont/image.bin"), content);
    board.answer(18, {});
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, "image.bin"), 0);
    Bytes expected(406, 0);
    put(expected, 0, {5, 9, 0, 0, 0, 'i', 'm', 'a', 'g', 'e', '.', 'b', 'i', 'n'});
    put(expected, 133, {'o', 'n', 't'});
    put(expected, 389, {0xDC, 0x05, 0, 0, 0x6B, 0x46, 0x1B, 0x0F});  // 1500 bytes, CRC-32 0x0f1b466b
    EXPECT_EQ(last(18, 438), expected);

    board.refuse(18, 5);
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, "image.bin"), 5);
    board.silence(18);
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, "image.bin"), -1);
}

TEST_F(FirmwareUpdateTest, RefusesWhatIsNoImage) {
    write(at("/tftp/secret"), "x");
    std::filesystem::create_directory(at("/tftp/ont/folder"));
    mkfifo(at("/tftp/ont/pipe").c_str(), 0600);
    struct {
        std::string name;
        int error;
    } const cases[] = {
        {"missing", 2}, {"../secret", 13}, {"folder/../../secret", 13}, {"..", 13}, {"folder", 21},
        {"", 21},       {"pipe", 13},      {std::string(128, 'n'), 13},
    };
    for (const auto &c : cases) {
        board.log.clear();
        EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, c.name.c_str()), -1) << c.name;
        EXPECT_EQ(board.log, std::vector<std::string>{"3 update_ont_firmware_via_OMCI : Open file error " +
                                                      std::to_string(c.error) + "\n"})
            << c.name;
    }
    board.log.clear();
    board.ont_firmware_path.clear();
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, "x"), -1);
    board.tftp_root.clear();
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, serial, "x"), -1);
    constexpr std::uint8_t unknown[8] = {'X'};
    EXPECT_EQ(update_ont_firmware_via_OMCI(2, unknown, "x"), -1);
    EXPECT_EQ(board.log, (std::vector<std::string>{
                             "3 update_ont_firmware_via_OMCI : Can't get ont firmware path\n",
                             "3 update_ont_firmware_via_OMCI : Can't get tftp path\n",
                             "3 update_ont_firmware_via_OMCI : unable to get ont id\n",
                         }));
    EXPECT_EQ(board.count(18), 0);
}

// ---- Schedule ----

TEST_F(FirmwareUpdateTest, AddressesScheduledOntsEitherWay) {
    board.answer(222, {});
    board.answer(223, {});
    EXPECT_EQ(add_update_ont_scheduler(2, serial, std::string(200, 'f').c_str(), 7, 300, 0), 0);
    Bytes expected(143, 0);
    put(expected, 8, {7, 0x2C, 1, 0, 0, 1, 0});
    put(expected, 15, Bytes(127, 'f'));
    EXPECT_EQ(last(222, 175), expected);
    EXPECT_EQ(delete_update_ont_scheduler(2, serial, 7, 300, 1), 0);
    EXPECT_EQ(last(223, 47), (Bytes{'A', 'B', 'C', 'D', 0x12, 0x34, 0x56, 0x78, 0, 0, 0, 0, 0, 1, 0}));
}

Bytes task_list(std::uint32_t stated, std::size_t held) {
    Bytes payload(6 + held * 159, 0);
    tarn::store_le32(&payload[2], stated);
    for (std::size_t i = 0; i < held; ++i) {
        payload[6 + i * 159 + 2] = static_cast<std::uint8_t>(i + 1);
    }
    return payload;
}

TEST_F(FirmwareUpdateTest, FetchesTheScheduleOnceAndAgainAfterAChange) {
    board.answer(225, task_list(2, 2));
    board.answer(222, {});
    EXPECT_EQ(get_update_ont_scheduler(2), 2);
    EXPECT_EQ(last(225, 34), (Bytes{1, 0}));
    EXPECT_EQ(get_update_ont_scheduler(2), 2);
    EXPECT_EQ(board.count(225), 1);
    EXPECT_EQ(tarn::slot_sections<tarn::UpdateSections>(2)->update_tasks.at(1)[2], 2);
    board.answer(225, task_list(0, 0));
    add_update_ont_scheduler(2, serial, "f", 0, 0, 1);
    EXPECT_EQ(get_update_ont_scheduler(2), 0);
    EXPECT_EQ(board.count(225), 2);
    // A failed fetch keeps the list.
    board.everything_stale = true;
    board.answer(225, task_list(1, 1));
    EXPECT_EQ(get_update_ont_scheduler(2), 1);
    board.silence(225);
    EXPECT_EQ(get_update_ont_scheduler(2), 1);
    EXPECT_EQ(get_update_ont_scheduler(9), 0);
}

TEST_F(FirmwareUpdateTest, TakesNoMoreTasksThanTheAnswerHolds) {
    board.everything_stale = true;
    board.answer(225, task_list(0xFFFFFFFF, 3));
    EXPECT_EQ(get_update_ont_scheduler(2), 3);
    board.answer(225, {1, 0, 9});
    EXPECT_EQ(get_update_ont_scheduler(2), 3);
    EXPECT_EQ(board.log.back(), "3 get_update_ont_scheduler : short answer, 35 bytes of 38\n");
}

}  // namespace
