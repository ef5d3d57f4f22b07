// The download of an image: the commands that it runs, how it ends, what it leaves.
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include "module/configfile/configfile.h"
#include "module/firmware/acs_firmware_operations.h"
#include "module/start/start.h"
#include "support/file_tree.h"
#include "tarn/host_services.h"

namespace {

using Traps = std::vector<std::pair<int, std::string>>;

constexpr const char *fetching = R"sh(echo image >"${2##*/}")sh";
constexpr const char *real_mv = R"sh(exec /bin/mv "$@")sh";

class FirmwareDownloadTest : public Started<FileTest> {
  protected:
    const std::string name = "tarn-test-" + std::to_string(getpid()) + ".bin";

    void SetUp() override {
        Started::SetUp();
        stand_in("tftp", fetching);
        stand_in("chown", "");
    }
    void TearDown() override {
        std::filesystem::remove("/tmp/" + name);
        FileTest::TearDown();
    }

    static AcsFirmwareCache &cache() { return *get_acs_firmware_cache(); }
    static void request(const std::string &path) {
        const std::uint8_t server[] = {127, 0, 0, 9};
        std::memcpy(cache().server_address, server, 4);
        std::memset(cache().remote_path, 0, sizeof cache().remote_path);
        std::memcpy(cache().remote_path, path.data(), path.size());
    }
    // Runs the thread's body here.
    static void download(const std::string &path) {
        request(path);
        cache().download_state = acs_download_running;
        acs_firmware_download_thread_proc(nullptr);
    }
    static std::string image(const std::string &file) { return at("/mnt/fs/tools/cpe/" + file); }
    bool is_left_in_tmp() const { return std::filesystem::exists("/tmp/" + name); }
};

TEST_F(FirmwareDownloadTest, FetchesMovesAndReports) {
    stand_in("mv", real_mv);
    download("images/" + name);
    EXPECT_EQ(cache().download_state, 2U);
    EXPECT_EQ(board.traps, (Traps{{0, "images/" + name + " 127.0.0.9"}}));
    EXPECT_EQ(read(image(name)), "image\n");
    EXPECT_FALSE(is_left_in_tmp());
    EXPECT_TRUE(board.log.empty());
    EXPECT_EQ(commands(), (std::vector<std::string>{"tftp -gr images/" + name + " 127.0.0.9",
                                                    "mv /tmp/" + name + " " + image(""),
                                                    "chown admin " + image("") + "/" + name}));
}

TEST_F(FirmwareDownloadTest, AReplacedImageKeepsItsSpecificsButNotItsSum) {
    stand_in("mv", real_mv);
    write(image(name), "old");
    ASSERT_EQ(create_specific_file(name.c_str()), 0);
    cf_SetParam(image(name + ".spec").c_str(), "VENDOR", "ACME", nullptr);
    for (const std::string sum : {"0123456789abcdef0123456789abcdef", ""}) {
        board.md5 = sum;
        download(name);
        EXPECT_EQ(read(image(name + ".spec")),
                  "VENDOR=ACME\nEQUIPMENT_LIST=\nSOFTWARE_VERSION=\nMD5_SUM=" + sum + "\n");
    }
}

TEST_F(FirmwareDownloadTest, LeavesNothingBehindAFailure) {
    const std::string log = "3 acs_firmware_download_thread_proc : ";
    struct Failure {
        const char *what;
        const char *tftp;
        const char *mv;
        std::string log;
    };
    const Failure cases[] = {
        {"no such file", R"sh(echo part >"${2##*/}"; exit 1)sh", real_mv, log + "tftp result = 256\n"},
        {"the move fails", fetching, "exit 1", log + "unable to move firmware\n"},
        {"nothing came", "exit 0", real_mv, log + "unable to move firmware\n"},
        {"a link came", R"sh(ln -s /etc/passwd "${2##*/}")sh", real_mv, log + "unable to move firmware\n"},
    };
    for (const Failure &c : cases) {
        SCOPED_TRACE(c.what);
        board.traps.clear();
        stand_in("tftp", c.tftp);
        stand_in("mv", c.mv);
        download(name);
        EXPECT_EQ(cache().download_state, 3U);
        EXPECT_EQ(board.traps, (Traps{{1, name + " 127.0.0.9"}}));
        EXPECT_EQ(board.log.back(), c.log);
        EXPECT_FALSE(is_left_in_tmp());
        EXPECT_TRUE(std::filesystem::is_empty(image("")));
    }
}

TEST_F(FirmwareDownloadTest, RefusesPathsThatNameNoImageWithoutRunningAnything) {
    for (const char *path :
         {"images/", "images\\", "", "..", "a/..", ".", "a.bin.spec", "versions-prio.txt", "a\nb"}) {
        SCOPED_TRACE(path);
        board.traps.clear();
        download(path);
        EXPECT_EQ(cache().download_state, 3U);
        EXPECT_EQ(board.traps, (Traps{{1, std::string(path) + " 127.0.0.9"}}));
        EXPECT_EQ(board.log.back(), "3 acs_firmware_download_thread_proc : unable to determine filename\n");
    }
    EXPECT_TRUE(commands().empty());
}

TEST_F(FirmwareDownloadTest, KeepsShellCharactersFromTheShell) {
    const std::string hostile = "$(touch x); 'q' `id` " + name;
    download("d/" + hostile);
    EXPECT_EQ(cache().download_state, 2U);
    EXPECT_EQ(read(image(hostile)), "image\n");
    EXPECT_EQ(commands().front(), "tftp -gr d/" + hostile + " 127.0.0.9");
    EXPECT_EQ(commands().back(), "chown admin " + image("") + "/" + hostile);

    // A path that fills its field has no NUL; the report is cut to 255 characters.
    const std::string full = "d/" + std::string(243, 'f') + "/tarn-" + std::string(5, 'x');
    ASSERT_EQ(full.size(), 256U);
    download(full);
    EXPECT_EQ(board.traps.back(), (std::pair{0, full.substr(0, 255)}));
}

TEST_F(FirmwareDownloadTest, DoesNotWriteThroughALinkInTmp) {
    write(at("/victim"), "untouched");
    std::filesystem::create_symlink(at("/victim"), "/tmp/" + name);
    download(name);
    EXPECT_EQ(cache().download_state, 2U);
    EXPECT_EQ(read(at("/victim")), "untouched");
    EXPECT_EQ(read(image(name)), "image\n");
}

TEST_F(FirmwareDownloadTest, RunsOneAtATimeAndOutlivesAStop) {
    const std::string gate = at("/gate");
    stand_in("tftp", "until test -e " + gate + "; do sleep 0.01; done\n" + fetching);
    request(name);
    EXPECT_EQ(download_acs_firmware(), 0);
    EXPECT_EQ(download_acs_firmware(), -1);
    slot_deinitializer(16);
    EXPECT_EQ(get_acs_firmware_cache(), nullptr);
    EXPECT_EQ(download_acs_firmware(), -1);
    start({});
    EXPECT_EQ(cache().download_state, 0U);
    write(gate, "");
    board.wait_for_traps(1);
    EXPECT_EQ(board.traps, (Traps{{0, name + " 127.0.0.9"}}));
    EXPECT_EQ(read(image(name)), "image\n");
    request(name);
    EXPECT_EQ(download_acs_firmware(), 0);
    board.wait_for_traps(2);
    pthread_mutex_lock(&cache().lock);
    EXPECT_EQ(cache().download_state, 2U);
    pthread_mutex_unlock(&cache().lock);
}

TEST_F(FirmwareDownloadTest, EndsWithTheModule) {
    const std::string started = at("/started");
    stand_in("tftp", "touch " + started + "; sleep 3600 & wait");
    request(name);
    ASSERT_EQ(download_acs_firmware(), 0);
    while (!std::filesystem::exists(started)) {
        usleep(1000);
    }
    cleanup_lib();
    EXPECT_EQ(board.traps, (Traps{{1, name + " 127.0.0.9"}}));
    EXPECT_EQ(board.log.back(), "3 acs_firmware_download_thread_proc : tftp result = 15\n");
    EXPECT_FALSE(is_left_in_tmp());
    start({});
    stand_in("tftp", fetching);
    request(name);
    EXPECT_EQ(download_acs_firmware(), 0);
    board.wait_for_traps(2);
    EXPECT_EQ(board.traps.back().first, 0);
}

}  // namespace
