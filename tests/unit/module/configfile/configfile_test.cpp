// Parameter files: what each call leaves in the file and reports.
#include "module/configfile/configfile.h"

#include <filesystem>
#include <functional>

#include "module/configfile/param_set.h"
#include "support/file_tree.h"

namespace {

class ConfigFileTest : public FileTest {
  protected:
    const std::string path = at("/params");
    const char *file = path.c_str();
};

TEST_F(ConfigFileTest, ReplacesTheFileInOneStep) {
    namespace fs = std::filesystem;
    write(path, "a=1\n");
    constexpr auto mode = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
    fs::permissions(path, mode);
    const std::string link = at("/link");
    fs::create_symlink("params", link);
    {
        const FullDisk full;
        EXPECT_EQ(cf_SetParam(file, "a", "2", nullptr), 5U);
        EXPECT_EQ(cf_SetParam(link.c_str(), "b", "3", nullptr), 5U);
    }
    EXPECT_EQ(read(path), "a=1\n");
    fs::create_hard_link(path, at("/old"));  // as one sees it who has it open
    EXPECT_EQ(cf_SetParam(link.c_str(), "b", "3", nullptr), 0U);
    EXPECT_EQ(read(path), "a=1\nb=3\n");
    EXPECT_EQ(read(at("/old")), "a=1\n");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::status(path).permissions(), mode);
    for (const auto &entry : fs::directory_iterator(at("/"))) {
        EXPECT_EQ(entry.path().filename().string().find(".new"), std::string::npos) << entry.path();
    }
}

std::string numbered_lines(int count) {
    std::string lines;
    for (int i = 1; i <= count; ++i) {
        lines += "n" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    }
    return lines;
}

// A file before and after one call.
struct Case {
    const char *what;
    std::optional<std::string> before;
    std::function<std::uint32_t(const char *file)> call;
    std::uint32_t code;
    std::optional<std::string> after;
};

TEST_F(ConfigFileTest, WritesTheWholeFileOrLeavesItAlone) {
    const std::string longest_name(31, 'n');
    const std::string longest_value(1023, 'v');
    const Case cases[] = {
        {"a missing file is created", std::nullopt,
         [](const char *f) { return cf_SetParam(f, "A", "1", "B", "2", NULL); }, 0, "A=1\nB=2\n"},
        {"a value is replaced in its place, a new one appended", "A=1\nB=2\n",
         [](const char *f) { return cf_SetParam(f, "C", "3", "A", "x=y", NULL); }, 0, "A=x=y\nB=2\nC=3\n"},
        {"comments and lines without an equals sign are dropped", "#x=1\n\nword\na=b=c\n",
         [](const char *f) { return cf_SetParam(f, NULL); }, 0, "a=b=c\n"},
        {"the last of equal names counts, in the first one's place", "A=1\nB=2\nA=3\n",
         [](const char *f) { return cf_SetParam(f, NULL); }, 0, "A=3\nB=2\n"},
        {"a last line without a line feed is not seen and not kept", "A=1\nB=2",
         [](const char *f) { return cf_SetParam(f, "C", "3", NULL); }, 0, "A=1\nC=3\n"},
        {"a seventeenth name is dropped without an error", numbered_lines(16),
         [](const char *f) { return cf_SetParam(f, "new", "x", NULL); }, 0, numbered_lines(16)},
        {"pairs after a dropped one are dropped too", numbered_lines(16),
         [](const char *f) { return cf_SetParam(f, "n1", "one", "new", "x", "n2", "two", NULL); }, 0,
         "n1=one\n" + numbered_lines(16).substr(5)},
        {"a file of seventeen names keeps sixteen", numbered_lines(17),
         [](const char *f) { return cf_SetParam(f, NULL); }, 0, numbered_lines(16)},
        {"the longest name and value", std::nullopt,
         [&](const char *f) { return cf_SetParam(f, longest_name.c_str(), "v", NULL); }, 0,
         longest_name + "=v\n"},
        {"a longest value is cut with its line", std::nullopt,
         [&](const char *f) { return cf_SetParam(f, "EQUIPMENT_LIST", longest_value.c_str(), NULL); }, 0,
         "EQUIPMENT_LIST=" + longest_value.substr(0, 1008)},
        {"a name of 32 characters", "A=1\n",
         [&](const char *f) { return cf_SetParam(f, (longest_name + "n").c_str(), "v", NULL); }, 9, "A=1\n"},
        {"a value of 1024 characters", "A=1\n",
         [&](const char *f) { return cf_SetParam(f, "B", (longest_value + "v").c_str(), NULL); }, 10,
         "A=1\n"},
        {"an odd number of strings", "A=1", [](const char *f) { return cf_SetParam(f, "B", NULL); }, 1,
         "A=1"},
        {"more strings than the list holds", "A=1",
         [](const char *f) {
             return cf_DelParam(f, "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14",
                                "15", "16", "17", NULL);
         },
         8, "A=1"},
        {"removal closes the gap", "A=1\nB=2\nC=3\n",
         [](const char *f) { return cf_DelParam(f, "A", "B", NULL); }, 0, "C=3\n"},
        {"the last entry can go", "A=1\n", [](const char *f) { return cf_DelParam(f, "A", NULL); }, 0, ""},
        {"an absent name ends a removal without an error", "A=1\nB=2\n",
         [](const char *f) { return cf_DelParam(f, "no", "A", NULL); }, 0, "A=1\nB=2\n"},
        {"a missing file cannot be removed from", std::nullopt,
         [](const char *f) { return cf_DelParam(f, "A", NULL); }, 2, std::nullopt},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        std::filesystem::remove(path);
        if (c.before) {
            write(path, *c.before);
        }
        EXPECT_EQ(c.call(file), c.code);
        EXPECT_EQ(read(path), c.after);
    }
}

