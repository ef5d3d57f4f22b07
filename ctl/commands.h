// What tarnctl can be told to do with configurations.
#ifndef TARN_CTL_COMMANDS_H
#define TARN_CTL_COMMANDS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::ctl {

struct Command {
    std::string_view name;  // as the agent knows it, too
    std::string_view help;
    bool of_profiles;           // also for the chassis-wide profiles
    std::string_view question;  // what is asked first; empty: nothing
};

std::span<const Command> commands();

// "1-4,7" in any order: slots from 1 to 16, each once, ascending. Throws std::invalid_argument.
std::vector<int> parse_slots(std::string_view text);

}  // namespace tarn::ctl

#endif
