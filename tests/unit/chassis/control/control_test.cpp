// The control socket's requests, line by line.
#include <gtest/gtest.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

struct TestControl : TestChassis {
    Control control{chassis};
    std::string operator()(const std::string &line) {
        std::string answer = control.answer(line);
        EXPECT_EQ(answer.back(), '\n');
        answer.pop_back();
        return answer;
    }
};

TEST(Control, FaultsAreAddedListedAndCleared) {
    TestControl control;
    EXPECT_EQ(
        control(R"({"do":"fault-add","kind":"slow","milliseconds":250,"slot":0,"command":69,"times":2})"),
        R"({"id":1})");
    EXPECT_EQ(control(R"({"do":"fault-add","kind":"silent","slot":5})"), R"({"id":2})");
    EXPECT_EQ(control.send(0, 69).delay_ms, 250U);
    EXPECT_EQ(
        control(R"({"do":"fault-list"})"),
        R"({"faults":[{"id":1,"kind":"slow","milliseconds":250,"slot":0,"command":69,"times":1,"hits":1},)"
        R"({"id":2,"kind":"silent","slot":5,"hits":0}]})");
    EXPECT_EQ(control(R"({"do":"fault-clear","id":2})"), R"({"cleared":1})");
    EXPECT_EQ(control(R"({"do":"fault-clear","id":2})"), R"({"error":"no fault 2"})");
    EXPECT_EQ(control(R"({"do":"fault-clear"})"), R"({"cleared":1})");
    EXPECT_EQ(control.send(0, 69).delay_ms, 0U);
}

TEST(Control, RequestsAndCounts) {
    TestControl control;
    control.clock_ms = 7;
    control.send(0, 314, "010400");
    control.send(0, 313, "01");
    control.send(0, 313, "09");
    control.send(5, 170, "", 5);
    EXPECT_EQ(
        control(R"({"do":"requests","command":314})"),
        R"({"requests":[{"sequence":1,"time_ms":7,"slot":0,"command":314,"name":"set_activation_auth_mode",)"
        R"("destination":8,"length":35,"payload":"010400","outcome":"answered","status":0}]})");
    EXPECT_EQ(
        control(R"({"do":"requests","after":1,"slot":0,"limit":1})"),
        R"({"requests":[{"sequence":3,"time_ms":7,"slot":0,"command":313,"name":"get_activation_auth_mode",)"
        R"("destination":8,"length":33,"payload":"09","outcome":"answered","status":2}]})");
    EXPECT_EQ(control(R"({"do":"counts"})"),
              R"({"counts":[{"slot":0,"command":313,"count":2},{"slot":0,"command":314,"count":1},)"
              R"({"slot":5,"command":170,"count":1}],"total":4})");
    EXPECT_EQ(control(R"({"do":"counts","slot":0,"command":313})"),
              R"({"counts":[{"slot":0,"command":313,"count":2}],"total":2})");
    EXPECT_EQ(control(R"({"do":"requests-reset"})"), "{}");
    EXPECT_EQ(control(R"({"do":"counts"})"), R"({"counts":[],"total":0})");
    control.chassis.faults().add({.kind = FaultKind::silent});
    control.send(5, 69);
    EXPECT_EQ(control(R"({"do":"requests"})"),
              R"({"requests":[{"sequence":5,"time_ms":7,"slot":5,"command":69,"name":"get_olt_state",)"
              R"("destination":8,"length":32,"payload":"","outcome":"silent"}]})");
}

TEST(Control, TheRequestLogIsBounded) {
    RequestLog log;
    for (int i = 0; i < 10000; ++i) {
        log.add({.slot = 1, .command = 69});
    }
    EXPECT_EQ(log.entries().size(), RequestLog::max_entries);
    EXPECT_EQ(log.entries().back().sequence, 10000U);
    EXPECT_EQ(log.counts().at({1, 69}), 10000U);
    for (int i = 0; i < 20; ++i) {
        RequestEntry large;
        large.payload.resize(std::size_t{1} << 20);
        log.add(std::move(large));
    }
    EXPECT_EQ(log.entries().size(), 16U);
}

TEST(Control, StateIsReadAndWritten) {
    TestControl control;
    EXPECT_EQ(
        control(
            R"({"do":"state-set","slot":0,"item":"channel-config","channel":2,"offset":0,"hex":"0000FF"})"),
        "{}");
    EXPECT_EQ(control.payload(0, 85, "02").substr(0, 8), "020000ff");
    EXPECT_EQ(control(R"({"do":"state-set","slot":0,"item":"channel-enabled","channel":2,"value":258})"),
              "{}");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"channel-config","channel":2})").substr(0, 14),
              R"({"hex":"0201ff)");
    EXPECT_EQ(control(R"({"do":"state-set","slot":0,"item":"received","channel":2,"value":77})"), "{}");
    control.send(0, 314, "020400");
    control.send(0, 14, "02");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"channel","channel":2})"),
              R"({"working_onts":0,"received":77,"activation_mode":4,"enabled":258,"reconfigurations":1,)"
              R"("counter_resets":0})");

    EXPECT_EQ(
        control(R"({"do":"state-set","slot":0,"item":"ont-code","serial":"5441524e00000001","value":12})"),
        "{}");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"ont","serial":"5441524E00000001"})"),
              R"({"serial":"5441524e00000001","channel":0,"id":0,"code":12,"enabled":true,"errors":0,)"
              R"("reconfigurations":0,"reboots":0,"defaults":0,"counter_resets":0})");
    EXPECT_EQ(control.payload(0, 73, "ff").substr(2 * (5 + 68), 4), "0c00");
    EXPECT_EQ(control(R"({"do":"state-set","slot":0,"item":"addresses","value":1000})"), "{}");
    EXPECT_EQ(control.payload(0, 80, all_addresses).substr(0, 6), "ffe803");
    EXPECT_EQ(control(R"({"do":"state-set","slot":0,"item":"onts","value":1024})"), "{}");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"counts"})"),
              R"({"onts":1024,"addresses":1000,"pppoe_sessions":1,"mac_addresses":256})");
    EXPECT_EQ(control.payload(0, 73, "ff").size(), 2 * (5 + 1024 * 106U));
}

