// Levels and recurring texts of the module's log lines. Every line begins with the reporting function's name.
#ifndef TARN_MODULE_COMMON_LOG_H
#define TARN_MODULE_COMMON_LOG_H

namespace tarn {

inline constexpr int log_error = 3;
inline constexpr int log_warning = 4;
inline constexpr int log_information = 6;

}  // namespace tarn

#endif
