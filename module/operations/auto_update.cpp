#include "module/operations/auto_update.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "module/common/files.h"
#include "module/common/log.h"
#include "module/store/auto_update_sections.h"
#include "module/store/cached_query.h"

using namespace tarn;

namespace {

constexpr std::string_view entries_file = "/mnt/ram/config/ont_auto_update_entries.txt";
constexpr std::string_view switch_file = "/mnt/ram/config/ont_auto_update_set.txt";
constexpr std::string_view header = "Description  EquipmentID  FWVersion  FileName";
constexpr const char *mode_words[] = {"disable", "immediate", "postpone", "global"};
constexpr std::uint32_t global_mode = 3;
constexpr std::uint32_t unknown_mode = 255;
constexpr ssize_t longest_line = 4096;
constexpr std::size_t max_entries = std::tuple_size_v<decltype(AutoUpdateSections::auto_update_entries)>;

struct CloseFile {
    void operator()(std::FILE *stream) const { static_cast<void>(std::fclose(stream)); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File open_file(const std::string &path, const char *mode) {
    return File(std::fopen(path.c_str(), mode));
}

void free_entry(AutoUpdateEntry *&entry) {
    bfree(__FILE__, __LINE__, entry);
    entry = nullptr;
}

AutoUpdateEntry *new_entry(const char *caller) {
    auto *entry = static_cast<AutoUpdateEntry *>(balloc(__FILE__, __LINE__, sizeof(AutoUpdateEntry)));
    if (entry == nullptr) {
        log_add(log_error, "%s : memory allocation error. Tried to allocate %d bytes\n", caller,
                static_cast<int>(sizeof(AutoUpdateEntry)));
        return nullptr;
    }
    *entry = {};
    return entry;
}

// Cuts the text to what the cleared field holds before its NUL.
template <std::size_t Size>
void copy_text(char (&to)[Size], std::string_view text) {
    std::memcpy(to, text.data(), std::min(text.size(), Size - 1));
}

// A field of a record that somebody else filled, which may lack its NUL.
template <std::size_t Size>
std::string_view field_text(const char (&field)[Size]) {
    return {field, strnlen(field, Size)};
}

// The last character is taken for the line feed, whatever it is.
std::uint32_t mode_of(std::string_view token) {
    constexpr std::size_t longest = 15;
    token = token.substr(0, longest);
    if (!token.empty()) {
        token.remove_suffix(1);
    }
    const auto word = std::find(std::begin(mode_words), std::end(mode_words), token);
    return word != std::end(mode_words) ? static_cast<std::uint32_t>(word - std::begin(mode_words))
                                        : unknown_mode;
}

std::uint32_t load_entries(std::FILE *stream, AutoUpdateSections &db) {
    constexpr std::size_t first_size = 512;
    std::size_t size = first_size;
    char *line = static_cast<char *>(std::malloc(size));
    std::size_t n = 0;
    for (ssize_t length = getline(&line, &size, stream); length >= 1;
         length = getline(&line, &size, stream)) {
        if (length == 1 || std::string_view(line).starts_with(header)) {
            continue;
        }
        if (length > longest_line) {
            log_add(log_error, "%s : skipped a line of %zd bytes\n", "get_ont_auto_update_entries", length);
            continue;
        }
        if (n == max_entries) {
            log_add(log_error, "%s : more than %d entries\n", "get_ont_auto_update_entries",
                    static_cast<int>(max_entries));
            break;
        }
        AutoUpdateEntry *entry = parse_entry(line);
        if (entry == nullptr) {
            log_add(log_error, "%s : unable to parse string : %s\n", "get_ont_auto_update_entries", line);
            continue;
        }
        free_entry(db.auto_update_entries[n]);
        db.auto_update_entries[n++] = entry;
    }
    std::free(line);
    return static_cast<std::uint32_t>(n);
}

std::string file_text(const AutoUpdateSections &db) {
    std::string text = "\n" + std::string(header) + "\n\n";
    bool unknown = false;
    for (std::uint32_t i = 0; i < db.auto_update_count; ++i) {
        const AutoUpdateEntry &entry = *db.auto_update_entries[i];
        const bool known = entry.mode < std::size(mode_words);
        unknown = unknown || !known;
        for (const char *field : {entry.description, entry.equipment_id, entry.fw_version, entry.file_name}) {
            text.append(field).append("|");
        }
        text.append(mode_words[known ? entry.mode : global_mode]).append("\n");
    }
    if (unknown) {
        log_add(log_error, "%s : entries of unknown mode are written as %s\n", "generate_ont_autoupdate_file",
                mode_words[global_mode]);
    }
    return text;
}

// False where there is no such file.
bool read_switch(int &value) {
    value = 0;
    const File stream = open_file(rooted(switch_file), "r");
    if (stream == nullptr) {
        return false;
    }
    char line[16] = "";
    if (std::fgets(line, sizeof line, stream.get()) != nullptr) {
        value = static_cast<int>(std::strtol(line, nullptr, 10));
    }
    return true;
}

}  // namespace

AutoUpdateEntry **get_ont_auto_update_entries(void) {
    AutoUpdateSections *db = chassis_sections<AutoUpdateSections>();
    if (db == nullptr) {
        return nullptr;
    }
    if (!db->auto_update_stamp.expired()) {
        return db->auto_update_entries.data();
    }
    const File stream = open_file(rooted(entries_file), "r");
    if (stream == nullptr) {
        log_add(log_error, "%s : unable to open file\n", __func__);
        db->auto_update_stamp.set();
        return nullptr;
    }
    db->auto_update_count = load_entries(stream.get(), *db);
    std::for_each(db->auto_update_entries.begin() + db->auto_update_count, db->auto_update_entries.end(),
                  free_entry);
    db->auto_update_stamp.set();
    return db->auto_update_entries.data();
}

AutoUpdateEntry *parse_entry(const char *line) {
    std::string copy = line;
    char *rest = nullptr;
    const auto next_token = [&](char *from) { return strtok_r(from, "|", &rest); };
    const char *description = next_token(copy.data());
    const char *equipment_id = next_token(nullptr);
    const char *fw_version = next_token(nullptr);
    const char *file_name = next_token(nullptr);
    const char *mode = next_token(nullptr);
    AutoUpdateEntry *entry = mode != nullptr ? new_entry(__func__) : nullptr;
    if (entry == nullptr) {
        return nullptr;
    }
    copy_text(entry->description, description);
    copy_text(entry->equipment_id, equipment_id);
    copy_text(entry->fw_version, fw_version);
    copy_text(entry->file_name, file_name);
    entry->mode = mode_of(mode);
    return entry;
}

int add_ont_autoupdate_entry(const AutoUpdateEntry *entry) {
    AutoUpdateSections *db = chassis_sections<AutoUpdateSections>();
    if (db == nullptr || db->auto_update_count >= max_entries) {
        return -1;
    }
    AutoUpdateEntry *added = new_entry(__func__);
    if (added == nullptr) {
        return -1;
    }
    copy_text(added->description, field_text(entry->description));
    copy_text(added->equipment_id, field_text(entry->equipment_id));
    copy_text(added->fw_version, field_text(entry->fw_version));
    copy_text(added->file_name, field_text(entry->file_name));
    added->mode = entry->mode;
    db->auto_update_entries[db->auto_update_count++] = added;
    return 0;
}

int delete_ont_autoupdate_entry(const char *description) {
    AutoUpdateSections *db = chassis_sections<AutoUpdateSections>();
    if (db == nullptr) {
        return -1;
    }
    const auto begin = db->auto_update_entries.begin();
    const auto end = begin + db->auto_update_count;
    const auto found = std::find_if(begin, end, [&](const AutoUpdateEntry *entry) {
        return std::strncmp(entry->description, description, sizeof entry->description) == 0;
    });
    if (found == end) {
        log_add(log_error, "%s : unable to find entry with description : %s\n", __func__, description);
        return -1;
    }
    free_entry(*found);
    std::rotate(found, found + 1, end);
    --db->auto_update_count;
    return 0;
}

int generate_ont_autoupdate_file(void) {
    const AutoUpdateSections *db = chassis_sections<AutoUpdateSections>();
    if (db == nullptr || !db->auto_update_stamp.is_set()) {
        log_add(log_error, "%s : data never received\n", __func__);
        return -1;
    }
    if (replace_file(rooted(entries_file), file_text(*db)) != Written::whole) {
        log_add(log_error, "%s : unable to open file\n", __func__);
        return -1;
    }
    return 0;
}

int parse_ont_autoupdate_file(void) {
    const int result =
        act(Request<32>(command::parse_auto_update_entries, destination::services), __func__, 0);
    if (result != 0) {
        log_add(log_error, "%s : error on parse\n", __func__);
    }
    return result;
}

int get_ont_fw_autoupdate(void) {
    int value = 0;
    if (!read_switch(value)) {
        log_add(log_error, "%s : unable to open file : %s\n", __func__, rooted(switch_file).c_str());
    }
    return value;
}

int get_ont_fw_autoupdate_enabled_old(void) {
    int value = 0;
    read_switch(value);
    return value;
}

int set_ont_fw_autoupdate_enabled(int value) {
    if (replace_file(rooted(switch_file), std::to_string(value) + "\n") != Written::whole) {
        log_add(log_error, "%s : unable to open file for writing\n", __func__);
        return -1;
    }
    return 0;
}
