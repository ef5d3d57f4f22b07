#include <gtest/gtest.h>

#include "tarn/host_services.h"

namespace {

TEST(EnumerationNamesTest, NamesWhatItKnowsAndNumbersTheRest) {
    const char *states = "GPonOntConnectionStateIndicatorType_enum";
    EXPECT_STREQ(gpon_enum_find_name_by_type(states, 7), "working");
    EXPECT_STREQ(gpon_enum_find_name_by_type(states, 11), "loss of signal");
    EXPECT_STREQ(gpon_enum_find_name_by_type(states, 200), "unknown (200)");
    EXPECT_STREQ(gpon_enum_find_name_by_type("another_enum", 7), "unknown (7)");
}

}  // namespace
