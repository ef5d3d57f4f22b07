// The firmware tables: their rows, every column, and what a SET leaves in files and sends to cards.
#include <cstring>
#include <filesystem>

#include "module/firmware/acs_firmware_operations.h"
#include "module/operations/auto_update.h"
#include "support/file_tree.h"
#include "support/snmp_calls.h"
#include "wire/bytes.h"

#define DECLARE_TABLE(T)                           \
    extern "C" next_index_function T##_next_index; \
    extern "C" module_handler_function T##_module_handler

DECLARE_TABLE(tarnONTFirmwaresFilesTable);
DECLARE_TABLE(tarnONTFirmwaresSpecificsTable);
DECLARE_TABLE(tarnONTFWUpdateSchedulerTable);
DECLARE_TABLE(tarnONTAutoUpdateTable);
DECLARE_TABLE(tarnOLTUpdateFirmwareTable);
DECLARE_TABLE(tarnONTMassUpdateFirmwareTable);
extern "C" void reset_files_to_commit(void);
extern "C" void add_to_commit(const char *name);
extern "C" int commit_files(void);

namespace {

// What net-snmp makes of noSuchInstance and noSuchObject once the first phase is over.
constexpr int no_such_row = SNMP_ERR_NOSUCHNAME;

// The varbinds of one request, for one row each, phase by phase as the host calls them.
struct Change {
    int column;
    IndexValues index;
    Value value;
};

int set_all(module_handler_function *handler, const std::vector<Change> &changes) {
    static int row = 0;
    std::vector<std::function<Outcome(int)>> variables;
    for (const Change &change : changes) {
        variables.push_back([handler, &change](int mode) {
            return call_iterator(handler, mode, change.column, change.index, &row, &change.value);
        });
    }
    return set_together(variables);
}

class FirmwareTablesTest : public Started<FileTest, 2> {
  protected:
    static std::string image(const std::string &name) { return at("/mnt/fs/tools/cpe/" + name); }
    static Outcome get(module_handler_function *handler, int column, const IndexValues &index) {
        int row = 0;
        return call_iterator(handler, MODE_GET, column, index, &row);
    }
};

// ---- Files ----

TEST_F(FirmwareTablesTest, ListsAndRemovesImages) {
    write(image("a.bin"), "");
    board.headers[image("a.bin")] = {0x01020003, 4, "first\nline"};
    const auto handler = tarnONTFirmwaresFilesTable_module_handler;
    EXPECT_EQ(indices_of(tarnONTFirmwaresFilesTable_next_index, 16, {0}), (std::vector<IndexValues>{{1}}));
    expect_readings([&](int column) { return get(handler, column, {1}); }, is_integer(1, 1),
                    is_octets(2, "a.bin"), is_octets(3, "1.2.3.4"), is_octets(4, "first line"),
                    is_number(10, 0), is_missing(5));
    for (const int row : {0, 2, 65}) {
        EXPECT_EQ(get(handler, 2, {row}).error, SNMP_NOSUCHINSTANCE);
    }
    EXPECT_EQ(call_iterator(handler, MODE_GET, 2, {1}, nullptr).error, SNMP_NOSUCHINSTANCE);

    std::string removed;
    board.remove_firmware = [&](const char *name) {
        removed += name;
        return removed == "a.bin" ? 0 : -1;
    };
    EXPECT_EQ(set_all(handler, {{2, {1}, octets_value("x")}}), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set_all(handler, {{10, {1}, integer_value(1)}}), SNMP_ERR_WRONGTYPE);
    EXPECT_NE(get_acs_firmware_cache()->files_stamp.tv_sec, 0);
    EXPECT_EQ(set_all(handler, {{10, {1}, unsigned_value(2)}}), 0);
    EXPECT_EQ(removed, "");
    EXPECT_EQ(get_acs_firmware_cache()->files_stamp.tv_sec, 0);
    write(image("a.bin.spec"), "MD5_SUM=0\n");
    EXPECT_EQ(set_all(handler, {{10, {1}, unsigned_value(1)}}), 0);
    EXPECT_EQ(removed, "a.bin");
    EXPECT_EQ(read(image("a.bin.spec")), std::nullopt);
    EXPECT_EQ(set_all(handler, {{10, {1}, unsigned_value(1)}}), SNMP_ERR_GENERR);
    // A cut name may be another file's.
    std::strcpy(get_acs_firmware_cache()->files[0].file_name, std::string(254, 'n').c_str());
    removed.clear();
    EXPECT_EQ(set_all(handler, {{10, {1}, unsigned_value(1)}}), SNMP_ERR_GENERR);
    EXPECT_EQ(removed, "");
}

// ---- Specifics ----

TEST_F(FirmwareTablesTest, EditsParameterFiles) {
    const auto handler = tarnONTFirmwaresSpecificsTable_module_handler;
    const auto walk = [] { return indices_of(tarnONTFirmwaresSpecificsTable_next_index, 16, {""}); };
    write(image("a.bin"), "");
    write(image("b.bin"), "");
    EXPECT_TRUE(walk().empty());
    EXPECT_EQ(set_all(handler, {{2, {"b.bin"}, octets_value("1")}}), no_such_row);
    EXPECT_EQ(set_all(handler, {{10, {"b.bin"}, integer_value(6)}}), no_such_row);
    EXPECT_EQ(set_all(handler, {{10, {"b.bin"}, integer_value(4)}}), 0);
    EXPECT_EQ(walk(), (std::vector<IndexValues>{{"b.bin"}}));
    EXPECT_EQ(set_all(handler, {{10, {"b.bin"}, integer_value(4)}}), 0);  // it exists: nothing

    EXPECT_EQ(set_all(handler, {{2, {"b.bin"}, octets_value("1.0=x")},
                                {3, {"b.bin"}, octets_value("A,B")},
                                {4, {"b.bin"}, octets_value("ACME")}}),
              0);
    EXPECT_EQ(read(image("b.bin.spec")),
              "VENDOR=ACME\nEQUIPMENT_LIST=A,B\nSOFTWARE_VERSION=1.0=x\nMD5_SUM="
              "0123456789abcdef0123456789abcdef\n");
    expect_readings([&](int column) { return get(handler, column, {"b.bin"}); }, is_octets(1, "b.bin"),
                    is_octets(2, "1.0=x"), is_octets(3, "A,B"), is_octets(4, "ACME"), is_number(10, 1),
                    is_missing(5));
    EXPECT_EQ(get(handler, 2, {"a.bin"}).error, SNMP_NOSUCHINSTANCE);

    const std::pair<Change, int> refused[] = {
        {{1, {"b.bin"}, octets_value("x")}, SNMP_ERR_NOTWRITABLE},
        {{2, {"b.bin"}, octets_value(std::string(64, 'x'))}, SNMP_ERR_WRONGLENGTH},
        {{2, {"b.bin"}, octets_value("1\nMD5_SUM=0")}, SNMP_ERR_WRONGVALUE},
        {{3, {"b.bin"}, octets_value(std::string(1024, 'x'))}, SNMP_ERR_WRONGLENGTH},
        {{3, {"b.bin"}, octets_value(std::string("a\0b", 3))}, SNMP_ERR_WRONGVALUE},
        {{4, {"b.bin"}, octets_value("ABC")}, SNMP_ERR_WRONGLENGTH},
        {{4, {"b.bin"}, octets_value("AB\rC")}, SNMP_ERR_WRONGVALUE},
        {{10, {"b.bin"}, unsigned_value(4)}, SNMP_ERR_WRONGTYPE}};
    for (const auto &[change, error] : refused) {
        EXPECT_EQ(set_all(handler, {change}), error) << change.column;
    }
    for (const std::string &name :
         {std::string("../b.bin"), std::string("b.bin.spec"), std::string("b.bin\0x", 7),
          std::string("versions-prio.txt"), std::string(300, 'x'), std::string()}) {
        EXPECT_EQ(set_all(handler, {{10, {name}, integer_value(4)}}), SNMP_ERR_GENERR) << name;
    }
    // A SET that fails leaves the parameter files as they were.
    const auto spec = read(image("b.bin.spec"));
    const Change fails = {10, {"none.bin"}, integer_value(4)};
    board.md5.clear();
    EXPECT_EQ(set_all(handler, {{10, {"b.bin"}, integer_value(6)}, fails}), SNMP_ERR_GENERR);
    EXPECT_EQ(read(image("b.bin.spec")), spec);
    board.md5 = std::string(32, '1');
    EXPECT_EQ(set_all(handler, {{10, {"a.bin"}, integer_value(4)}, fails}), SNMP_ERR_GENERR);
    EXPECT_EQ(read(image("a.bin.spec")), std::nullopt);
    EXPECT_EQ(walk(), (std::vector<IndexValues>{{"b.bin"}}));
    EXPECT_EQ(set_all(handler, {{10, {"b.bin"}, integer_value(6)}}), 0);
    EXPECT_FALSE(std::filesystem::exists(image("b.bin.spec")));
    EXPECT_TRUE(walk().empty());
}

TEST_F(FirmwareTablesTest, CommitsAnImageOnceAndAtMostSixteen) {
    for (int i = 0; i < 18; ++i) {
        write(image("f" + std::to_string(i)), "");
        ASSERT_EQ(create_specific_file(("f" + std::to_string(i)).c_str()), 0);
    }
    get_files_list();
    const auto changed = [] {
        int n = 0;
        for (int i = 0; i < 18; ++i) {
            n += read(image("f" + std::to_string(i) + ".spec")).value().starts_with("VENDOR=NEWV") ? 1 : 0;
        }
        return n;
    };
    std::vector<Change> changes;
    for (int i = 0; i < 17; ++i) {
        changes.push_back({4, {"f" + std::to_string(i)}, octets_value("NEWV")});
        changes.push_back({2, {"f" + std::to_string(i)}, octets_value("2")});
    }
    EXPECT_EQ(set_all(tarnONTFirmwaresSpecificsTable_module_handler, changes), 0);
    EXPECT_EQ(changed(), 16);

    // The first failure ends the commit and empties the set.
    stand_in("sudo", "");
    std::filesystem::remove(image("f0.spec"));
    std::filesystem::create_directory(image("f0.spec"));
    EXPECT_EQ(set_all(tarnONTFirmwaresSpecificsTable_module_handler, {{4, {"f0"}, octets_value("OLDV")}}),
              SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(commit_files(), 0);
    reset_files_to_commit();
    add_to_commit("unknown");
    EXPECT_EQ(commit_files(), 0);
}

// ---- Scheduler ----

Bytes one_task() {
    Bytes payload(6 + 159, 0);
    payload[2] = 1;
    std::uint8_t *task = &payload[6];
    tarn::store_le32(task + 2, 0x80000001);
    task[6] = 0;
    task[7] = 1;
    std::memcpy(task + 8, "ABCD\x01\x02\x03\x04", 8);
    task[16] = 7;
    tarn::store_le32(task + 17, 300);
    tarn::store_le16(task + 23, 0x0203);
    std::memset(task + 25, 'f', 128);
    tarn::store_le16(task + 157, 0xFFFE);
    return payload;
}

TEST_F(FirmwareTablesTest, ServesScheduledUpdates) {
    board.answer(225, one_task());
    const auto handler = tarnONTFWUpdateSchedulerTable_module_handler;
    const auto rows = walk_iterator(tarnONTFWUpdateSchedulerTable_next_index, 2, {0, 0});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].index[0], 3);
    const IndexValues index = rows[0].index;
    EXPECT_EQ(static_cast<std::uint32_t>(index[1].number), 0x80000001U);
    expect_readings([&](int column) { return get(handler, column, index); }, is_number(1, 3),
                    is_number(2, 0x80000001L), is_octets(3, "ABCD\x01\x02\x03\x04"), is_number(4, 0x0203),
                    is_octets(5, std::string(128, 'f')), is_number(6, 0xFFFE), is_number(7, 7),
                    is_number(8, 300), is_number(9, 1), is_number(10, 1), is_missing(11));
    EXPECT_EQ(get(handler, 3, {3, 5}).error, SNMP_NOSUCHOBJECT);
    EXPECT_TRUE(walk_iterator(tarnONTFWUpdateSchedulerTable_next_index, 3, {0, 0}).empty());
}