TEST_F(ConfigFileTest, ReadsIntoTheBuffersInFrontOfAFailure) {
    char a[1024] = "";
    char b[1024] = "";
    EXPECT_EQ(cf_GetParam(file, "A", a, NULL), 2U);
    write(path, "A=b=c\n#B=1\nC=3\n");
    EXPECT_EQ(cf_GetParam(file, "A", a, "B", b, NULL), 7U);
    EXPECT_STREQ(a, "b=c");
    EXPECT_EQ(cf_GetParam(file, "C", b, "A", NULL), 1U);
    EXPECT_STREQ(b, "");
    EXPECT_EQ(cf_GetParam(file, std::string(32, 'n').c_str(), b, NULL), 9U);
}

TEST_F(ConfigFileTest, ReadsACutValueAndCutsLongNamesAndLines) {
    char value[1024] = "";
    // A line of 1023 characters without its line feed fills the read buffer and counts as whole.
    write(path, "EQUIPMENT_LIST=" + std::string(1008, 'v') + "B=2\n");
    EXPECT_EQ(cf_GetParam(file, "EQUIPMENT_LIST", value, NULL), 0U);
    EXPECT_EQ(value, std::string(1008, 'v'));
    EXPECT_EQ(cf_GetParam(file, "B", value, NULL), 0U);
    EXPECT_STREQ(value, "2");

    write(path,
          std::string(40, 'n') + "=1\n" + std::string(20000, 'x') + "\n" + std::string(31, 'n') + "=2\n");
    EXPECT_EQ(cf_GetParam(file, std::string(31, 'n').c_str(), value, NULL), 0U);
    EXPECT_STREQ(value, "2");
    write(path, std::string("\0=1\nA=5\n", 9));
    EXPECT_EQ(cf_GetParam(file, "A", value, NULL), 0U);
    EXPECT_STREQ(value, "5");
}

TEST_F(ConfigFileTest, CopiesEntriesFromAPosition) {
    write(path, "A=1\nB=2\nC=3\n");
    char names[2][32] = {};
    char values[2][1024] = {};
    int count = 77;
    const auto get_from = [&](int start) {
        return cf_GetAllParam(file, start, &count, names[0], values[0], names[1], values[1], NULL);
    };
    EXPECT_EQ(get_from(-5), 0U);
    EXPECT_EQ(count, 2);
    EXPECT_STREQ(names[0], "A");
    EXPECT_EQ(get_from(2), 0U);
    EXPECT_EQ(count, 1);
    EXPECT_STREQ(names[0], "C");
    EXPECT_STREQ(values[0], "3");
    EXPECT_EQ(get_from(3), 0U);
    EXPECT_EQ(count, 0);
    count = 77;
    EXPECT_EQ(cf_GetAllParam(at("/missing").c_str(), 0, &count, names[0], values[0], NULL), 2U);
    EXPECT_EQ(count, 0);
}

