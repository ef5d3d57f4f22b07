// The rules of automatic updates: what is read from their file and what is written there.
#include "module/operations/auto_update.h"

#include <cstring>
#include <filesystem>

#include "module/store/auto_update_sections.h"
#include "support/file_tree.h"
#include "tarn/host_services.h"

namespace {

const std::string header_block = "\nDescription  EquipmentID  FWVersion  FileName\n\n";

class AutoUpdateTest : public Started<FileTest> {
  protected:
    const std::string path = at("/mnt/ram/config/ont_auto_update_entries.txt");

    static std::uint32_t count() {
        return tarn::chassis_sections<tarn::AutoUpdateSections>()->auto_update_count;
    }
    static void reload() {
        tarn::chassis_sections<tarn::AutoUpdateSections>()->auto_update_stamp.clear();
        get_ont_auto_update_entries();
    }
    static std::string keys() {
        std::string all;
        for (std::uint32_t i = 0; i < count(); ++i) {
            all += tarn::chassis_sections<tarn::AutoUpdateSections>()->auto_update_entries[i]->description;
        }
        return all;
    }
};

AutoUpdateEntry entry_of(const std::string &description, std::uint32_t mode) {
    AutoUpdateEntry entry{};
    std::strcpy(entry.description, description.c_str());
    std::strcpy(entry.equipment_id, "EQ");
    std::strcpy(entry.fw_version, "1.0");
    std::strcpy(entry.file_name, "fw.bin");
    entry.mode = mode;
    return entry;
}

TEST_F(AutoUpdateTest, ParsesALine) {
    struct {
        const char *line;
        std::uint32_t mode;
    } const modes[] = {
        {"a|b|c|d|disable\n", 0},
        {"a|b|c|d|immediate\n", 1},
        {"a|b|c|d|postpone\n", 2},
        {"a|b|c|d|global\n", 3},
        {"a|b|c|d|immediate", 255},
        {"a|b|c|d|immediate|x\n", 255},
        {"a|b|c|d|globalx|x\n", 3},
        {"a|b|c|d|\n", 255},
        {"a|b|c|d|a word of more than sixteen\n", 255},
    };
    for (const auto &m : modes) {
        AutoUpdateEntry *entry = parse_entry(m.line);
        ASSERT_NE(entry, nullptr) << m.line;
        EXPECT_EQ(entry->mode, m.mode) << m.line;
        EXPECT_STREQ(entry->description, "a");
        EXPECT_STREQ(entry->file_name, "d");
        bfree("", 0, entry);
    }
    for (const char *line : {"a||c|d|global\n", "a|b|c|d", "", "||||\n"}) {
        EXPECT_EQ(parse_entry(line), nullptr) << line;
    }
    const std::string wide(300, 'w');
    AutoUpdateEntry *entry = parse_entry((wide + "|" + wide + "|" + wide + "|" + wide + "|global\n").c_str());
    EXPECT_EQ(entry->description, std::string(31, 'w'));
    EXPECT_EQ(entry->equipment_id, std::string(31, 'w'));
    EXPECT_EQ(entry->fw_version, std::string(31, 'w'));
    EXPECT_EQ(entry->file_name, std::string(254, 'w'));
    bfree("", 0, entry);
}

TEST_F(AutoUpdateTest, LoadsTheFileAndLoadsItAgainAfterADelete) {
    EXPECT_EQ(get_ont_auto_update_entries(), nullptr);
    EXPECT_EQ(board.log.back(), "3 get_ont_auto_update_entries : unable to open file\n");
    write(path, header_block);
    reload();
    EXPECT_EQ(count(), 0U);
    write(path, header_block + "A|b|c|d|global\nA||c|d|global\nB|b|c|d|disable\nC|b|c|d|global\n");
    reload();
    EXPECT_EQ(keys(), "ABC");
    EXPECT_EQ(board.log.back(), "3 get_ont_auto_update_entries : unable to parse string : A||c|d|global\n\n");
    const std::string wide = "|b|c|d|" + std::string(4082, 'g') + "\n";  // after a one-letter key 4091 bytes
    write(path, "A" + wide + "fills up" + wide + "B|b|c|d|disable\nC|b|c|d|global\n");
    reload();
    EXPECT_EQ(keys(), "ABC");
    EXPECT_EQ(board.log.back(), "3 get_ont_auto_update_entries : skipped a line of 4098 bytes\n");
    EXPECT_EQ(delete_ont_autoupdate_entry("B"), 0);
    EXPECT_EQ(keys(), "AC");
    EXPECT_EQ(delete_ont_autoupdate_entry("B"), -1);
    EXPECT_EQ(board.log.back(),
              "3 delete_ont_autoupdate_entry : unable to find entry with description : B\n");
    reload();
    EXPECT_EQ(keys(), "ABC");
    write(path, "A|b|c|d|global\n");
    get_ont_auto_update_entries();
    EXPECT_EQ(count(), 3U);  // fresh
    reload();
    EXPECT_EQ(keys(), "A");
}

TEST_F(AutoUpdateTest, WritesWhatIsReadBackEqual) {
    EXPECT_EQ(generate_ont_autoupdate_file(), -1);
    EXPECT_EQ(board.log.back(), "3 generate_ont_autoupdate_file : data never received\n");
    get_ont_auto_update_entries();
    EXPECT_EQ(generate_ont_autoupdate_file(), 0);
    EXPECT_EQ(read(path), header_block);
    const std::pair<const char *, std::uint32_t> rules[] = {
        {"A", 0}, {"B", 1}, {"C", 2}, {"D", 3}, {"E", 255}};
    for (const auto &[description, mode] : rules) {
        const AutoUpdateEntry entry = entry_of(description, mode);
        EXPECT_EQ(add_ont_autoupdate_entry(&entry), 0);
    }
    AutoUpdateEntry unterminated;
    std::memset(&unterminated, 'u', sizeof unterminated);
    EXPECT_EQ(add_ont_autoupdate_entry(&unterminated), 0);
    EXPECT_EQ(tarn::chassis_sections<tarn::AutoUpdateSections>()->auto_update_entries[5]->description,
              std::string(31, 'u'));
    EXPECT_EQ(tarn::chassis_sections<tarn::AutoUpdateSections>()->auto_update_entries[5]->file_name,
              std::string(254, 'u'));
    EXPECT_EQ(delete_ont_autoupdate_entry(std::string(31, 'u').c_str()), 0);
    EXPECT_EQ(generate_ont_autoupdate_file(), 0);
    const std::string written = header_block +
                                "A|EQ|1.0|fw.bin|disable\nB|EQ|1.0|fw.bin|immediate\n"
                                "C|EQ|1.0|fw.bin|postpone\nD|EQ|1.0|fw.bin|global\nE|EQ|1.0|fw.bin|global\n";
    EXPECT_EQ(read(path), written);
    reload();
    EXPECT_EQ(keys(), "ABCDE");
    EXPECT_EQ(generate_ont_autoupdate_file(), 0);
    EXPECT_EQ(read(path), written);

    EXPECT_EQ(delete_ont_autoupdate_entry("A"), 0);
    {
        const FullDisk full;
        EXPECT_EQ(generate_ont_autoupdate_file(), -1);
    }
    EXPECT_EQ(board.log.back(), "3 generate_ont_autoupdate_file : unable to open file\n");
    EXPECT_EQ(read(path), written);
}

TEST_F(AutoUpdateTest, HoldsAtMost1024Entries) {
    std::string lines;
    for (int i = 0; i < 1030; ++i) {
        lines += "r" + std::to_string(i) + "|b|c|d|global\n";
    }
    write(path, lines);
    reload();
    EXPECT_EQ(count(), 1024U);
    EXPECT_EQ(board.log.back(), "3 get_ont_auto_update_entries : more than 1024 entries\n");
    const AutoUpdateEntry entry = entry_of("new", 0);
    EXPECT_EQ(add_ont_autoupdate_entry(&entry), -1);
    EXPECT_EQ(delete_ont_autoupdate_entry("r1023"), 0);
    EXPECT_EQ(add_ont_autoupdate_entry(&entry), 0);
}

TEST_F(AutoUpdateTest, AsksTheFirstCardToReadTheFile) {
    board.answer(310, {});
    EXPECT_EQ(parse_ont_autoupdate_file(), 0);
    const Bytes expected = {54, 1, 1, 0, 0,  8, 0, 0, 3, 3, 38, 0, 1, 0, 0, 0,
                            36, 0, 0, 0, 32, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0, 0};
    EXPECT_EQ(board.sent.back().bytes, expected);
    board.silence(310);
    EXPECT_EQ(parse_ont_autoupdate_file(), -1);
    EXPECT_EQ(board.log.back(), "3 parse_ont_autoupdate_file : error on parse\n");
}

TEST_F(AutoUpdateTest, KeepsTheSwitchInItsFile) {
    const std::string file = at("/mnt/ram/config/ont_auto_update_set.txt");
    EXPECT_EQ(get_ont_fw_autoupdate_enabled_old(), 0);
    EXPECT_TRUE(board.log.empty());
    EXPECT_EQ(get_ont_fw_autoupdate(), 0);
    EXPECT_EQ(board.log.back(), "3 get_ont_fw_autoupdate : unable to open file : " + file + "\n");
    EXPECT_EQ(set_ont_fw_autoupdate_enabled(2), 0);
    EXPECT_EQ(read(file), "2\n");
    EXPECT_EQ(get_ont_fw_autoupdate(), 2);
    EXPECT_EQ(get_ont_fw_autoupdate_enabled_old(), 2);
    std::filesystem::remove_all(at("/mnt/ram"));
    EXPECT_EQ(set_ont_fw_autoupdate_enabled(1), -1);
    EXPECT_EQ(board.log.back(), "3 set_ont_fw_autoupdate_enabled : unable to open file for writing\n");
}

}  // namespace
