#include "host/services/logger.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "host/services/agent_thread.h"

namespace tarn::host {
namespace {

std::atomic<int> threshold{log_level::information};
using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds repeat_period{5};

// A line that was written, and how often it came again since.
struct WrittenLine {
    std::string text;
    int level = 0;
    int repeats = 0;
    Clock::time_point written{};
};

// The last few: whatever is logged for each row of a table may be more than one line.
std::mutex last_lines_mutex;
std::array<WrittenLine, 4> last_lines;
std::size_t oldest_line = 0;

void write_repeats(WrittenLine &line) {
    if (line.repeats > 0) {
        snmp_log(line.level, "%s (came %d times more)\n", line.text.c_str(), line.repeats);
        line.repeats = 0;
    }
}

__attribute__((format(printf, 1, 0))) std::string format_message(const char *format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    std::string text(512, '\0');
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    if (length > 0 && static_cast<std::size_t>(length) >= text.size()) {
        text.resize(static_cast<std::size_t>(length) + 1);
        (void)std::vsnprintf(text.data(), text.size(), format, again);
    }
    va_end(again);
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return text;
}

bool open_log_file(const std::string &path) {
    std::FILE *probe = std::fopen(path.c_str(), "ae");
    if (probe == nullptr) {
        return false;
    }
    (void)std::fclose(probe);
    snmp_enable_filelog(path.c_str(), 1 /* append */);
    return true;
}

void write_line(int level, std::string line) {
    const std::lock_guard lock(last_lines_mutex);
    const Clock::time_point now = Clock::now();
    WrittenLine *same = std::find_if(last_lines.begin(), last_lines.end(), [&](const WrittenLine &written) {
        return level == written.level && line == written.text;
    });
    if (same != last_lines.end() && now - same->written < repeat_period) {
        ++same->repeats;
        return;
    }
    WrittenLine &place = same != last_lines.end() ? *same : last_lines[oldest_line++ % last_lines.size()];
    write_repeats(place);
    snmp_log(level, "%s\n", line.c_str());
    place = {std::move(line), level, 0, now};
}

}  // namespace

void flush_log() {
    const std::lock_guard lock(last_lines_mutex);
    for (std::size_t i = 0; i < last_lines.size(); ++i) {
        WrittenLine &line = last_lines[(oldest_line + i) % last_lines.size()];
        write_repeats(line);
        line.text.clear();
    }
}

void set_log_level(int level) {
    threshold = level;
}

int log_level_of(std::string_view name) {
    if (name == "error") {
        return log_level::error;
    }
    if (name == "warning") {
        return log_level::warning;
    }
    if (name == "information") {
        return log_level::information;
    }
    return name == "debug" ? log_level::debug : -1;
}

bool open_log(std::string_view destination) {
    constexpr std::string_view file_prefix = "file ";
    snmp_disable_log();
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_LOG_TIMESTAMP, 1);
    if (destination == "stderr") {
        snmp_enable_stderrlog();
        return true;
    }
    if (destination == "syslog") {
        snmp_enable_syslog_ident("tarn-agentd", LOG_DAEMON);
        return true;
    }
    if (destination.starts_with(file_prefix) &&
        open_log_file(std::string(destination.substr(file_prefix.size())))) {
        return true;
    }
    snmp_enable_stderrlog();
    return false;
}

std::string printable(std::string_view text) {
    if (text.ends_with('\n')) {
        text.remove_suffix(1);
    }
    std::string result(text);
    for (char &c : result) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7f) {
            c = '?';
        }
    }
    return result;
}

}  // namespace tarn::host

void log_add(int level, const char *format, ...) {
    using namespace tarn::host;
    if (level > threshold) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::string line = printable(format_message(format, arguments));
    va_end(arguments);
    if (is_agent_thread()) {
        write_line(level, std::move(line));
    } else {
        leave_for_agent([level, line = std::move(line)] { write_line(level, line); });
    }
}
