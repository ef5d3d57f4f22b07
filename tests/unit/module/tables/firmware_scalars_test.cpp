// The scalars of firmware updates and of disabling an ONT.
#include <sys/stat.h>

#include <cstring>
#include <filesystem>

#include "module/start/start.h"
#include "support/config_image.h"
#include "support/file_tree.h"
#include "support/snmp_calls.h"

#define DECLARE_SCALAR(X)                                                            \
    extern "C" int handle_##X(netsnmp_mib_handler *, netsnmp_handler_registration *, \
                              netsnmp_agent_request_info *, netsnmp_request_info *)

DECLARE_SCALAR(tarnONTDisableSlot);
DECLARE_SCALAR(tarnONTDisableONTSerial);
DECLARE_SCALAR(tarnONTDisableChannel);
DECLARE_SCALAR(tarnONTDisableActionDisable);
DECLARE_SCALAR(tarnONTDisableActionEnable);
DECLARE_SCALAR(tarnONTFirmwareUpdateViaOMCISlot);
DECLARE_SCALAR(tarnONTFirmwareUpdateViaOMCISerial);
DECLARE_SCALAR(tarnONTFirmwareUpdateViaOMCIFilename);
DECLARE_SCALAR(tarnONTFirmwareUpdateViaOMCIAction);
DECLARE_SCALAR(tarnONTFirmwaresVersionPriorityFile);
DECLARE_SCALAR(tarnONTAutoUpdateEnabled);