TEST_F(FirmwareTablesTest, SchedulesUpdates) {
    board.answer(225, one_task());
    board.answer(222, {});
    board.answer(223, {});
    walk_iterator(tarnONTFWUpdateSchedulerTable_next_index, 2, {0, 0});
    const auto handler = tarnONTFWUpdateSchedulerTable_module_handler;
    const IndexValues fresh{3, 9};
    const IndexValues existing{3, static_cast<int>(0x80000001)};
    const Change create{10, fresh, integer_value(4)};
    const Change serial{3, fresh, octets_value("WXYZ1234")};
    const Change file{5, fresh, octets_value("fw")};
    const Change channel{7, fresh, unsigned_value(6)};
    const Change ont{8, fresh, unsigned_value(258)};
    const Change by_number{9, fresh, integer_value(2)};

    EXPECT_EQ(set_all(handler, {create, serial, file}), 0);
    EXPECT_EQ(board.count(222), 1);
    Bytes expected(143, 0);
    std::memcpy(expected.data(), "WXYZ1234", 8);
    expected[13] = 1;
    expected[15] = 'f';
    expected[16] = 'w';
    EXPECT_EQ(board.last_payload(), expected);
    EXPECT_EQ(set_all(handler, {by_number, channel, ont, file, create}), 0);
    std::memset(expected.data(), 0, 8);
    expected[8] = 6;
    expected[9] = 2;
    expected[10] = 1;
    EXPECT_EQ(board.last_payload(), expected);

    const std::vector<Change> incomplete[] = {{create, file},
                                              {create, serial},
                                              {create, file, {3, fresh, octets_value(std::string(8, '\0'))}},
                                              {create, file, serial, by_number},
                                              {create, file, by_number, channel},
                                              {create, file, by_number, ont}};
    for (const auto &changes : incomplete) {
        EXPECT_EQ(set_all(handler, changes), SNMP_ERR_COMMITFAILED);
    }
    const std::vector<Change> inconsistent[] = {{serial, serial},
                                                {file, file},
                                                {channel, channel},
                                                {ont, ont},
                                                {{10, existing, integer_value(4)}},
                                                {file, {7, {4, 9}, unsigned_value(1)}}};
    for (const auto &changes : inconsistent) {
        EXPECT_EQ(set_all(handler, changes), SNMP_ERR_INCONSISTENTNAME);
    }
    EXPECT_EQ(set_all(handler, {{4, existing, integer_value(1)}}), SNMP_ERR_NOTWRITABLE);
    EXPECT_EQ(set_all(handler, {{3, fresh, octets_value("short")}}), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set_all(handler, {{10, fresh, integer_value(6)}}), no_such_row);
    EXPECT_EQ(set_all(handler, {file}), 0);  // without a row status nothing is sent
    EXPECT_EQ(board.count(222), 2);

    EXPECT_EQ(set_all(handler, {{10, existing, integer_value(6)}}), 0);
    EXPECT_EQ(board.last_payload(), (Bytes{'A', 'B', 'C', 'D', 1, 2, 3, 4, 0, 0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(set_all(handler, {{9, existing, integer_value(2)}, {10, existing, integer_value(6)}}), 0);
    EXPECT_EQ(board.last_payload(), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 7, 0x2C, 1, 0, 0, 1, 0}));
    // Each variable tries until one succeeds.
    board.refuse(223, 6);
    const int before = board.count(223);
    EXPECT_EQ(set_all(handler, {{9, existing, integer_value(1)}, {10, existing, integer_value(6)}}),
              SNMP_ERR_COMMITFAILED);
    EXPECT_EQ(board.count(223), before + 2);
}

// ---- Automatic updates ----

TEST_F(FirmwareTablesTest, EditsTheRulesOfAutomaticUpdates) {
    const std::string path = at("/mnt/ram/config/ont_auto_update_entries.txt");
    const std::string head = "\nDescription  EquipmentID  FWVersion  FileName\n\n";
    const auto handler = tarnONTAutoUpdateTable_module_handler;
    write(path, head + "old|EQ|1|f|postpone\n");
    EXPECT_EQ(indices_of(tarnONTAutoUpdateTable_next_index, 16, {""}), (std::vector<IndexValues>{{"old"}}));
    expect_readings([&](int column) { return get(handler, column, {"old"}); }, is_octets(2, "EQ"),
                    is_octets(3, "1"), is_octets(4, "f"), is_integer(5, 2), is_number(10, 1), is_missing(1));
    EXPECT_EQ(get(handler, 2, {"no"}).error, SNMP_NOSUCHINSTANCE);

    EXPECT_EQ(set_all(handler, {{2, {"new"}, octets_value("E2")},
                                {3, {"new"}, octets_value("2")},
                                {4, {"new"}, octets_value("g")},
                                {5, {"new"}, integer_value(1)},
                                {10, {"new"}, integer_value(4)}}),
              0);
    const std::string two = head + "old|EQ|1|f|postpone\nnew|E2|2|g|immediate\n";
    EXPECT_EQ(read(path), two);
    EXPECT_EQ(set_all(handler, {{5, {"old"}, integer_value(0)}}), 0);  // without a row status: nothing
    EXPECT_EQ(read(path), two);

    const std::vector<Change> inconsistent[] = {
        {{10, {"old"}, integer_value(4)}},  {{2, {"a"}, octets_value("x")}, {3, {"b"}, octets_value("y")}},
        {{10, {""}, integer_value(4)}},     {{10, {"a|b"}, integer_value(4)}},
        {{10, {"a\nb"}, integer_value(4)}}, {{10, {std::string(32, 'd')}, integer_value(4)}},
    };
    for (const auto &changes : inconsistent) {
        EXPECT_EQ(set_all(handler, changes), SNMP_ERR_INCONSISTENTNAME);
    }
    EXPECT_TRUE(board.logged(
        "3 tarnONTAutoUpdateTable_module_handler : attempt to edit different records in one request\n"));
    for (const char *value : {"a|b", "a\nb", "a\rb"}) {
        for (const int column : {2, 3, 4}) {
            EXPECT_EQ(set_all(handler, {{column, {"x"}, octets_value(value)}}), SNMP_ERR_WRONGVALUE);
        }
    }
    EXPECT_EQ(set_all(handler, {{2, {"x"}, octets_value(std::string(32, 'e'))}}), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set_all(handler, {{4, {"x"}, octets_value(std::string(255, 'f'))}}), SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set_all(handler, {{5, {"x"}, integer_value(4)}}), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_all(handler, {{10, {"x"}, integer_value(6)}}), no_such_row);
    EXPECT_EQ(read(path), two);

    EXPECT_EQ(set_all(handler, {{10, {"old"}, integer_value(6)}}), 0);
    EXPECT_EQ(read(path), head + "new|E2|2|g|immediate\n");
    // A line with an empty field could not be read back.
    EXPECT_EQ(set_all(handler, {{10, {"bare"}, integer_value(4)}}), SNMP_ERR_INCONSISTENTVALUE);
    EXPECT_EQ(board.log.back(),
              "3 tarnONTAutoUpdateTable_module_handler : a rule with an empty field is refused : bare\n");
    // The mode is global unless said. What the file does not take is not in the list either.
    const std::vector<Change> whole = {{2, {"b"}, octets_value("E")},
                                       {3, {"b"}, octets_value("3")},
                                       {4, {"b"}, octets_value("h")},
                                       {10, {"b"}, integer_value(4)}};
    {
        const FullDisk full;
        EXPECT_EQ(set_all(handler, whole), SNMP_ERR_COMMITFAILED);
        EXPECT_EQ(set_all(handler, {{10, {"new"}, integer_value(6)}}), SNMP_ERR_COMMITFAILED);
    }
    EXPECT_EQ(indices_of(tarnONTAutoUpdateTable_next_index, 16, {""}), (std::vector<IndexValues>{{"new"}}));
    EXPECT_EQ(read(path), head + "new|E2|2|g|immediate\n");
    EXPECT_EQ(set_all(handler, whole), 0);
    EXPECT_EQ(read(path), head + "new|E2|2|g|immediate\nb|E|3|h|global\n");
}

// ---- Firmware of cards and of all their ONTs ----

TEST_F(FirmwareTablesTest, StartsUpdatesOfACard) {
    board.answer(17, {});
    for (const auto handler :
         {tarnOLTUpdateFirmwareTable_module_handler, tarnONTMassUpdateFirmwareTable_module_handler}) {
        const bool is_olt = handler == tarnOLTUpdateFirmwareTable_module_handler;
        EXPECT_EQ(get(handler, 1, {3}).integer, 3);
        EXPECT_EQ(get(handler, 2, {3}).integer, 0);
        EXPECT_EQ(get(handler, 3, {3}).error, SNMP_NOSUCHOBJECT);
        EXPECT_EQ(call_iterator(handler, MODE_GET, 2, {3}, nullptr).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(set_all(handler, {{1, {3}, unsigned_value(1)}}),
                  is_olt ? SNMP_ERR_NOCREATION : SNMP_ERR_NOTWRITABLE);
        EXPECT_EQ(set_all(handler, {{2, {3}, integer_value(1)}}), SNMP_ERR_WRONGTYPE);
        EXPECT_EQ(set_all(handler, {{2, {3}, unsigned_value(2)}}), 0);
        EXPECT_EQ(board.sent.size(), is_olt ? 0U : 1U);
        EXPECT_EQ(set_all(handler, {{2, {3}, unsigned_value(1)}}), 0);
        EXPECT_EQ(board.count(17), 1);
    }
    EXPECT_EQ(walk_iterator(tarnOLTUpdateFirmwareTable_next_index, 2, {0}).at(0).index, (IndexValues{3}));
    EXPECT_EQ(walk_iterator(tarnONTMassUpdateFirmwareTable_next_index, 2, {0}).size(), 1U);
    board.silence(17);
    EXPECT_EQ(set_all(tarnOLTUpdateFirmwareTable_module_handler, {{2, {3}, unsigned_value(1)}}),
              SNMP_ERR_COMMITFAILED);
}

}  // namespace
