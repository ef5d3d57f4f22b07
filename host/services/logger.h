// The agent's log. The module's log_add and net-snmp's own messages go to the same place.
#ifndef TARN_HOST_SERVICES_LOGGER_H
#define TARN_HOST_SERVICES_LOGGER_H

#include <chrono>
#include <string>
#include <string_view>

#include "tarn/host_services.h"

namespace tarn::host {

// As syslog's. A message passes when its level is at most the configured one.
namespace log_level {
inline constexpr int error = 3;
inline constexpr int warning = 4;
inline constexpr int information = 6;
inline constexpr int debug = 7;
}  // namespace log_level

void set_log_level(int level);

// Opens the log's destination: "stderr", "syslog" or "file PATH"; net-snmp's own messages go there too. False
// for any other text and for a file that cannot be opened: the log stays where it was. A line of stderr or of
// a file is local time to the millisecond, level and text.
bool open_log(std::string_view destination);
// The PATH of such a destination; empty for the others.
std::string log_file(std::string_view destination);

// The level of a name: error, warning, information or debug; -1 for another text.
int log_level_of(std::string_view name);

// A line that repeats one of the last few is not written but counted for up to five seconds, so that a card
// that fails for every row of a table does not flood the log. This writes the counts.
void flush_log();
// Writes the counts whose time is over; to be called once a second.
void write_due_repeats(std::chrono::steady_clock::time_point now);

// While it lives, errors of the agent's thread are kept back; at its end they are written unless they were
// dropped.
class LogHold {
  public:
    LogHold();
    ~LogHold();
    LogHold(const LogHold &) = delete;
    LogHold &operator=(const LogHold &) = delete;
    void drop();
};

// The text without its last line end, each other control byte replaced by '?': a text that came from a
// manager or a card can neither forge a line nor command a terminal.
std::string printable(std::string_view text);

}  // namespace tarn::host

#endif
