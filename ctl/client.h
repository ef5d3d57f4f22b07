// One question to a control socket: a line of JSON out, a line of JSON back.
#ifndef TARN_CTL_CLIENT_H
#define TARN_CTL_CLIENT_H

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

namespace tarn::ctl {

using Json = nlohmann::ordered_json;

// The answer. Throws std::runtime_error when nobody listens, or when what comes back is not an answer.
Json ask(const std::string &socket_path, const Json &request);

// Asks, and hands on each line that comes until the other end closes or `take` returns false. Throws as ask
// does when nobody listens.
void follow(const std::string &socket_path, const Json &request,
            const std::function<bool(const Json &line)> &take);

}  // namespace tarn::ctl

#endif
