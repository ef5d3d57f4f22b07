// The counter catalogue.
#include "module/statistics/GStatisticsCommon.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string short_name(int module, int direction, int index) {
    const char *name = gpon_stat_common_get_shortname(module, direction, index);
    return name != nullptr ? name : "(null)";
}

std::string long_name(int module, int direction, int index) {
    const char *name = gpon_stat_common_get_longname(module, direction, index);
    return name != nullptr ? name : "(null)";
}

// The position after the last counter, found through the names.
int length_of(int module, int direction) {
    int length = 0;
    while (gpon_stat_common_get_shortname(module, direction, length) != nullptr) {
        ++length;
    }
    return length;
}

TEST(CounterCatalogueTest, EveryModuleHasItsRowAndLength) {
    const int rows[] = {0, 2, 4, 6, 8, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20};
    const int up[] = {8, 14, 6, 4, 4, 15, 2, 15, 2, 6, 15, 15, 10, 4, 6, 15};
    const int down[] = {27, 16, 4, 4, 4, 2, 15, 2, 6, 15, 15, 10, 4, 6, 15, 15};
    for (int module = 0; module < 16; ++module) {
        EXPECT_EQ(gpon_stat_common_get_module_offset(module, 0), rows[module]);
        EXPECT_EQ(gpon_stat_common_get_module_offset(module, 1), rows[module] + 1);
        EXPECT_EQ(gpon_stat_common_get_counters_number(module, 0), up[module]) << module;
        EXPECT_EQ(length_of(module, 0), up[module]) << module;
        EXPECT_EQ(length_of(module, 1), down[module]) << module;
        EXPECT_EQ(gpon_stat_common_get_counters_number(module, 1), module == 15 ? 4 : down[module]) << module;
    }
}

TEST(CounterCatalogueTest, CountersCarryTheBoardsIdsAndNames) {
    EXPECT_EQ(short_name(0, 1, 26), "RX Frame errors");
    EXPECT_EQ(gpon_stat_common_get_counterid(0, 1, 27), -1);
    EXPECT_EQ(short_name(0, 1, 27), "(null)");
    EXPECT_EQ(gpon_stat_common_get_counterid(0, 0, 2), 29);
    EXPECT_EQ(gpon_stat_common_get_countermodule(0, 0, 2), 4);
    EXPECT_EQ(gpon_stat_common_get_counterentity(0, 0, 2), 0);
    EXPECT_EQ(long_name(0, 0, 2),
              "Number of frames transmitted with error: (1) FIFO Overflow Error (2) FIFO Underflow Error (3) "
              "User application defined error");
    EXPECT_EQ(gpon_stat_common_get_countermodule(2, 0, 3), 2);
    EXPECT_EQ(gpon_stat_common_get_counterentity(2, 0, 3), 3);
    EXPECT_EQ(gpon_stat_common_get_counterid(2, 0, 3), 14);
    EXPECT_EQ(short_name(3, 1, 2), "Received payload bytes LOW");
    EXPECT_EQ(gpon_stat_common_get_counterid(3, 1, 2), 3);
    EXPECT_EQ(gpon_stat_common_get_countermodule(3, 1, 2), -1);
    EXPECT_EQ(long_name(5, 0, 0), "Shows the recently finished 15-minute interval");
    EXPECT_EQ(long_name(5, 0, 1), "");
    EXPECT_EQ(short_name(12, 0, 7), "Transmittes blocks (low 16 bits)");
    EXPECT_EQ(short_name(12, 0, 9), "Impaired blocks");
    EXPECT_EQ(gpon_stat_common_get_counterid(12, 0, 10), 0);  // this list has no end mark
    EXPECT_EQ(short_name(12, 0, 10), "(null)");
    EXPECT_EQ(gpon_stat_common_get_counterid(14, 0, 5), 14);
    EXPECT_EQ(short_name(15, 1, 14), "Packets 1024 to 1518 octets");
    EXPECT_EQ(gpon_stat_common_get_counterid(15, 1, 15), -1);
}

TEST(CounterCatalogueTest, BadDirectionsModulesAndIndicesFindNothing) {
    for (const int direction : {2, 3, 0xFFFF}) {
        EXPECT_EQ(gpon_stat_common_get_module_offset(0, direction), -1);
        EXPECT_EQ(gpon_stat_common_get_counters_number(0, direction), -1);
        EXPECT_EQ(gpon_stat_common_get_counterid(0, direction, 0), -1);
        EXPECT_EQ(gpon_stat_common_get_countermodule(0, direction, 0), -1);
        EXPECT_EQ(gpon_stat_common_get_counterentity(0, direction, 0), -1);
        EXPECT_EQ(short_name(0, direction, 0), "(null)");
        EXPECT_EQ(long_name(0, direction, 0), "(null)");
        EXPECT_EQ(gpon_stat_common_get_counterindex(0, direction, 27), -1);
    }
    EXPECT_EQ(short_name(0x10000, 0x10001, 0), "RX Alignment errors");  // 16 bits count
    EXPECT_EQ(gpon_stat_common_get_module_offset(16, 0), -1);
    EXPECT_EQ(gpon_stat_common_get_counters_number(-1, 0), -1);
    // An index leads into the neighbouring lists, but never out of the catalogue.
    EXPECT_EQ(short_name(0, 0, 128), "RX Alignment errors");
    EXPECT_EQ(gpon_stat_common_get_counterid(0, 1, -1), 0);
    EXPECT_EQ(gpon_stat_common_get_counterid(0, 0, -1), -1);
    EXPECT_EQ(short_name(15, 1, 128), "(null)");
    EXPECT_EQ(gpon_stat_common_get_counterid(15, 1, 32767), -1);
}

TEST(CounterCatalogueTest, FindsACounterById) {
    EXPECT_EQ(gpon_stat_common_get_counterindex(1, 0, 0), 0);
    EXPECT_EQ(gpon_stat_common_get_counterindex(1, 0, 18), 13);
    EXPECT_EQ(gpon_stat_common_get_counterindex(1, 0, 3), -2);
    EXPECT_EQ(gpon_stat_common_get_counterindex(12, 0, 10), -2);
}

}  // namespace
