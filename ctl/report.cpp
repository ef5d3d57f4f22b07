#include "ctl/report.h"

namespace tarn::ctl {
namespace {

// What became of one slot, or of the profiles.
std::string outcome(const Json &result) {
    if (result.contains("error")) {
        return "failed: " + result["error"].get<std::string>();
    }
    return result["result"] == 0 ? "done" : "failed: no answer (" + result["result"].dump() + ")";
}

bool failed(const Json &result) {
    return result.contains("error") || (result.contains("result") && result["result"] != 0);
}

std::string slot_line(const Json &slot) {
    const char *state = slot["up"] == true ? "up" : slot["served"] == true ? "down" : "not served";
    return "slot " + slot["slot"].dump() + ": " + state + '\n';
}

}  // namespace

std::string describe(const Json &answer) {
    if (answer.contains("results")) {
        std::string text;
        for (const Json &result : answer["results"]) {
            text += "slot " + result["slot"].dump() + ": " + outcome(result) + '\n';
        }
        return text.empty() ? "no slot is up\n" : text;
    }
    if (answer.contains("slots")) {
        std::string text;
        for (const Json &slot : answer["slots"]) {
            text += slot_line(slot);
        }
        return text;
    }
    if (answer.contains("download")) {
        return "download: " + answer["download"].get<std::string>() + '\n';
    }
    if (answer.contains("result") || answer.contains("error")) {
        return outcome(answer) + '\n';
    }
    return answer.dump(2) + '\n';
}

int exit_status(const Json &answer) {
    bool any_failed = failed(answer);
    if (answer.contains("results")) {
        for (const Json &result : answer["results"]) {
            any_failed = any_failed || failed(result);
        }
        any_failed = any_failed || answer["results"].empty();
    }
    return any_failed ? exit_failed : exit_done;
}

}  // namespace tarn::ctl
