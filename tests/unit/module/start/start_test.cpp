// Module descriptor, truth values, start and stop of slots.
#include "module/start/start.h"

#include <cstring>

#include "module/abi/version_text.h"
#include "module/common/truth_value.h"
#include "module/operations/channel_queries.h"
#include "module/store/ont_sections.h"
#include "module/store/slot_database.h"
#include "module/store/utilization_sections.h"
#include "support/scripted_board.h"

namespace {

class CommonTest : public ModuleTest {};

TEST_F(CommonTest, DescriptorIsFilledToTheLastByte) {
    Bytes descriptor(86, 0xEE);
    EXPECT_EQ(mod_get_info(descriptor.data()), 0);
    Bytes expected(86, 0);
    std::memcpy(expected.data(), "mod_snmp_agent", 14);
    std::memcpy(expected.data() + 32, "blade-8", 7);
    expected[64] = 3;
    expected[68] = 3;
    expected[72] = 38;
    expected[76] = 1;
    expected[80] = 36;
    expected[84] = expected[85] = 0xEE;
    EXPECT_EQ(descriptor, expected);
    EXPECT_EQ(Bytes(get_sm_version(), get_sm_version() + 64), Bytes(64, 0));
}

TEST_F(CommonTest, OnlyAnExactOneIsTrue) {
    EXPECT_EQ(set_truth_value(1), 1);
    EXPECT_EQ(set_truth_value(2), 0);
    EXPECT_EQ(set_truth_value(7), 0);
    EXPECT_EQ(get_truth_value(0), 2);
    EXPECT_EQ(get_truth_value(1), 1);
    EXPECT_EQ(get_truth_value(2), 2);
    EXPECT_EQ(get_truth_value(65537), 1);  // only the low 16 bits count
}

TEST_F(CommonTest, SlotsOutsideTheChassisAreRefusedAndStoppedOnesAskNobody) {
    EXPECT_EQ(slot_initializer(17), -1);
    EXPECT_EQ(slot_initializer(-1), -1);
    EXPECT_EQ(get_slot_mandb(16), nullptr);
    EXPECT_EQ(get_slot_mandb(-1), nullptr);
    EXPECT_EQ(get_slot_mandb(0), nullptr);
    EXPECT_EQ(slot_deinitializer(5), 0);
    EXPECT_EQ(get_olt_channel_state(4, 0), nullptr);
    EXPECT_EQ(get_olt_channels_state_lite(4), nullptr);
    EXPECT_EQ(get_olt_state(4), nullptr);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(CommonTest, StartingTwiceKeepsTheDatabaseAndItsContents) {
    start({3});
    auto *db = tarn::slot_sections<tarn::OntSections>(3);
    ASSERT_NE(db, nullptr);
    db->ont_list[9][0] = 'A';
    EXPECT_EQ(slot_initializer(3), 0);
    EXPECT_EQ(tarn::slot_sections<tarn::OntSections>(3), db);
    EXPECT_EQ(db->ont_list[9][0], 'A');
    EXPECT_EQ(get_slot_mandb(16), nullptr);  // though the chassis-wide stores are up
    slot_deinitializer(3);
    EXPECT_EQ(get_slot_mandb(3), nullptr);
}

TEST_F(CommonTest, ChassisStoresStartOnceWithTheDefaultInterval) {
    EXPECT_EQ(get_profiles_mandb(), nullptr);
    start({});
    auto *profiles = tarn::chassis_sections<tarn::UtilizationSections>();
    ASSERT_NE(profiles, nullptr);
    EXPECT_EQ(profiles->utilization_interval, 300);
    profiles->utilization_interval = 60;
    EXPECT_EQ(slot_initializer(16), 0);
    EXPECT_EQ(tarn::chassis_sections<tarn::UtilizationSections>()->utilization_interval, 60);
    EXPECT_EQ(slot_deinitializer(16), 0);
    EXPECT_EQ(get_profiles_mandb(), nullptr);
    EXPECT_EQ(slot_deinitializer(16), 0);
}

TEST_F(CommonTest, TheBufferGoesWithTheFirstStopAndComesWithTheNextStart) {
    start({1, 2});
    slot_deinitializer(1);
    EXPECT_EQ(slot_initializer(2), 0);
    EXPECT_EQ(cleanup_lib(), 0);
    EXPECT_EQ(cleanup_lib(), 0);  // nothing started
    EXPECT_TRUE(board.log.empty());
}

}  // namespace
