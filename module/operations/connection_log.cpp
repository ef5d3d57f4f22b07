#include "module/operations/connection_log.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "module/common/log.h"
#include "module/common/serial.h"
#include "module/config/ont_config_store.h"
#include "module/operations/ont_connections.h"
#include "module/store/ont_sections.h"
#include "wire/records/ont.h"

using namespace tarn;

namespace {

constexpr std::size_t printed_serial_size = 26;

// The text of the last answer; every answer overwrites it.
struct LogText {
    std::array<char, 8192> text;
    std::size_t length;

    void clear() {
        length = 0;
        text[0] = '\0';
    }

    // Adds one line of at most 254 characters; what does not fit is left out.
    __attribute__((format(printf, 2, 3))) void add(const char *format, ...) {
        std::array<char, 255> line;
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(line.data(), line.size(), format, arguments);
        va_end(arguments);
        const std::size_t count = std::min(std::strlen(line.data()), text.size() - 1 - length);
        std::memcpy(text.data() + length, line.data(), count);
        length += count;
        text[length] = '\0';
    }
};
LogText log_text;

void add_text(const char *title, std::string_view text) {
    log_text.add("    %s%.*s\n", title, static_cast<int>(text.size()), text.data());
}

// Seconds since 1970 in local time; 0: never.
void add_time(const char *title, std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    if (seconds == 0 || localtime_r(&time, &local) == nullptr) {
        log_text.add("    %s------\n", title);
        return;
    }
    log_text.add("    %s%d-%02d-%02d %02d:%02d:%02d\n", title, local.tm_year + 1900, local.tm_mon + 1,
                 local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

void add_entry(const char *serial, const std::uint8_t *block, int entry) {
    const auto at = [entry](Field field) { return field.at(entry, ont_connections::entry_size); };
    const char *state =
        gpon_enum_find_name_by_type("GPonOntConnectionStateIndicatorType_enum",
                                    static_cast<int>(load_integer(block, at(ont_connections::last_state))));
    log_text.add("\n----------------------------------------------\n");
    add_text("Serial number:       ", serial);
    add_text("Equipment ID:        ", load_text(block, at(ont_connections::equipment_id)));
    add_text("Version:             ", load_text(block, at(ont_connections::version)));
    add_time("LinkUp :             ", load_integer(block, at(ont_connections::link_up_time)));
    add_time("LinkDown :           ", load_integer(block, at(ont_connections::link_down_time)));
    add_text("Last state :         ", state != nullptr ? state : "");
}

}  // namespace

char *SnToString(const std::uint8_t *serial, char *buffer, int size) {
    if (buffer == nullptr || size <= 0) {
        return nullptr;
    }
    std::memset(buffer, 0, static_cast<std::size_t>(size));
    const bool has_vendor =
        std::all_of(serial, serial + 4, [](std::uint8_t byte) { return byte >= 'A' && byte <= 'Z'; });
    if (size < (has_vendor ? 13 : 17)) {
        return nullptr;
    }
    std::snprintf(buffer, static_cast<std::size_t>(size),
                  has_vendor ? "%c%c%c%c%02X%02X%02X%02X" : "%02X%02X%02X%02X%02X%02X%02X%02X", serial[0],
                  serial[1], serial[2], serial[3], serial[4], serial[5], serial[6], serial[7]);
    return buffer;
}

char *generate_ont_connections(int slot, const std::uint8_t *serial_bytes) {
    log_text.clear();
    const Serial serial = serial_at(serial_bytes);  // may lie in the records that are refreshed next
    if (get_ont_config_index_by_serial(slot, serial.data()) == ont_not_found) {
        log_add(log_error, "%s : Can't find ont with this serial\n", __func__);
        return log_text.text.data();
    }
    const std::uint8_t *block = get_ont_connections(slot, serial.data());
    if (block != nullptr) {
        std::array<char, printed_serial_size> printed;
        SnToString(serial.data(), printed.data(), printed.size());
        const int count = slot_sections<OntSections>(slot & 0xFF)->connections_count;
        for (int entry = 0; entry < std::min(count, ont_connections::max_entries); ++entry) {
            add_entry(printed.data(), block, entry);
        }
    }
    return log_text.text.data();
}

namespace tarn {

std::string_view ont_connection_log(int slot, const std::uint8_t *serial) {
    generate_ont_connections(slot, serial);
    return {log_text.text.data(), log_text.length};
}

}  // namespace tarn
