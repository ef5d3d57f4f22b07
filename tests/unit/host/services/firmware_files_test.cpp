// The host's services on firmware files, and the image header.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "host/services/agent_thread.h"
#include "host/services/firmware_files.h"
#include "host/services/image_header.h"
#include "tarn/host_services.h"

namespace {

using namespace tarn::host;
namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

// A directory of the test's own that TARN_ROOT names.
class FirmwareFilesTest : public testing::Test {
  protected:
    fs::path root;

    void SetUp() override {
        std::string name = testing::TempDir() + "tarn-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        root = name;
        setenv("TARN_ROOT", root.c_str(), 1);
        fs::create_directories(image_directory());
    }
    void TearDown() override {
        unsetenv("TARN_ROOT");
        fs::remove_all(root);
    }
    static std::string image(const std::string &name) { return image_directory() + name; }
    static void write(const std::string &path, const Bytes &bytes) {
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
};

const Bytes header_of_abc = {'T',  'A',  'R',  'N',  'I', 'M', 'G', '1', 35,  0,   0,  0,
                             1,    0,    38,   3,    36,  0,   0,   0,   5,   0,   0,  0,
                             0xEF, 0xBE, 0xAD, 0xDE, 3,   0,   0,   0,   'a', 'b', 'c'};

TEST_F(FirmwareFilesTest, AnImageHeaderIsReadAsItIsWritten) {
    EXPECT_EQ(make_image_header({0x03260001, 36, 5, 0xDEADBEEF, "abc"}), header_of_abc);
    const auto header = parse_image_header(header_of_abc);
    ASSERT_TRUE(header);
    EXPECT_EQ(header->version, 0x03260001U);
    EXPECT_EQ(header->fourth_number, 36U);
    EXPECT_EQ(header->payload_size, 5U);
    EXPECT_EQ(header->payload_crc, 0xDEADBEEF);
    EXPECT_EQ(header->description, "abc");
    EXPECT_EQ(parse_image_header(make_image_header({0, 0, 0, 0, std::string(3000, 'd')}))->description,
              std::string(1023, 'd'));
    for (std::size_t length = 0; length < header_of_abc.size(); ++length) {
        EXPECT_FALSE(parse_image_header(std::span(header_of_abc).first(length))) << length;
    }
    for (const std::size_t changed : {0U, 7U, 8U, 28U, 29U}) {
        Bytes damaged = header_of_abc;
        damaged[changed] ^= 0x40;
        EXPECT_FALSE(parse_image_header(damaged)) << changed;
    }
}

TEST_F(FirmwareFilesTest, HeaderInformationComesFromRegularFilesOnly) {
    std::uint32_t version = 0;
    std::uint32_t fourth = 0;
    std::uint32_t ignored = 0;
    char *description = nullptr;
    const auto read = [&](const std::string &name) {
        return fp_GetHeaderInfo(image(name).c_str(), 0, 0, &version, &fourth, &ignored, &description);
    };
    write(image("good"), header_of_abc);
    EXPECT_EQ(read("good"), 0);
    EXPECT_EQ(version, 0x03260001U);
    EXPECT_EQ(fourth, 36U);
    EXPECT_STREQ(description, "abc");
    std::free(description);
    write(image("empty"), {});
    fs::create_directory(image("folder"));
    ASSERT_EQ(mkfifo(image("pipe").c_str(), 0600), 0);
    for (const char *name : {"missing", "empty", "folder", "pipe"}) {
        EXPECT_EQ(read(name), -1) << name;
    }
}

TEST_F(FirmwareFilesTest, SumsFiles) {
    char sum[33] = "";
    write(image("abc"), {'a', 'b', 'c'});
    EXPECT_EQ(fsa_calc_md5sum(image("abc").c_str(), sum, sizeof sum), 0);
    EXPECT_STREQ(sum, "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(fsa_calc_md5sum(image("abc").c_str(), sum, 32), -1);
    EXPECT_EQ(fsa_calc_md5sum(image("missing").c_str(), sum, sizeof sum), -1);
    ASSERT_EQ(mkfifo(image("pipe").c_str(), 0600), 0);
    EXPECT_EQ(fsa_calc_md5sum(image("pipe").c_str(), sum, sizeof sum), -1);
}

TEST_F(FirmwareFilesTest, RemovesImagesAndNothingElse) {
    write((root / "mnt/fs/tools/outside").string(), {'x'});
    write(image("a.bin"), {'x'});
    fs::create_directory(image("folder"));
    for (const char *name : {"", ".", "..", "../outside", "folder/..", "folder", "missing"}) {
        EXPECT_NE(hub_remove_cpe_firmware_file(name), 0) << name;
    }
    EXPECT_TRUE(fs::exists(root / "mnt/fs/tools/outside"));
    EXPECT_EQ(hub_remove_cpe_firmware_file("a.bin"), 0);
    EXPECT_FALSE(fs::exists(image("a.bin")));
    fs::create_symlink(root / "mnt/fs/tools/outside", image("link"));
    EXPECT_EQ(hub_remove_cpe_firmware_file("link"), 0);
    EXPECT_TRUE(fs::exists(root / "mnt/fs/tools/outside"));
}

TEST_F(FirmwareFilesTest, NamesTheDirectoriesOfUpdates) {
    char text[63] = "";
    set_firmware_directories({"/srv/tftp", "ont"});
    EXPECT_EQ(fsa_get_tftpboot_directory(text, sizeof text, 0), 0);
    EXPECT_STREQ(text, "/srv/tftp");
    EXPECT_EQ(fsa_get_ont_firmware_tftppath(3, text, sizeof text), 0);
    EXPECT_STREQ(text, "ont");
    EXPECT_EQ(fsa_get_ont_firmware_tftppath(2, text, sizeof text), -1);
    set_firmware_directories({std::string(63, 'd'), "ont"});
    EXPECT_EQ(fsa_get_tftpboot_directory(text, sizeof text, 0), -1);
    set_firmware_directories(default_firmware_directories());
    EXPECT_EQ(default_firmware_directories().tftp_root, root.string() + "/mnt/fs/tools");
}

TEST(AgentThreadTest, WorkOfOtherThreadsWaitsForTheAgents) {
    become_agent_thread();
    EXPECT_TRUE(is_agent_thread());
    std::string done;
    std::thread other([&] {
        EXPECT_FALSE(is_agent_thread());
        leave_for_agent([&] { done += "a"; });
        leave_for_agent([&] { done += "b"; });
    });
    other.join();
    EXPECT_EQ(done, "");
    run_left_work();
    EXPECT_EQ(done, "ab");
    run_left_work();
    EXPECT_EQ(done, "ab");
}

}  // namespace
