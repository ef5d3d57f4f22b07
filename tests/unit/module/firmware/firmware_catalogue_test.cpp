// The catalogue of ONT firmware images and their parameter files.
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "module/firmware/acs_firmware_operations.h"
#include "support/file_tree.h"
#include "tarn/host_services.h"

namespace {

class FirmwareCatalogueTest : public Started<FileTest> {
  protected:
    static std::string image(const std::string &name) { return at("/mnt/fs/tools/cpe/" + name); }
    static AcsFirmwareCache &cache() { return *get_acs_firmware_cache(); }
    static void list() {
        cache().files_stamp = {};
        get_files_list();
    }
    static int position(const std::string &name) {
        for (int i = 0; i < cache().files_count; ++i) {
            if (cache().files[i].file_name == name) {
                return i;
            }
        }
        return -1;
    }
    static std::vector<std::string> names() {
        std::vector<std::string> all;
        for (int i = 0; i < cache().files_count; ++i) {
            all.emplace_back(cache().files[i].file_name);
        }
        std::sort(all.begin(), all.end());
        return all;
    }
    static const AcsFirmwareSpecific &specifics(const std::string &name) {
        return cache().specifics[position(name)];
    }
};

std::string taken(char *text) {
    std::string copy = text;
    bfree("", 0, text);
    return copy;
}

TEST_F(FirmwareCatalogueTest, ListsImagesAndNothingElse) {
    list();
    EXPECT_EQ(cache().files_count, 0);
    for (const char *name : {"a.bin", "a.bin.spec", "versions-prio.txt", ".spec", "x.spec"}) {
        write(image(name), "");
    }
    mkfifo(image("pipe").c_str(), 0600);
    mkfifo(image("pipe.spec").c_str(), 0600);
    std::filesystem::create_directory(image("folder"));
    write(image(std::string(255, 'n')), "");
    board.headers[image("pipe")] = {1, 1, "never asked for"};
    list();
    EXPECT_EQ(names(), (std::vector<std::string>{".spec", "a.bin", "folder", std::string(254, 'n'), "pipe"}));
    EXPECT_STREQ(cache().files[position("pipe")].version, "");
}

TEST_F(FirmwareCatalogueTest, ReadsVersionAndDescriptionFromTheHeader) {
    struct {
        const char *name;
        ImageHeader header;
        const char *version;
        std::string description;
    } const cases[] = {
        {"three", {0x030A0041, 0, "two\nlines\n"}, "3.10.65", "two lines "},
        {"four", {0xFF01FFFF, 36, ""}, "255.1.65535.36", ""},
        {"long", {0, 0, std::string(2000, 'd')}, "0.0.0", std::string(1023, 'd')},
    };
    for (const auto &c : cases) {
        write(image(c.name), "");
        board.headers[image(c.name)] = c.header;
    }
    write(image("plain"), "");
    list();
    for (const auto &c : cases) {
        const AcsFirmwareFile &file = cache().files[position(c.name)];
        EXPECT_STREQ(file.version, c.version);
        EXPECT_EQ(file.description, c.description);
    }
    // A header that is not readable any more leaves nothing behind.
    board.headers.clear();
    list();
    EXPECT_STREQ(cache().files[position("three")].version, "");
    EXPECT_STREQ(cache().files[position("long")].description, "");
}

TEST_F(FirmwareCatalogueTest, TakesAParameterFileWholeOrNotAtAll) {
    const std::string whole = "VENDOR=ACME5\nEQUIPMENT_LIST=A,B\nSOFTWARE_VERSION=1.2\nMD5_SUM=0\n";
    write(image("whole"), "");
    write(image("whole.spec"), whole);
    write(image("lacking"), "");
    write(image("lacking.spec"), "VENDOR=ACME\nEQUIPMENT_LIST=A\nSOFTWARE_VERSION=1\n");
    write(image("none"), "");
    write(image("linked"), "");
    std::filesystem::create_symlink(image("whole.spec"), image("linked.spec"));
    write(image("seventeen"), "");
    std::string many;
    for (int i = 0; i < 17; ++i) {
        many += "k" + std::to_string(i) + "=" + std::string(20000, 'v') + "\n";
    }
    write(image("seventeen.spec"), many + whole);
    list();
    EXPECT_EQ(specifics("whole").has_spec, 1);
    EXPECT_STREQ(specifics("whole").vendor, "ACME");
    EXPECT_STREQ(specifics("whole").equipment_list, "A,B");
    EXPECT_STREQ(specifics("whole").software_version, "1.2");
    EXPECT_EQ(specifics("linked").has_spec, 1);
    for (const char *name : {"lacking", "none", "seventeen"}) {
        EXPECT_EQ(specifics(name).has_spec, 0) << name;
    }
    EXPECT_TRUE(board.logged("6 get_files_list : from spec!\n"));
    EXPECT_TRUE(board.logged("3 get_files_list : unable to open " + image("lacking.spec") + " : 7\n"));
    EXPECT_FALSE(board.logged("3 get_files_list : unable to open " + image("none.spec") + " : 2\n"));
}

TEST_F(FirmwareCatalogueTest, StopsAt64ImagesAndKeepsTheCatalogueWithoutADirectory) {
    for (int i = 0; i < 70; ++i) {
        write(image("image" + std::to_string(i)), "");
    }
    list();
    EXPECT_EQ(cache().files_count, 64);
    const std::string directory = image("");
    EXPECT_TRUE(board.logged("3 get_files_list : more than 64 images in " + directory + "\n"));
    std::filesystem::remove_all(directory);
    get_files_list();
    EXPECT_EQ(board.log.size(), 1U);  // still fresh: not opened
    list();
    EXPECT_EQ(cache().files_count, 64);
    EXPECT_TRUE(board.logged("3 get_files_list : unable to open " + directory + "\n"));
    EXPECT_EQ(cache().files_stamp.tv_sec, 0);
}

TEST_F(FirmwareCatalogueTest, WritesUpdatesAndRemovesAParameterFile) {
    write(image("a.bin"), "");
    list();
    EXPECT_EQ(create_specific_file("a.bin"), 0);
    EXPECT_EQ(read(image("a.bin.spec")),
              "VENDOR=\nEQUIPMENT_LIST=\nSOFTWARE_VERSION=\nMD5_SUM=0123456789abcdef0123456789abcdef\n");
    EXPECT_EQ(cache().files_stamp.tv_sec, 0);
    list();
    AcsFirmwareSpecific &specific = cache().specifics[0];
    EXPECT_EQ(specific.has_spec, 1);
    std::strcpy(specific.vendor, "ACME");
    std::strcpy(specific.software_version, "9");
    EXPECT_EQ(set_specific_parameters(0), 0);
    EXPECT_EQ(read(image("a.bin.spec")),
              "VENDOR=ACME\nEQUIPMENT_LIST=\nSOFTWARE_VERSION=9\nMD5_SUM=0123456789abcdef0123456789abcdef\n");
    EXPECT_NE(cache().files_stamp.tv_sec, 0);
    EXPECT_EQ(delete_specific_file("a.bin"), 0);
    EXPECT_EQ(read(image("a.bin.spec")), std::nullopt);
    EXPECT_EQ(cache().files_stamp.tv_sec, 0);
    EXPECT_EQ(delete_specific_file("a.bin"), -1);
}

TEST_F(FirmwareCatalogueTest, ReportsWhyAParameterFileWasNotWritten) {
    stand_in("sudo", "");
    EXPECT_EQ(create_specific_file("missing"), -1);
    EXPECT_EQ(board.log.back(),
              "3 create_specific_file : unable to calculate MD5 for " + image("missing") + "\n");
    write(image("a"), "");
    list();
    std::filesystem::create_directory(image("a.spec"));
    EXPECT_EQ(create_specific_file("a"), -1);
    EXPECT_EQ(board.log.back(),
              "3 create_specific_file : cf_SetParam() failed 1, err=FILE_OPEN_FOR_WRITING_FAILED(3).\n");
    EXPECT_EQ(set_specific_parameters(0), -1);
    EXPECT_EQ(board.log.back(),
              "3 set_specific_parameters : cf_SetParam() failed 1, err=FILE_OPEN_FOR_WRITING_FAILED(3).\n");
    EXPECT_EQ(set_specific_parameters(-1), -1);
    EXPECT_EQ(set_specific_parameters(64), -1);
    board.md5.clear();
    EXPECT_EQ(create_specific_file("a"), -1);
    EXPECT_TRUE(commands().empty());
}

TEST_F(FirmwareCatalogueTest, KeepsToItsDirectory) {
    write(at("/mnt/fs/tools/outside"), "kept");
    write(at("/mnt/fs/tools/outside.spec"), "kept");
    for (const char *name : {"../outside", "", ".", "..", "a/b", "a\nb", "a\rb"}) {
        EXPECT_EQ(create_specific_file(name), -1) << name;
        EXPECT_EQ(delete_specific_file(name), -1) << name;
    }
    EXPECT_EQ(create_specific_file(nullptr), -1);
    EXPECT_EQ(delete_specific_file(nullptr), -1);
    for (const char *name : {"../outside", ""}) {
        std::strcpy(cache().files[5].file_name, name);
        EXPECT_EQ(set_specific_parameters(5), -1) << name;
    }
    EXPECT_EQ(read(at("/mnt/fs/tools/outside.spec")), "kept");
    EXPECT_EQ(read(image(".spec")), std::nullopt);
    write(image("b"), "");
    list();
    EXPECT_EQ(remove_firmware_file(-1), -1);
    EXPECT_EQ(remove_firmware_file(1), -1);
    std::strcpy(cache().files[0].file_name, "../outside");
    EXPECT_EQ(remove_firmware_file(0), -1);
    EXPECT_EQ(read(at("/mnt/fs/tools/outside")), "kept");
    // A name that fills its record may be cut and so be another file's.
    const std::string longest(254, 'n');
    write(image(longest), "");
    std::strcpy(cache().files[0].file_name, longest.c_str());
    EXPECT_EQ(remove_firmware_file(0), -1);
    EXPECT_EQ(read(image(longest)), "");
    std::strcpy(cache().files[0].file_name, "b");
    EXPECT_EQ(remove_firmware_file(0), 0);
    EXPECT_EQ(read(image("b")), std::nullopt);
    EXPECT_EQ(cache().files_stamp.tv_sec, 0);
}

TEST_F(FirmwareCatalogueTest, CutsTextsWithinTheirBounds) {
    EXPECT_EQ(taken(get_acs_firmware_name("")), image(""));
    EXPECT_EQ(taken(get_acs_firmware_name("a")), image("a"));
    EXPECT_EQ(taken(get_acs_firmware_name(nullptr)), image(""));
    EXPECT_EQ(taken(get_sub_str("abcdef", 2, 3)), "cde");
    EXPECT_EQ(taken(get_sub_str("abc", 2, 30)), "c");
    EXPECT_EQ(taken(get_sub_str("abc", 4, 1)), "");
    EXPECT_EQ(taken(get_sub_str("abc", 1, -1)), "");
    EXPECT_EQ(taken(get_filename_from_path("/a/b.bin")), "b.bin");
    EXPECT_EQ(taken(get_filename_from_path("a\\b")), "b");
    EXPECT_EQ(taken(get_filename_from_path("b")), "b");
    for (const char *path : {"a/", "a\\"}) {
        EXPECT_EQ(get_filename_from_path(path), nullptr);
    }
    EXPECT_EQ(get_filename_from_path(nullptr), nullptr);
    EXPECT_EQ(check_if_spec_file(nullptr), 0);
    EXPECT_EQ(check_if_spec_file(".spec"), 0);
    EXPECT_EQ(check_if_spec_file("a.spec"), 1);
    EXPECT_EQ(check_if_spec_file("a.speck"), 0);
}

}  // namespace
