#include "chassis/requests/log.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <iomanip>
#include <string>

namespace tarn::chassis {

void Log::line(std::string_view text) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
    localtime_r(&seconds, &parts);
    std::string clean(text);
    std::ranges::replace_if(
        clean, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    out_ << std::put_time(&parts, "%F %T.") << std::setw(3) << std::setfill('0') << milliseconds << ' '
         << clean << std::endl;
}

}  // namespace tarn::chassis