namespace {

class FirmwareScalarsTest : public Started<FileTest, 2> {
  protected:
    static Outcome get(Netsnmp_Node_Handler *handler) { return call_scalar(handler, MODE_GET); }
    static int phase(Netsnmp_Node_Handler *handler, int mode, const Value &value) {
        return call_scalar(handler, mode, &value).error;
    }
};

TEST_F(FirmwareScalarsTest, StandAtTheirIdentifiersWhileTheStoresAreUp) {
    const std::pair<const char *, Oid> scalars[] = {
        {"tarnONTDisableSlot", {3, 30000, 1}},
        {"tarnONTDisableONTSerial", {3, 30000, 2}},
        {"tarnONTDisableChannel", {3, 30000, 3}},
        {"tarnONTDisableActionDisable", {3, 30000, 4}},
        {"tarnONTDisableActionEnable", {3, 30000, 5}},
        {"tarnONTFirmwareUpdateViaOMCISlot", {3, 30, 11, 1}},
        {"tarnONTFirmwareUpdateViaOMCISerial", {3, 30, 11, 2}},
        {"tarnONTFirmwareUpdateViaOMCIFilename", {3, 30, 11, 3}},
        {"tarnONTFirmwareUpdateViaOMCIAction", {3, 30, 11, 4}},
        {"tarnONTFirmwaresVersionPriorityFile", {3, 30, 8}},
        {"tarnONTAutoUpdateEnabled", {3, 30, 23}},
    };
    const auto registered = [](const Oid &arcs) -> std::string {
        Oid name{1, 3, 6, 1, 4, 1, 32473, 1, 22};
        name.insert(name.end(), arcs.begin(), arcs.end());
        name.push_back(0);
        const netsnmp_subtree *found = netsnmp_subtree_find(name.data(), name.size(), nullptr, "");
        return found != nullptr && found->reginfo != nullptr ? found->reginfo->handlerName : "";
    };
    for (const auto &[name, arcs] : scalars) {
        EXPECT_EQ(registered(arcs), name);
    }
    slot_deinitializer(16);
    for (const auto &[name, arcs] : scalars) {
        EXPECT_NE(registered(arcs), name);
    }
}

// ---- Disabling an ONT ----

TEST_F(FirmwareScalarsTest, DisablesAndEnablesAnOnt) {
    board.answer(275, {});
    EXPECT_EQ(get(handle_tarnONTDisableSlot).integer, 1);
    EXPECT_EQ(get(handle_tarnONTDisableSlot).type, 66);
    EXPECT_EQ(get(handle_tarnONTDisableONTSerial).octets, std::string(8, '\0'));
    EXPECT_EQ(get(handle_tarnONTDisableChannel).integer, 0);

    EXPECT_EQ(set_scalar(handle_tarnONTDisableSlot, unsigned_value(3)), 0);
    EXPECT_EQ(set_scalar(handle_tarnONTDisableONTSerial, octets_value("ABCD1234")), 0);
    EXPECT_EQ(set_scalar(handle_tarnONTDisableChannel, unsigned_value(7)), 0);
    EXPECT_EQ(get(handle_tarnONTDisableSlot).integer, 3);
    EXPECT_EQ(get(handle_tarnONTDisableONTSerial).octets, "ABCD1234");
    EXPECT_EQ(get(handle_tarnONTDisableChannel).integer, 7);

    EXPECT_EQ(set_scalar(handle_tarnONTDisableActionDisable, unsigned_value(2)), 0);
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(set_scalar(handle_tarnONTDisableActionDisable, unsigned_value(1)), 0);
    EXPECT_EQ(board.sent.back().slot(), 2);
    EXPECT_EQ(board.payload_of(0), (Bytes{7, 'A', 'B', 'C', 'D', '1', '2', '3', '4', 0, 0, 0, 0, 255, 0}));
    EXPECT_EQ(set_scalar(handle_tarnONTDisableActionEnable, unsigned_value(1)), 0);
    EXPECT_EQ(board.payload_of(1), (Bytes{7, 'A', 'B', 'C', 'D', '1', '2', '3', '4', 0, 0, 0, 0, 0, 0}));
    board.silence(275);
    EXPECT_EQ(set_scalar(handle_tarnONTDisableActionDisable, unsigned_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(set_scalar(handle_tarnONTDisableActionEnable, unsigned_value(1)), SNMP_ERR_GENERR);
    EXPECT_EQ(get(handle_tarnONTDisableActionDisable).integer, 0);
    EXPECT_EQ(get(handle_tarnONTDisableActionEnable).integer, 0);

    EXPECT_EQ(set_scalar(handle_tarnONTDisableONTSerial, octets_value("AB")), 0);
    EXPECT_EQ(get(handle_tarnONTDisableONTSerial).octets, std::string("AB\0\0\0\0\0\0", 8));
    EXPECT_EQ(set_scalar(handle_tarnONTDisableONTSerial, octets_value("0123456789")), 0);
    EXPECT_EQ(get(handle_tarnONTDisableONTSerial).octets, "01234567");
    EXPECT_EQ(set_scalar(handle_tarnONTDisableONTSerial, integer_value(1)), SNMP_ERR_WRONGTYPE);
}

TEST_F(FirmwareScalarsTest, ChecksRangesInTheSecondPhaseWhenDisabling) {
    struct {
        Netsnmp_Node_Handler *handler;
        long value;
        int error;
    } const cases[] = {
        {handle_tarnONTDisableSlot, 0, SNMP_ERR_BADVALUE},
        {handle_tarnONTDisableSlot, 17, SNMP_ERR_BADVALUE},
        {handle_tarnONTDisableSlot, 16, 0},
        {handle_tarnONTDisableChannel, 7, 0},
        {handle_tarnONTDisableChannel, 8, SNMP_ERR_WRONGVALUE},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(phase(c.handler, MODE_SET_RESERVE1, unsigned_value(c.value)), 0);
        EXPECT_EQ(phase(c.handler, MODE_SET_RESERVE2, unsigned_value(c.value)), c.error);
        EXPECT_EQ(phase(c.handler, MODE_SET_RESERVE1, integer_value(c.value)), SNMP_ERR_WRONGTYPE);
    }
}

// ---- Update over OMCI ----

TEST_F(FirmwareScalarsTest, UpdatesAnOntOverOmci) {
    ConfigImage image;
    image.add_ont(65, "ABCD1234");
    image.serve();
    board.tftp_root = at("/tftp");
    std::filesystem::create_directories(at("/tftp/ont"));
    write(at("/tftp/ont/fw"), "image\n");
    board.answer(18, {});

    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCISlot).integer, 1);
    for (const long slot : {0L, 17L, 0xFFFFFFFFL}) {
        EXPECT_EQ(phase(handle_tarnONTFirmwareUpdateViaOMCISlot, MODE_SET_RESERVE1, unsigned_value(slot)),
                  SNMP_ERR_WRONGVALUE);
    }
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISlot, integer_value(3)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISlot, integer_value(17)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISlot, octets_value("3")), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISlot, unsigned_value(3)), 0);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISerial, octets_value("ABCD123")),
              SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCISerial, octets_value("ABCD1234")), 0);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCIFilename, octets_value(std::string(128, 'f'))),
              SNMP_ERR_WRONGLENGTH);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCIFilename, octets_value("a longer name")), 0);
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCIFilename, octets_value("fw")), 0);
    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCISlot).integer, 3);
    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCISerial).octets, "ABCD1234");
    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCIFilename).octets, "fw");
    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCIAction).integer, 0);

    const auto act = [] { return set_scalar(handle_tarnONTFirmwareUpdateViaOMCIAction, unsigned_value(1)); };
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCIAction, unsigned_value(3)), 0);
    EXPECT_EQ(board.count(18), 0);
    EXPECT_EQ(act(), 0);
    ASSERT_EQ(board.count(18), 1);
    const Bytes sent = board.sent.back().bytes;
    EXPECT_EQ(Bytes(sent.begin() + 32, sent.begin() + 40), (Bytes{1, 1, 0, 0, 0, 'f', 'w', 0}));
    EXPECT_EQ(Bytes(sent.begin() + 421, sent.begin() + 429), (Bytes{6, 0, 0, 0, 0xF2, 0x77, 0xC6, 0xC9}));

    board.refuse(18, 5);
    EXPECT_EQ(act(), SNMP_ERR_RESOURCEUNAVAILABLE);
    board.refuse(18, 6);
    EXPECT_EQ(act(), SNMP_ERR_GENERR);
    // A name with a NUL inside does not stand for the part in front of it.
    board.answer(18, {});
    EXPECT_EQ(set_scalar(handle_tarnONTFirmwareUpdateViaOMCIFilename, octets_value(std::string("fw\0x", 4))),
              0);
    EXPECT_EQ(get(handle_tarnONTFirmwareUpdateViaOMCIFilename).octets, "fw");
    EXPECT_EQ(act(), SNMP_ERR_GENERR);
    EXPECT_EQ(board.log.back(), "3 update_ont_firmware_via_OMCI : Open file error 13\n");
    board.link[2] = false;
    EXPECT_EQ(act(), SNMP_ERR_RESOURCEUNAVAILABLE);
    EXPECT_EQ(board.count(18), 3);
}