TEST_F(ConfigFileTest, RefusesNullStringsInsideAList) {
    tarn::ParamSet set{};
    char name[32] = "A";
    char *strings[] = {name, nullptr};
    int count = 0;
    ASSERT_EQ(tarn::SetValue(set, "A", "1"), 0U);
    EXPECT_EQ(tarn::SetStructParam(set, 2, strings), 8U);
    EXPECT_EQ(tarn::GetStructParam(set, 2, strings), 8U);
    EXPECT_EQ(tarn::GetAllStructParam(set, 0, &count, 2, strings), 8U);
    EXPECT_EQ(tarn::DelStructParam(set, 1, strings + 1), 8U);
    EXPECT_STREQ(tarn::GetValue(set, "A"), "1");
}

TEST_F(ConfigFileTest, RepairsAFileThatCannotBeWrittenOnce) {
    const std::string deep = at("/new directory/params");
    stand_in("sudo", "");
    EXPECT_EQ(cf_SetParam(deep.c_str(), "A", "1", NULL), 3U);
    EXPECT_EQ(commands(), (std::vector<std::string>{"sudo touch " + deep, "sudo chmod 777 " + deep}));
    stand_in("sudo", R"sh(mkdir -p "$(dirname "$2")")sh");
    EXPECT_EQ(cf_SetParam(deep.c_str(), "A", "1", NULL), 0U);
    EXPECT_EQ(read(deep), "A=1\n");

    // Never with the rights of root on a path that leads elsewhere.
    stand_in("sudo", "");
    const std::size_t before = commands().size();
    for (const std::string &hostile : {at("/none/../x"), at("/none/x\ny"), at("/none/..")}) {
        EXPECT_EQ(cf_SetParam(hostile.c_str(), "A", "1", NULL), 3U);
    }
    EXPECT_EQ(commands().size(), before);
    EXPECT_EQ(cf_SetParam(at("/none/$(touch x); 'y'").c_str(), "A", "1", NULL), 3U);
    EXPECT_EQ(commands().back(), "sudo chmod 777 " + at("/none/$(touch x); 'y'"));
}

TEST_F(ConfigFileTest, RunsFormattedCommands) {
    EXPECT_EQ(DoSystemCmd("test %d = %s", 5, "5"), 0U);
    EXPECT_EQ(DoSystemCmd("exit %d", 3), 12U);
    const std::string long_word(5000, 'w');
    EXPECT_EQ(DoSystemCmd("test %s = %s", long_word.c_str(), long_word.c_str()), 0U);
}

TEST_F(ConfigFileTest, NamesCodesAndCommands) {
    const std::string errors =
        "OK WRONG_INCOMMING_PARAMETERS FILE_OPEN_FOR_READING_FAILED FILE_OPEN_FOR_WRITING_FAILED "
        "FSEEK_FAILED "
        "FWRITE_FAILED TOO_MANY_PARAMS PARAM_NOT_FOUND INTERNAL_ERROR TOO_LENGTH_NAME TOO_LENGTH_VALUE "
        "MALLOC_FAILED SYSTEM_CMD_FAILED __unknown_error__ ";
    std::string named;
    for (std::uint32_t code = 0; code < 14; ++code) {
        named += cf_ErrorToStr(code) + std::string(" ");
    }
    EXPECT_EQ(named, errors);
    const char *commands_by_code[] = {"set", "get", "get-all", "del", "__unknown_cmd__"};
    for (int cmd = 0; cmd < 5; ++cmd) {
        EXPECT_STREQ(CmdToStr(cmd), commands_by_code[cmd]);
    }
    EXPECT_STREQ(CmdToStr(-1), "__unknown_cmd__");
}

}  // namespace
