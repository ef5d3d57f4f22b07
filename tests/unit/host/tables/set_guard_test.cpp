// Repeated SETs are answered without reaching the module again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <net-snmp/agent/agent_callbacks.h>

#include "host/tables/set_guard.h"
#include "host/tables/table_registration.h"
#include "support/captured_log.h"
#include "support/fake_pdu.h"

namespace tarn::host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SetGuardTest : public testing::Test {
  protected:
    SetGuardTest() {
        fake = {};
        (void)slots.follow([](int slot) { return slot == 3; });
        guard.watch(true);
        registration = register_table(table);
    }
    ~SetGuardTest() override { unregister_table(registration); }
    // Sends a SET through all its phases; returns its error-status.
    int set(int request_id, const std::vector<oid> &name, const std::string &peer = "127.0.0.1:40000") {
        FakePdu pdu(++transaction);
        pdu.add(name);
        std::string transport = peer;
        pdu.pdu().reqid = request_id;
        pdu.pdu().transport_data = transport.data();
        pdu.pdu().transport_data_length = static_cast<int>(transport.size());
        for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION}) {
            pdu.serve(registration, mode);
            if (pdu.error() != 0) {
                pdu.serve(registration, mode == MODE_SET_ACTION ? MODE_SET_UNDO : MODE_SET_FREE);
                return pdu.error();
            }
        }
        pdu.serve(registration, MODE_SET_COMMIT);
        return pdu.error();
    }

    CapturedLog log;
    Slots slots{SlotSet().set(), [](int) { return 0; }, [](int) { return 0; }, [] {}};
    RowCache cache{1000};
    Table table{slot_table_schema(), nextgen_callbacks, cache, slots};
    SetGuard guard;
    netsnmp_handler_registration *registration = nullptr;
    long transaction = 0;
};

TEST_F(SetGuardTest, CarriesARepeatedSetOutOnce) {
    EXPECT_EQ(set(7, instance(5, {4, 8})), 0);
    EXPECT_EQ(fake.calls.size(), 4U);
    fake.calls.clear();
    EXPECT_EQ(set(7, instance(5, {4, 8})), 0);
    EXPECT_EQ(set(7, instance(5, {4, 8})), 0);
    EXPECT_THAT(fake.calls, IsEmpty());
    EXPECT_EQ(set(8, instance(5, {4, 8})), 0) << "another request-id";
    EXPECT_EQ(set(7, instance(5, {4, 9})), 0) << "another variable";
    EXPECT_EQ(set(7, instance(5, {4, 8}), "127.0.0.1:40001"), 0) << "another manager";
    EXPECT_EQ(fake.calls.size(), 12U);
}

TEST_F(SetGuardTest, CarriesOutASetThatComesAgainAfterAnother) {
    for (const oid row : {2U, 1U, 2U}) {
        EXPECT_EQ(set(7, instance(5, {4, row})), 0);
    }
    EXPECT_EQ(fake.calls.size(), 12U);
    // Also where each of them comes from a socket of its own.
    for (const char *peer : {"127.0.0.1:40001", "127.0.0.1:40002", "127.0.0.1:40003"}) {
        EXPECT_EQ(set(7, instance(5, {4, 2}), peer), 0);
    }
    EXPECT_EQ(fake.calls.size(), 24U);
}

TEST_F(SetGuardTest, GivesTheFirstErrorAgain) {
    fake.handle = [](int mode, netsnmp_request_info *) {
        return mode == MODE_SET_ACTION ? SNMP_ERR_GENERR : 0;
    };
    EXPECT_EQ(set(7, instance(5, {4, 8})), SNMP_ERR_GENERR);
    fake.calls.clear();
    EXPECT_EQ(set(7, instance(5, {4, 8})), SNMP_ERR_GENERR);
    EXPECT_EQ(set(7, instance(5, {17, 8})), SNMP_ERR_NOCREATION);
    EXPECT_EQ(set(7, instance(5, {17, 8})), SNMP_ERR_NOCREATION);
    EXPECT_THAT(fake.calls, IsEmpty());
}

}  // namespace
}  // namespace tarn::host::test
