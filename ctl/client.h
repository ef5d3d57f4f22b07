// One question to a control socket: a line of JSON out, a line of JSON back.
#ifndef TARN_CTL_CLIENT_H
#define TARN_CTL_CLIENT_H

#include <nlohmann/json.hpp>
#include <string>

namespace tarn::ctl {

using Json = nlohmann::ordered_json;

// The answer. Throws std::runtime_error when nobody listens, or when what comes back is not an answer.
Json ask(const std::string &socket_path, const Json &request);

}  // namespace tarn::ctl

#endif
