// A small chassis with a clock that the test sets, and requests to it as the agent sends them.
#ifndef TARN_TEST_CHASSIS_SUPPORT_TEST_CHASSIS_H
#define TARN_TEST_CHASSIS_SUPPORT_TEST_CHASSIS_H

#include <gtest/gtest.h>

#include <sstream>

#include "chassis/control/control.h"
#include "chassis/requests/chassis.h"

namespace tarn::chassis {

// A request with every header field set as the agent sets it.
inline Bytes make_request(int slot, int command, int destination, const std::string &payload_hex) {
    const Bytes payload = from_hex(payload_hex);
    Bytes request = from_hex("0000010000000000030326000100000024000000000000000000000000000000");
    request[0] = static_cast<std::uint8_t>(command);
    request[1] = static_cast<std::uint8_t>(command >> 8);
    request[5] = static_cast<std::uint8_t>(destination);
    request[7] = static_cast<std::uint8_t>(slot);
    request[20] = static_cast<std::uint8_t>(32 + payload.size());
    request[21] = static_cast<std::uint8_t>((32 + payload.size()) >> 8);
    request.insert(request.end(), payload.begin(), payload.end());
    return request;
}

// The payload that asks for every address of a card.
inline constexpr const char *all_addresses = "ff0000000000000000000000000000";

inline std::string zeros(std::size_t bytes) {
    return std::string(2 * bytes, '0');
}

// Slot 0: two ONTs on channel 0, one on channel 1; slot 5: none; no other cards.
inline constexpr const char *test_scenario =
    "seed: 7\n"
    "reregister_seconds: 5\n"
    "cards:\n"
    "  - {slots: 0, onts_per_channel: [2, 1, 0, 0, 0, 0, 0, 0], addresses: 2, pppoe_sessions: 1}\n"
    "  - {slots: 5, onts: 0}\n";

struct TestChassis {
    std::ostringstream log_text;
    Log log{log_text};
    std::uint64_t clock_ms = 0;
    Chassis chassis;

    explicit TestChassis(const std::string &scenario = test_scenario)
        : chassis(parse_scenario(scenario, "test"), log, [this] { return clock_ms; }) {
        // What the tests pin is set here, not left to the seed.
        if (Card *card = chassis.card(0); card != nullptr && card->onts.size() == 3) {
            set_ont(card->onts[0], "5441524e00000001");
            set_ont(card->onts[1], "5441524e00000002");
            set_ont(card->onts[2], "5441524e00000003");
            card->onts[1].code = 13;
        }
    }

    static void set_ont(Ont &ont, const std::string &serial) {
        const Bytes bytes = from_hex(serial);
        std::copy(bytes.begin(), bytes.end(), ont.serial.begin());
        ont.code = 7;
        ont.optical_power = -18.5;
        ont.list = {};
        ont.state = {};
        ont.i2c = {};
        ont.uni_ports = {};
        ont.errors = {};
        ont.connections.clear();
        ont.outages = {};
    }

    Reply send(int slot, int command, const std::string &payload_hex = "", int destination = 8) {
        return chassis.request(slot, make_request(slot, command, destination, payload_hex));
    }
    // The status of the answer, its size and its payload.
    int status(int slot, int command, const std::string &payload_hex = "", int destination = 8) {
        return send(slot, command, payload_hex, destination).bytes.at(14);
    }
    std::string payload(int slot, int command, const std::string &payload_hex = "") {
        const Bytes answer = send(slot, command, payload_hex).bytes;
        EXPECT_EQ(answer.at(14), 0);
        EXPECT_EQ(load_le32(answer.data() + 20), answer.size());
        return to_hex(std::span(answer).subspan(32));
    }
};

}  // namespace tarn::chassis

#endif
