// The switch of a card, and the stages of its configuration.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

constexpr int to_configuration = 5;
constexpr const char *switch_scenario =
    "seed: 7\n"
    "confirm_seconds: 60\n"
    "cards:\n"
    "  - {slots: 0, onts: 1, vlans: 2, mac_addresses: 200}\n";

struct SwitchChassis : TestChassis {
    SwitchChassis() : TestChassis(switch_scenario) {}

    // To the configuration service.
    std::string configure(int command, const std::string &payload_hex = "", int slot = 0) {
        const Bytes answer = send(slot, command, payload_hex, to_configuration).bytes;
        EXPECT_EQ(answer.at(14), 0) << command;
        return to_hex(std::span(answer).subspan(32));
    }
    // The VLANs as listed, count first.
    std::string working_list() { return configure(170).substr(0, 12); }
    std::string running_list() { return payload(0, 170).substr(0, 12); }
    Json config() {
        return Json::parse(Control(chassis).answer(R"({"do":"state-get","slot":0,"item":"config"})"));
    }
};

std::string vlan_hex(int present) {
    std::string record = "6f6666696365" + zeros(78);  // "office"
    record.replace(64, 2, present != 0 ? "01" : "00");
    return record;
}

TEST(Switch, VlansAreNumberedFrom0WhereConfiguredAndByIdentifierWhereRun) {
    SwitchChassis test;
    EXPECT_EQ(test.configure(170).size(), 2 * 8190U);
    EXPECT_EQ(test.working_list(), "020000000a00");
    EXPECT_EQ(test.running_list(), "020001000b00");
    EXPECT_EQ(test.configure(179, "0a00").substr(0, 18), "0a00766c616e2d3131");  // "vlan-11"
    EXPECT_EQ(test.payload(0, 179, "0b00").substr(0, 18), "0b00766c616e2d3131");
    EXPECT_EQ(test.status(0, 179, "0b00", to_configuration), board_status::no_such_item);
    EXPECT_EQ(test.status(0, 179, "0000", 8), board_status::no_such_item);

    const std::string block = test.configure(180, "0a00f401");
    EXPECT_EQ(block.substr(0, 8), "0a00f401");
    EXPECT_EQ(block.size(), 2 * (4 + 500 * 84U));
    EXPECT_EQ(block.substr(8 + 64, 2), "01");
    EXPECT_EQ(block.substr(8 + 168, 168), zeros(84));
    EXPECT_EQ(test.configure(180, "fd0ff401").substr(0, 8), "fd0f0100");  // cut at the last VLAN
    EXPECT_EQ(test.status(0, 180, "fe0f0100", to_configuration), board_status::malformed);
}

TEST(Switch, VlansComeAndGoInTheWorkingConfiguration) {
    SwitchChassis test;
    test.configure(195, "0500" + vlan_hex(1));
    EXPECT_EQ(test.working_list(), "030000000500");
    EXPECT_EQ(test.running_list(), "020001000b00");
    EXPECT_EQ(test.configure(179, "0500"), "0500" + vlan_hex(1));
    test.configure(195, "0500" + vlan_hex(0));
    EXPECT_EQ(test.working_list(), "020000000a00");
    EXPECT_EQ(test.status(0, 195, "0500" + vlan_hex(0), to_configuration), board_status::no_such_item);
    EXPECT_EQ(test.status(0, 195, "fe0f" + vlan_hex(1), to_configuration), board_status::malformed);
}

TEST(Switch, SectionsAreReadAsWritten) {
    SwitchChassis test;
    struct Case {
        int get;
        int set;
        std::size_t size;
    };
    for (const auto &[get, set, size] : {Case{173, 190, 2583}, {185, 201, 150}, {182, 198, 360}}) {
        const std::string section = "a1" + zeros(size - 2) + "a2";
        test.configure(set, section);
        EXPECT_EQ(test.configure(get), section);
        EXPECT_EQ(test.status(0, set, section + "00", to_configuration), board_status::malformed);
        EXPECT_EQ(test.status(0, get, "", 8), board_status::wrong_destination);
    }
    const std::string rules = "01" + zeros(16) + "11" + "07" + zeros(16) + "77";
    test.configure(200, "02000000" + rules + zeros(1022 * 18));
    EXPECT_EQ(test.configure(184), "02000000" + rules);
    EXPECT_EQ(test.status(0, 200, "01040000" + zeros(1024 * 18), to_configuration), board_status::malformed);
}

