#include "ctl/report.h"

#include <algorithm>
#include <vector>

#include "ctl/serial.h"

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
    const std::string card = slot.value("card", "ok");
    return "slot " + slot["slot"].dump() + ": " + state +
           (card == "silent" || card == "closing" ? ", " + card + '\n' : "\n");
}

constexpr std::size_t longest_cell = 32;
constexpr std::size_t bytes_a_line = 16;

// A value on a line: texts without their quotes, what is too long for a table cut.
std::string cell(const std::string &key, const Json &value) {
    std::string text = value.is_string() ? value.get<std::string>() : value.dump();
    if (key == "serial") {
        return serial_text(text);
    }
    return text.size() > longest_cell ? text.substr(0, longest_cell) + "..." : text;
}

// Objects as the lines of a table; what one of them lacks is a dash.
std::string table(const Json &rows) {
    std::vector<std::string> keys;
    for (const Json &row : rows) {
        for (const auto &[key, value] : row.items()) {
            if (std::ranges::find(keys, key) == keys.end()) {
                keys.push_back(key);
            }
        }
    }
    std::vector<std::vector<std::string>> lines{keys};
    for (const Json &row : rows) {
        auto &line = lines.emplace_back();
        for (const std::string &key : keys) {
            line.push_back(row.contains(key) ? cell(key, row[key]) : "-");
        }
    }
    std::vector<std::size_t> widths(keys.size());
    for (const auto &line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            widths[i] = std::max(widths[i], line[i].size());
        }
    }
    std::string text;
    for (const auto &line : lines) {
        for (std::size_t i = 0; i < line.size(); ++i) {
            text += line[i];
            text += i + 1 == line.size() ? "\n" : std::string(widths[i] - line[i].size() + 2, ' ');
        }
    }
    return text;
}

// Bytes, each line with the offset of its first in front.
std::string dump(const std::string &digits) {
    std::string text;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        const std::size_t byte = at / 2;
        if (byte % bytes_a_line == 0) {
            const std::string offset = std::to_string(byte);
            text += (at == 0 ? "" : "\n") + std::string(5 - std::min<std::size_t>(offset.size(), 5), ' ') +
                    offset;
        }
        text += ' ' + digits.substr(at, 2);
    }
    return text + '\n';
}

bool is_table(const Json &value) {
    return value.is_array() && !value.empty() &&
           std::ranges::all_of(value, [](const Json &row) { return row.is_object(); });
}

// Any answer: its bytes, its lists as tables, its objects indented, and everything else a line each.
std::string describe_plainly(const Json &answer) {
    std::string text;
    for (const auto &[key, value] : answer.items()) {
        if (key == "hex" && value.is_string()) {
            text += dump(value);
        } else if (is_table(value)) {
            text += table(value);
        } else if (value.is_object()) {
            text += key + ":\n";
            for (const auto &[name, part] : value.items()) {
                text += "  " + name + ": " + cell(name, part) + '\n';
            }
        } else if (value.is_array() && value.empty()) {
            text += "no " + key + '\n';
        } else {
            text += key + ": " + cell(key, value) + '\n';
        }
    }
    return text.empty() ? "done\n" : text;
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
    return describe_plainly(answer);
}

std::string describe_trace(const Json &line) {
    if (line.contains("dropped")) {
        return line["dropped"].dump() + " lines were dropped: they came faster than they were read\n";
    }
    if (!line.contains("what")) {
        return "";
    }
    const std::string what = line["what"];
    const bool outward = what == "request" || what == "probe";
    std::string text = line.value("time", "") + "  slot " + line["slot"].dump() +
                       (outward ? " -> " : " <- ") + line.value("name", "");
    if (what == "probe" || what == "failure") {
        text += " (" + what + ')';
    }
    for (const auto &[key, value] : line.items()) {
        if (key != "time" && key != "slot" && key != "what" && key != "name") {
            text += "  " + key + '=' + (key == "reason" ? value.dump() : cell(key, value));
        }
    }
    return text + '\n';
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
