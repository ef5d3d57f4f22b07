// tarnctl chassis: its subcommands on the command line. In a header, so that one source has the parser.
#ifndef TARN_CTL_CHASSIS_OPTIONS_H
#define TARN_CTL_CHASSIS_OPTIONS_H

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <memory>

#include "ctl/chassis.h"

namespace tarn::ctl {

// Adds a subcommand for each of them to `app`. One that has been given hands over its command and the values
// of the command's parameters.
inline void add_chassis_commands(
    CLI::App &app,
    const std::function<void(const ChassisCommand &command, const std::vector<std::string> &values)> &given) {
    std::map<std::string_view, CLI::App *> parents{{"", &app}};
    for (const ChassisGroup &group : chassis_groups()) {
        CLI::App *parent = app.add_subcommand(std::string(group.name), std::string(group.help));
        parent->require_subcommand(1);
        parents[group.name] = parent;
    }
    for (const ChassisCommand &command : chassis_commands()) {
        CLI::App *added =
            parents.at(command.group)->add_subcommand(std::string(command.name), std::string(command.help));
        // The parser keeps references to the values.
        auto values = std::make_shared<std::vector<std::string>>(command.parameters.size());
        for (std::size_t i = 0; i < command.parameters.size(); ++i) {
            const Parameter &parameter = command.parameters[i];
            const char *dashes = parameter.use == Use::option ? "--" : "";
            added->add_option(dashes + std::string(parameter.key), (*values)[i], std::string(parameter.help))
                ->required(parameter.use == Use::required);
        }
        added->callback([given, &command, values] { given(command, *values); });
    }
}

}  // namespace tarn::ctl

#endif
