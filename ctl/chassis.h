// What tarnctl can be told to do with a simulated chassis, and what it asks for to do so.
#ifndef TARN_CTL_CHASSIS_H
#define TARN_CTL_CHASSIS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ctl/client.h"

namespace tarn::ctl {

enum class Use { required, optional, option };  // an option is written --key VALUE

struct Parameter {
    std::string_view key;  // in the request
    std::string_view help;
    // What the request says of it. Throws std::invalid_argument.
    Json (*parse)(std::string_view text);
    Use use = Use::required;
};

struct ChassisCommand {
    std::string_view group;  // empty: it stands alone
    std::string_view name;
    std::string_view help;
    std::string_view request;  // JSON; parameters come on top
    std::vector<Parameter> parameters = {};
    std::string_view question = {};  // what is asked first; empty: nothing
};

std::span<const ChassisCommand> chassis_commands();
// The groups that commands belong to, and what each is about.
struct ChassisGroup {
    std::string_view name;
    std::string_view help;
};
std::span<const ChassisGroup> chassis_groups();

// The request to the chassis with a value for each parameter, in their order; an empty one is left out.
// Throws std::invalid_argument.
Json chassis_request(const ChassisCommand &command, std::span<const std::string> values);

// The chassis counts slots from 0, tarnctl from 1: every "slot" of the answer as tarnctl has it, a number or
// the name of one of the chassis' own services.
void recount_slots(Json &answer);

}  // namespace tarn::ctl

#endif
