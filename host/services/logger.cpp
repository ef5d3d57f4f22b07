#include "host/services/logger.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

#include "host/services/agent_thread.h"

namespace tarn::host {
namespace {

std::atomic<int> threshold{log_level::information};
using Clock = std::chrono::steady_clock;
// With the second between two looks for counts that are due, none waits longer than five.
constexpr std::chrono::seconds repeat_period{4};

// Lines that the module writes at each look-up, as errors: nothing is wrong, and they would fill the log.
constexpr std::string_view trace_formats[] = {"file: %s; line: %d; slot: %u"};

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

std::FILE *log_stream = nullptr;  // stderr or a file that is ours

void close_log_file() {
    if (log_stream != nullptr && log_stream != stderr) {
        (void)std::fclose(log_stream);
    }
    log_stream = nullptr;
}

const char *name_of(int level) {
    if (level <= log_level::error) {
        return "error";
    }
    if (level == log_level::warning) {
        return "warning";
    }
    return level <= log_level::information ? "information" : "debug";
}

void write_head(int level) {
    timespec now{};
    (void)clock_gettime(CLOCK_REALTIME, &now);
    tm parts{};
    (void)localtime_r(&now.tv_sec, &parts);
    char date[32];
    (void)std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &parts);
    (void)std::fprintf(log_stream, "%s.%03ld %s: ", date, now.tv_nsec / 1'000'000, name_of(level));
}

// net-snmp passes a line in pieces now and then.
int write_record(netsnmp_log_handler * /*handler*/, int level, const char *text) {
    static bool at_line_start = true;
    if (level > threshold || *text == '\0') {
        return 1;
    }
    if (at_line_start) {
        write_head(level);
    }
    (void)std::fputs(text, log_stream);
    (void)std::fflush(log_stream);
    at_line_start = std::string_view(text).ends_with('\n');
    return 1;
}

void write_to(std::FILE *stream) {
    log_stream = stream;
    netsnmp_log_handler *handler = netsnmp_register_loghandler(NETSNMP_LOGHANDLER_STDERR, LOG_DEBUG);
    if (handler != nullptr) {
        handler->handler = write_record;
        handler->enabled = 1;
    }
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

// What a LogHold keeps back; only the agent's thread uses them.
bool holding = false;
std::vector<std::pair<int, std::string>> held_lines;

}  // namespace

LogHold::LogHold() {
    holding = true;
}

LogHold::~LogHold() {
    holding = false;
    for (auto &[level, line] : std::exchange(held_lines, {})) {
        write_line(level, std::move(line));
    }
}

void LogHold::drop() {
    held_lines.clear();
}

void flush_log() {
    const std::lock_guard lock(last_lines_mutex);
    for (std::size_t i = 0; i < last_lines.size(); ++i) {
        WrittenLine &line = last_lines[(oldest_line + i) % last_lines.size()];
        write_repeats(line);
        line.text.clear();
    }
}

void write_due_repeats(Clock::time_point now) {
    const std::lock_guard lock(last_lines_mutex);
    for (WrittenLine &line : last_lines) {
        if (now - line.written >= repeat_period) {
            write_repeats(line);
        }
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

std::string log_file(std::string_view destination) {
    constexpr std::string_view prefix = "file ";
    return std::string(destination.starts_with(prefix) ? destination.substr(prefix.size()) : "");
}

bool open_log(std::string_view destination) {
    const std::string path = log_file(destination);
    std::FILE *stream = path.empty() ? nullptr : std::fopen(path.c_str(), "ae");
    if (destination == "stderr") {
        stream = stderr;
    }
    if (stream == nullptr && destination != "syslog") {
        return false;
    }
    snmp_disable_log();
    close_log_file();
    if (stream != nullptr) {
        write_to(stream);
    } else {
        snmp_enable_syslog_ident("tarn-agentd", LOG_DAEMON);
    }
    return true;
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
    if (std::ranges::find(trace_formats, format) != std::end(trace_formats)) {
        level = log_level::debug;
    }
    if (level > threshold) {
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    std::string line = printable(format_message(format, arguments));
    va_end(arguments);
    if (is_agent_thread() && holding && level <= log_level::error) {
        held_lines.emplace_back(level, std::move(line));
    } else if (is_agent_thread()) {
        write_line(level, std::move(line));
    } else {
        leave_for_agent([level, line = std::move(line)] { write_line(level, line); });
    }
}