TEST(Control, TheClockGoesOnAtAnotherSpeed) {
    TestControl control;
    control.clock_ms = 1000;
    EXPECT_EQ(control(R"({"do":"clock"})"), R"({"time_ms":1000,"factor":1.0})");
    EXPECT_EQ(control(R"({"do":"clock","factor":2.5})"), R"({"time_ms":1000,"factor":2.5})");
    control.clock_ms = 1400;
    EXPECT_EQ(control(R"({"do":"clock","factor":0})"), R"({"time_ms":2000,"factor":0.0})");
    control.clock_ms = 9000;
    EXPECT_EQ(control.chassis.now(), 2000U);
}

TEST(Control, AnOntsStoredRecordIsFoundBySerial) {
    TestControl control;
    const std::string by_index = control(R"({"do":"state-get","slot":0,"item":"ont-config","index":64})");
    const std::string serial = by_index.substr(8 + 2 * 264, 16);
    EXPECT_NE(serial, zeros(8));
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"ont-config","serial":")" + serial + "\"}"),
              by_index);
    // A record that is not in use is nobody's.
    control(R"({"do":"state-set","slot":0,"item":"ont-config","index":64,"offset":4,"hex":"0000"})");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"ont-config","serial":")" + serial + "\"}"),
              R"({"error":"no ONT with this serial is configured"})");
}

TEST(Control, CardsComeAndGo) {
    TestControl control;
    EXPECT_EQ(control(R"({"do":"cards"})"),
              R"({"cards":[{"slot":0,"onts":3,"addresses":2,"pppoe_sessions":1},)"
              R"({"slot":5,"onts":0,"addresses":0,"pppoe_sessions":0}]})");
    EXPECT_EQ(control(R"({"do":"card-pull","slot":0})"), "{}");
    EXPECT_EQ(control(R"({"do":"card-pull","slot":0})"), R"({"error":"no card in the slot"})");
    EXPECT_EQ(control(R"({"do":"state-get","slot":0,"item":"counts"})"),
              R"({"error":"no card in the slot"})");
    EXPECT_EQ(control(R"({"do":"card-insert","slot":0})"), "{}");
    EXPECT_EQ(control(R"({"do":"card-insert","slot":0})"), R"({"error":"the slot has a card already"})");
}

TEST(Control, WrongRequestsAreAnsweredWithAnError) {
    TestControl control;
    const std::pair<const char *, const char *> cases[] = {
        {R"([1])", "a request is a JSON object"},
        {R"({})", "do is missing"},
        {R"({"do":1})", "do must be a text"},
        {R"({"do":"dance"})", "unknown request \\\"dance\\\""},
        {R"({"do":"version","slot":1})", "unknown key \\\"slot\\\" in version"},
        {R"({"do":"card-pull"})", "slot is missing"},
        {R"({"do":"card-pull","slot":"0"})", "slot must be an integer"},
        {R"({"do":"card-pull","slot":1.5})", "slot must be an integer"},
        {R"({"do":"card-pull","slot":16})", "slot must lie between 0 and 15"},
        {R"({"do":"fault-add","kind":"slow"})", "a fault of kind slow needs milliseconds"},
        {R"({"do":"fault-add","kind":"wrong_count","count":9,"command":69})",
         "the answer to command 69 has no count"},
        {R"({"do":"clock","factor":-1})", "factor must be a number between 0 and 1000"},
        {R"({"do":"clock","factor":1001})", "factor must be a number between 0 and 1000"},
        {R"({"do":"clock","factor":"1"})", "factor must be a number between 0 and 1000"},
        {R"({"do":"state-get","slot":0,"item":"weather"})", "unknown item \\\"weather\\\""},
        {R"({"do":"state-set","slot":0,"item":"channel"})", "unknown item \\\"channel\\\""},
        {R"({"do":"state-get","slot":0,"item":"channel","channel":8})", "channel must lie between 0 and 7"},
        {R"({"do":"state-get","slot":0,"item":"ont","serial":"54"})", "a serial has 8 bytes"},
        {R"({"do":"state-get","slot":0,"item":"ont","serial":"zz"})", "not hexadecimal: \\\"zz\\\""},
        {R"({"do":"state-get","slot":0,"item":"ont","serial":"0000000000000000"})", "no such ONT"},
        {R"({"do":"state-set","slot":0,"item":"olt-state","offset":31,"hex":"0000"})",
         "the record has 32 bytes"},
        {R"({"do":"state-set","slot":0,"item":"olt-state","offset":0,"hex":"000"})",
         "an odd number of hexadecimal digits"},
        {R"({"do":"state-set","slot":5,"item":"addresses","value":1})", "the card has no ONTs"},
    };
    for (const auto &[line, message] : cases) {
        EXPECT_EQ(control(line), std::string(R"({"error":")") + message + R"("})") << line;
    }
    EXPECT_EQ(control("{\"do\":").substr(0, 10), R"({"error":")");
    EXPECT_EQ(control("\xFF\xFE").substr(0, 10), R"({"error":")");
    EXPECT_TRUE(control.chassis.faults().list().empty());
    EXPECT_FALSE(control.control.shutdown_requested());
    EXPECT_EQ(control(R"({"do":"shutdown"})"), "{}");
    EXPECT_TRUE(control.control.shutdown_requested());
}

}  // namespace
}  // namespace tarn::chassis