// ---- Version priorities and the switch ----

TEST_F(FirmwareScalarsTest, KeepsTheVersionPriorityFile) {
    const std::string file = at("/mnt/fs/tools/cpe/versions-prio.txt");
    const std::string remount = "sudo mount /dev/mtdblock6 /mnt/ext/ -o remount,ro,exec,noatime";
    const auto priorities = handle_tarnONTFirmwaresVersionPriorityFile;
    stand_in("sudo", "exit 1");
    EXPECT_EQ(get(priorities).octets, "");
    EXPECT_EQ(set_scalar(priorities, octets_value("one\ntwo")), 0);
    EXPECT_EQ(read(file), "one\ntwo\n");
    EXPECT_EQ(commands(), std::vector<std::string>{remount});
    EXPECT_EQ(get(priorities).octets, "one\ntwo\n");
    EXPECT_EQ(set_scalar(priorities, octets_value("")), 0);
    EXPECT_EQ(read(file), "\n");
    EXPECT_EQ(set_scalar(priorities, octets_value(std::string(16383, 'p'))), 0);
    EXPECT_EQ(read(file)->size(), 16384U);
    EXPECT_EQ(get(priorities).octets.size(), 16384U);
    EXPECT_EQ(set_scalar(priorities, octets_value(std::string(16384, 'p'))), SNMP_ERR_WRONGLENGTH);
    write(file, std::string(20000, 'q'));
    EXPECT_EQ(get(priorities).octets, std::string(16384, 'q'));
    std::filesystem::remove(file);
    EXPECT_EQ(get(priorities).octets, std::string(16384, 'q'));  // the last contents

    std::filesystem::create_symlink(at("/victim"), file);
    EXPECT_EQ(set_scalar(priorities, octets_value("x")), 0);
    {
        const FullDisk full;
        EXPECT_EQ(set_scalar(priorities, octets_value("lost")), SNMP_ERR_GENERR);
    }
    EXPECT_EQ(read(at("/victim")), "x\n");
    std::filesystem::remove(file);
    std::filesystem::create_symlink("/dev/full", file);
    EXPECT_EQ(set_scalar(priorities, octets_value("x")), SNMP_ERR_GENERR);
    EXPECT_EQ(call_scalar(priorities, 99).result, SNMP_ERR_GENERR);
}

TEST_F(FirmwareScalarsTest, SwitchesAutomaticUpdates) {
    const auto enabled = handle_tarnONTAutoUpdateEnabled;
    EXPECT_EQ(get(enabled).integer, 0);
    EXPECT_EQ(get(enabled).type, ASN_INTEGER);
    EXPECT_EQ(set_scalar(enabled, integer_value(2)), 0);
    EXPECT_EQ(get(enabled).integer, 2);
    EXPECT_EQ(read(at("/mnt/ram/config/ont_auto_update_set.txt")), "2\n");
    for (const long value : {-1L, 3L}) {
        EXPECT_EQ(set_scalar(enabled, integer_value(value)), SNMP_ERR_WRONGVALUE);
    }
    EXPECT_EQ(call_scalar(enabled, 99).result, 0);
    std::filesystem::remove_all(at("/mnt/ram"));
    EXPECT_EQ(set_scalar(enabled, integer_value(1)), SNMP_ERR_GENERR);
}

}  // namespace
