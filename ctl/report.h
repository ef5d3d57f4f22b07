// What tarnctl says of an answer, and how it exits.
#ifndef TARN_CTL_REPORT_H
#define TARN_CTL_REPORT_H

#include <string>

#include "ctl/client.h"

namespace tarn::ctl {

// All that was asked for was done; some of it was not; the command line was wrong.
inline constexpr int exit_done = 0;
inline constexpr int exit_failed = 1;
inline constexpr int exit_usage = 2;

// The answer in words, a line a slot.
std::string describe(const Json &answer);

// A line of a trace in words: time, slot, direction and name, then everything else by its name.
std::string describe_trace(const Json &line);

// exit_done, or exit_failed when anything in the answer says that it failed.
int exit_status(const Json &answer);

}  // namespace tarn::ctl

#endif
