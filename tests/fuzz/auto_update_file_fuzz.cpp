// Whatever stands in the rules' file of automatic updates, it is loaded within bounds, and the file that is
// written of it loads to the same rules.
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "module/operations/auto_update.h"
#include "module/start/start.h"
#include "module/store/auto_update_sections.h"
#include "support/scripted_board.h"

namespace {

std::string rules_file;

std::vector<AutoUpdateEntry> load() {
    get_ont_auto_update_entries();
    const tarn::AutoUpdateSections &db = *tarn::chassis_sections<tarn::AutoUpdateSections>();
    std::vector<AutoUpdateEntry> entries;
    for (std::uint32_t i = 0; i < db.auto_update_count; ++i) {
        entries.push_back(*db.auto_update_entries[i]);
    }
    return entries;
}

bool equal(const AutoUpdateEntry &a, const AutoUpdateEntry &b) {
    const auto mode = [](const AutoUpdateEntry &entry) { return entry.mode == 255 ? 3 : entry.mode; };
    return std::string(a.description) == b.description && std::string(a.equipment_id) == b.equipment_id &&
           std::string(a.fw_version) == b.fw_version && std::string(a.file_name) == b.file_name &&
           mode(a) == mode(b);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
    static std::string root = std::filesystem::temp_directory_path() / "tarn-fuzz-XXXXXX";
    if (mkdtemp(root.data()) == nullptr) {
        std::abort();
    }
    setenv("TARN_ROOT", root.c_str(), 1);
    std::filesystem::create_directories(root + "/mnt/ram/config");
    rules_file = root + "/mnt/ram/config/ont_auto_update_entries.txt";
    std::atexit([] { std::filesystem::remove_all(root); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    board = ScriptedBoard();
    board.everything_stale = true;
    slot_initializer(16);
    std::ofstream(rules_file, std::ios::binary)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    const std::vector<AutoUpdateEntry> loaded = load();
    if (generate_ont_autoupdate_file() != 0 || !std::ranges::equal(loaded, load(), equal)) {
        std::abort();
    }
    if (!loaded.empty() && delete_ont_autoupdate_entry(loaded[loaded.size() / 2].description) != 0) {
        std::abort();
    }
    load();
    return 0;
}