TEST(Switch, AddressesComeInParts) {
    SwitchChassis test;
    const std::string asked = "00400000" + zeros(15);
    const std::string first = test.payload(0, 171, "00000000" + asked);
    EXPECT_EQ(first.size(), 2 * 1289U);
    EXPECT_EQ(first.substr(0, 16), "8000000080000000");
    EXPECT_EQ(first.substr(2 * 1288), "00");
    const std::string second = test.payload(0, 171, "80000000" + asked);
    EXPECT_EQ(second.substr(0, 16), "48000000c8000000");
    EXPECT_EQ(second.substr(2 * 1288), "01");
    EXPECT_EQ(test.status(0, 171, "c9000000" + asked), board_status::malformed);
    EXPECT_NE(first.substr(16, 20), first.substr(36, 20));
    Control(test.chassis).answer(R"({"do":"state-set","slot":0,"item":"mac-addresses","value":0})");
    EXPECT_EQ(test.payload(0, 171, "00000000" + asked).substr(0, 16), zeros(8));
}

TEST(Switch, PortsCountAndMeasureOverTheInterval) {
    SwitchChassis test;
    SwitchPort &port = test.chassis.card(0)->ethernet_switch.ports[12];
    for (std::size_t n = 0; n < port.counters.size(); ++n) {
        port.counters[n] = {.per_second = n + 1, .base = 1000, .since = 0};
    }
    test.clock_ms = 10000;
    EXPECT_EQ(test.payload(0, 167, "0c").substr(0, 32), "f203000000000000fc03000000000000");
    EXPECT_EQ(test.payload(0, 434, "05000c").substr(0, 64),
              "05000000000000000a0000000000000003000000000000000400000000000000");
    test.payload(0, 338, "0c");
    EXPECT_EQ(test.payload(0, 167, "0c"), zeros(248));
    for (const auto &[command, request] : {std::pair{167, "0d"}, {338, "0d"}, {434, "05000d"}}) {
        EXPECT_EQ(test.status(0, command, request), board_status::malformed);
    }
}

TEST(ConfigurationStages, ACommitHoldsWhenItIsConfirmedInTime) {
    SwitchChassis test;
    test.configure(195, "0500" + vlan_hex(1));
    EXPECT_EQ(test.config()["edited"], true);
    test.configure(406);
    EXPECT_EQ(test.running_list(), "030001000600");
    EXPECT_EQ(test.config()["confirm_within_ms"], 60000);
    test.clock_ms = 59999;
    test.configure(421);
    test.clock_ms = 1000000;
    EXPECT_EQ(test.running_list(), "030001000600");
    const Json config = test.config();
    EXPECT_EQ(config["edited"], false);
    EXPECT_EQ(config["saved"], false);
    EXPECT_FALSE(config.contains("confirm_within_ms"));
}

TEST(ConfigurationStages, AnUnconfirmedCommitIsTakenBack) {
    SwitchChassis test;
    test.configure(195, "0500" + vlan_hex(1));
    test.configure(406);
    test.configure(195, "0600" + vlan_hex(1));
    test.configure(406);  // does not make the first one safe, but begins a new time
    test.clock_ms = 59999;
    EXPECT_EQ(test.running_list(), "040001000600");
    test.clock_ms = 60000;
    EXPECT_EQ(test.running_list(), "020001000b00");
    EXPECT_EQ(test.working_list(), "020000000a00");
    EXPECT_EQ(test.config()["roll_backs"], 1);
}

TEST(ConfigurationStages, ARollBackTakesBackEditsAndTheUnconfirmedCommit) {
    SwitchChassis test;
    test.configure(195, "0500" + vlan_hex(1));
    test.configure(420);
    EXPECT_EQ(test.working_list(), "020000000a00");
    test.configure(195, "0500" + vlan_hex(1));
    test.configure(406);
    test.configure(420);
    EXPECT_EQ(test.running_list(), "020001000b00");
    EXPECT_EQ(test.working_list(), "020000000a00");
}

TEST(ConfigurationStages, AReloadBeginsWithWhatWasSaved) {
    SwitchChassis test;
    for (const char *number : {"0500", "0600"}) {
        test.configure(195, number + vlan_hex(1));
        test.configure(406);
        test.configure(421);
        if (std::string(number) == "0500") {
            test.configure(61);
            EXPECT_EQ(test.config()["saved"], true);
        }
    }
    EXPECT_EQ(test.running_list(), "040001000600");
    test.payload(0, 407);
    EXPECT_EQ(test.running_list(), "030001000600");
    test.configure(419);  // the factory's, to be committed like any edit
    EXPECT_EQ(test.working_list(), "020000000a00");
    EXPECT_EQ(test.running_list(), "030001000600");
    test.payload(0, 406);  // re-reads
    const Json config = test.config();
    EXPECT_EQ(config["rereads"], 1);
    EXPECT_EQ(config["reloads"], 1);
    EXPECT_EQ(config["commits"], 2);
}

TEST(ConfigurationStages, TheChassisWideStoresAreCommittedToo) {
    SwitchChassis test;
    for (const int slot : {16, 17, 18}) {
        for (const int command : {406, 421, 420, 419}) {
            test.configure(command, "", slot);
        }
        EXPECT_NE(test.status(slot, 61, "", to_configuration), 0);
    }
}

}  // namespace
}  // namespace tarn::chassis
