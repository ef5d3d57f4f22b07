// What the images' parameter files say. A row exists for every image with such a file.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "module/firmware/acs_firmware_operations.h"
#include "module/tables/frame/table.h"
#include "module/tables/tarnONT/tarnONTFirmwares/line_text.h"

using namespace tarn;

namespace {

constexpr IndexPart row_index[] = {text_part};
constexpr int row_status_column = 10;

constexpr Field software_version =
    text_at(offsetof(AcsFirmwareSpecific, software_version), sizeof(AcsFirmwareSpecific::software_version));
constexpr Field equipment_list =
    text_at(offsetof(AcsFirmwareSpecific, equipment_list), sizeof(AcsFirmwareSpecific::equipment_list));
constexpr Field vendor = text_at(offsetof(AcsFirmwareSpecific, vendor), sizeof(AcsFirmwareSpecific::vendor));

// A parameter file that a SET created or removed, as it was before.
struct ChangedFile {
    std::string image;
    std::optional<std::string> before;
};

// Catalogue positions whose parameter files are to be written; -1: free.
using CommitSet = std::array<std::int32_t, 16>;
constexpr CommitSet empty_set = [] {
    CommitSet set{};
    set.fill(-1);
    return set;
}();

struct EditedFiles {
    CommitSet to_commit = empty_set;
    bool unwritten = false;  // the catalogue holds values that its files do not
    std::vector<ChangedFile> changed;
};
Transaction<EditedFiles> edited;

// The position of the first image of this name among the first `count`, or -1.
int image_of_name(const AcsFirmwareCache &cache, std::string_view name, int count) {
    for (int i = 0; i < count; ++i) {
        if (name == cache.files[i].file_name) {
            return i;
        }
    }
    return -1;
}

}  // namespace

TARN_EXPORT void reset_files_to_commit(void) {
    edited.state.to_commit = empty_set;
}

// An image that is not in the catalogue, and the seventeenth one, are dropped.
TARN_EXPORT void add_to_commit(const char *name) {
    const AcsFirmwareCache *cache = get_acs_firmware_cache();
    const int image = cache != nullptr ? image_of_name(*cache, name, TARN_FIRMWARE_IMAGES) : -1;
    CommitSet &files = edited.state.to_commit;
    if (image < 0 || std::ranges::find(files, image) != files.end()) {
        return;
    }
    const auto free = std::ranges::find(files, -1);
    if (free != files.end()) {
        *free = image;
    }
}

// Writes the parameter files of the set, up to the first failure, and empties it; 0 or -1.
TARN_EXPORT int commit_files(void) {
    const bool all = std::ranges::all_of(edited.state.to_commit, [](std::int32_t image) {
        return image < 0 || set_specific_parameters(image) == 0;
    });
    reset_files_to_commit();
    return all ? 0 : -1;
}

namespace {

struct ParameterFiles {
    static void begin() { get_files_list(); }
    static AcsFirmwareCache *read(const Row & /*row*/) { return get_acs_firmware_cache(); }
    static std::int64_t count(const AcsFirmwareCache *cache) { return cache->files_count; }
    static std::int64_t position(const AcsFirmwareCache *cache, const Row &row) {
        return image_of_name(*cache, row.text, cache->files_count);
    }
    static bool enter(AcsFirmwareCache *cache, Row &row, std::int64_t position) {
        if (cache->specifics[position].has_spec != 1) {
            return false;
        }
        row.text = cache->files[position].file_name;
        row.record = reinterpret_cast<std::uint8_t *>(&cache->specifics[position]);
        return true;
    }
};

int answer_name(Row &row, const Reply &reply) {
    return reply.text(row.text);
}

// The catalogue, too, is read again: a refused value must not stay in it.
void take_back() {
    auto &changed = edited.state.changed;
    for (auto file = changed.rbegin(); file != changed.rend(); ++file) {
        restore_specific_text(file->image, file->before);
    }
    if (std::exchange(edited.state.unwritten, false)) {
        expire_files_list();
    }
    changed.clear();
}

int set_row_status(Row &row, const Binding &value) {
    const std::string name(row.text);
    const bool exists = row.record != nullptr;
    int result = 0;
    if (*value.val.integer == create_and_go && !exists) {
        if (!is_image_name(row.text)) {
            return SNMP_ERR_GENERR;
        }
        edited.state.changed.push_back({name, specific_text(name)});
        result = create_specific_file(name.c_str());
    } else if (*value.val.integer == destroy) {
        if (!exists) {
            return SNMP_NOSUCHINSTANCE;
        }
        edited.state.changed.push_back({name, specific_text(name)});
        result = delete_specific_file(name.c_str());
    }
    return result == 0 ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR;
}

constexpr Column columns[] = {
    {1, octet_string, answered_by(answer_name)},
    {2, octet_string, field(software_version), checked_by(text_without<line_breaks, octets_up_to(63)>)},
    {3, octet_string, field(equipment_list), checked_by(text_without<line_breaks, octets_up_to(1023)>)},
    {4, octet_string, field(vendor), checked_by(text_without<line_breaks, octets_of(4)>)},
    {row_status_column, integer, constant(1), any_integer, set_row_status, true},
};

int remember_image(Row &row, const Column &column, const Binding & /*value*/) {
    if (column.number != row_status_column) {
        add_to_commit(std::string(row.text).c_str());
        edited.state.unwritten = true;
    }
    return SNMP_ERR_NOERROR;
}

int commit(Row & /*row*/) {
    if (commit_files() != 0) {
        take_back();  // no UNDO follows
        return SNMP_ERR_COMMITFAILED;
    }
    edited.state.unwritten = false;
    edited.state.changed.clear();
    return SNMP_ERR_NOERROR;
}

constexpr Table table{
    .index = row_index,
    .columns = columns,
    .rows = rows_of<ParameterFiles>,
    .writes = collects_request<edited, remember_image, commit>.undone_by(take_back),
    .answers = row_when_acting,
};

}  // namespace

MODULE_ITERATOR_TABLE(tarnONTFirmwaresSpecificsTable, table)
