// What the control socket's requests do. Lines of JSON in and out; docs/protocol.md describes them.
#ifndef TARN_CHASSIS_CONTROL_CONTROL_H
#define TARN_CHASSIS_CONTROL_CONTROL_H

#include <nlohmann/json.hpp>

#include "chassis/requests/chassis.h"

namespace tarn::chassis {

using Json = nlohmann::ordered_json;

// Thrown by whatever finds a control request wrong; its text becomes the answer's "error".
class ControlError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Control {
  public:
    explicit Control(Chassis &chassis) : chassis_(chassis) {}
    // The answer to one line, with its newline.
    std::string answer(const std::string &line);
    [[nodiscard]] bool shutdown_requested() const { return shutdown_requested_; }

  private:
    Chassis &chassis_;
    bool shutdown_requested_ = false;
};

std::string error_line(const std::string &text);

// The integer under a key of a control request; absent when the key is. Throws ControlError.
std::optional<std::int64_t> number(const Json &request, std::string_view key);
// The same, which must be there and lie between the bounds.
std::int64_t number(const Json &request, std::string_view key, std::int64_t low, std::int64_t high);
std::string text(const Json &request, std::string_view key);

// Bytes as pairs of lower-case hexadecimal digits, and back. from_hex throws ControlError.
std::string to_hex(std::span<const std::uint8_t> bytes);
Bytes from_hex(const std::string &digits);

// The pieces of a card's state: "state-get" and "state-set" on the card in the request's slot.
Json get_state(Card &card, Moment now, const Json &request);
void set_state(Card &card, Moment now, const Json &request);

}  // namespace tarn::chassis

#endif
