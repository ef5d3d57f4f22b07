// Registration and phases of the module's scalars.
#include "module/start/start.h"
#include "module/tables/scalars.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

extern "C" int handle_tarnPortsUtilizationInterval(netsnmp_mib_handler *, netsnmp_handler_registration *,
                                                   netsnmp_agent_request_info *, netsnmp_request_info *);

namespace {

constexpr auto interval = handle_tarnPortsUtilizationInterval;

// net-snmp's log lines, as they come.
std::string logged_text;
int collect(int, int, void *arguments, void *) {
    logged_text += static_cast<snmp_log_message *>(arguments)->msg;
    return 0;
}

class ScalarTest : public ModuleTest {
  protected:
    void SetUp() override {
        ModuleTest::SetUp();
        logged_text.clear();
        snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, collect, nullptr);
        snmp_enable_calllog();
    }
    void TearDown() override {
        ModuleTest::TearDown();
        snmp_disable_calllog();
        snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, collect, nullptr, 0);
    }
    static long value() { return call_scalar(interval, MODE_GET).integer; }
    // The name of the handler that net-snmp has at the scalar's instance.
    static std::string registered() {
        const Oid name{1, 3, 6, 1, 4, 1, 32473, 1, 22, 4, 50, 1, 0};
        const netsnmp_subtree *found = netsnmp_subtree_find(name.data(), name.size(), nullptr, "");
        return found != nullptr && found->reginfo != nullptr ? found->reginfo->handlerName : "";
    }
};

TEST_F(ScalarTest, TheIntervalIsKeptForTheWholeChassis) {
    start({});
    const Outcome fresh = call_scalar(interval, MODE_GET);
    EXPECT_EQ(fresh.type, 66);
    EXPECT_EQ(fresh.integer, 300);
    EXPECT_EQ(set_scalar(interval, unsigned_value(65535)), 0);
    EXPECT_EQ(value(), 65535);
    EXPECT_EQ(set_scalar(interval, unsigned_value(65536)), SNMP_ERR_WRONGVALUE);
    EXPECT_EQ(set_scalar(interval, integer_value(7)), SNMP_ERR_WRONGTYPE);
    EXPECT_EQ(value(), 65535);
}

TEST_F(ScalarTest, TheValueIsTakenInTheActionPhaseAndNotUndone) {
    start({});
    const Value wanted = unsigned_value(60);
    call_scalar(interval, MODE_SET_RESERVE1, &wanted);
    call_scalar(interval, MODE_SET_RESERVE2, &wanted);
    EXPECT_EQ(value(), 300);
    call_scalar(interval, MODE_SET_ACTION, &wanted);
    EXPECT_EQ(value(), 60);
    EXPECT_EQ(call_scalar(interval, MODE_SET_UNDO, &wanted).result, 0);
    EXPECT_EQ(value(), 60);
}

TEST_F(ScalarTest, AnUnknownModeIsLogged) {
    start({});
    EXPECT_EQ(call_scalar(interval, 99).result, SNMP_ERR_GENERR);
    EXPECT_EQ(logged_text, "unknown mode (99) in handle_tarnPortsUtilizationInterval\n");
}

TEST_F(ScalarTest, StaysRegisteredOnceThroughEveryStartAndHasNoValueWhileStopped) {
    const std::string name = "tarnPortsUtilizationInterval";
    start({});
    EXPECT_EQ(registered(), name);
    slot_deinitializer(16);
    EXPECT_EQ(registered(), name);
    EXPECT_EQ(call_scalar(interval, MODE_GET).error, SNMP_ERR_GENERR);
    EXPECT_EQ(set_scalar(interval, unsigned_value(1)), SNMP_ERR_GENERR);
    start({});
    EXPECT_EQ(registered(), name);
    EXPECT_EQ(value(), 300);
    EXPECT_EQ(logged_text, "");  // no duplicate registration
    deinit_tarnPortsUtilizationInterval_manual();
    EXPECT_NE(registered(), name);
    deinit_tarnPortsUtilizationInterval_manual();
}

}  // namespace
