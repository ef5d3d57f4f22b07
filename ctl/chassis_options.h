// tarnctl chassis: its subcommands on the command line.
#ifndef TARN_CTL_CHASSIS_OPTIONS_H
#define TARN_CTL_CHASSIS_OPTIONS_H

#include <CLI/CLI.hpp>
#include <functional>

#include "ctl/chassis.h"

namespace tarn::ctl {

// Adds a subcommand for each of them to `app`. One that has been given hands over its command and the values
// of the command's parameters.
void add_chassis_commands(
    CLI::App &app,
    const std::function<void(const ChassisCommand &command, const std::vector<std::string> &values)> &given);

}  // namespace tarn::ctl

#endif
