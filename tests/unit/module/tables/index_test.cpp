// Indices: built, read exactly, read partially for a successor, and as an iterator table's list.
#include "module/tables/frame/index.h"

#include <gtest/gtest.h>

namespace {

using namespace tarn;
using Oid = std::vector<oid>;

constexpr IndexPart ont_port[] = {slot_part, serial_part, ordinal_part(4)};
constexpr IndexPart channel_and_id[] = {slot_part, number_part(8), number_part(64)};

Row partial(Index index, const Oid &sub_ids) {
    Row row;
    parse_partial_index(index, sub_ids.data(), sub_ids.size(), row);
    return row;
}

bool exact(Index index, const Oid &sub_ids) {
    Row row;
    return parse_exact_index(index, sub_ids.data(), sub_ids.size(), row);
}

TEST(IndexTest, IsBuiltPartByPart) {
    Row row;
    row.slot = 4;
    row.serial = {'A', 'B', 'C', 'D', 0, 255, 1, 2};
    row.number = {3};
    Oid built(11);
    ASSERT_EQ(index_length(ont_port), 11U);
    build_index(ont_port, row, built.data());
    EXPECT_EQ(built, (Oid{5, 8, 65, 66, 67, 68, 0, 255, 1, 2, 4}));
    row.number = {3, 63};
    built.resize(3);
    build_index(channel_and_id, row, built.data());
    EXPECT_EQ(built, (Oid{5, 3, 63}));  // counted from 0
}

TEST(IndexTest, ExactReadingRefusesWhatIsShortOrOutOfRange) {
    EXPECT_TRUE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 8, 4}));
    EXPECT_FALSE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_FALSE(exact(ont_port, {0, 8, 1, 2, 3, 4, 5, 6, 7, 8, 4}));
    EXPECT_FALSE(exact(ont_port, {17, 8, 1, 2, 3, 4, 5, 6, 7, 8, 4}));
    EXPECT_FALSE(exact(ont_port, {16, 7, 1, 2, 3, 4, 5, 6, 7, 8, 4}));
    EXPECT_FALSE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 256, 4}));
    EXPECT_FALSE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0}));
    EXPECT_FALSE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 8, 5}));
    EXPECT_FALSE(exact(ont_port, {16, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0x100000001}));
    EXPECT_TRUE(exact(channel_and_id, {1, 0, 63}));
    EXPECT_FALSE(exact(channel_and_id, {1, 8, 0}));
    EXPECT_FALSE(exact(channel_and_id, {}));
}

TEST(IndexTest, MissingPartsLieBeforeTheFirstRow) {
    EXPECT_EQ(partial(ont_port, {}).number[0], -1);
    EXPECT_EQ(partial(ont_port, {}).serial, Serial{});
    const Row short_serial = partial(ont_port, {1, 8, 65, 66});
    EXPECT_EQ(short_serial.serial, (Serial{65, 66, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(short_serial.number[0], -1);
    EXPECT_EQ(partial(ont_port, {1, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0}).number[0], -1);
    EXPECT_EQ(partial(ont_port, {1, 8, 1, 2, 3, 4, 5, 6, 7, 8, 4}).number[0], 3);
    EXPECT_EQ(partial(channel_and_id, {1, 5}).number[1], -1);
}

TEST(IndexTest, PartsAboveTheirRangeLieBehindEveryRowOfTheirPrefix) {
    const Row wide_byte = partial(ont_port, {1, 8, 65, 300, 0, 0, 0, 0, 0, 0, 1});
    EXPECT_EQ(wide_byte.serial, (Serial{65, 255, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(wide_byte.number[0], 3);
    EXPECT_EQ(partial(ont_port, {1, 9, 0, 0}).serial, (Serial{255, 255, 255, 255, 255, 255, 255, 255}));
    EXPECT_EQ(partial(ont_port, {1, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0x80000000}).number[0], 3);
    const Row channel = partial(channel_and_id, {1, 4294967295, 2});
    EXPECT_EQ(channel.number[0], 7);
    EXPECT_EQ(channel.number[1], 63);
}

TEST(IndexTest, TheListOfAnIteratorTableGoesThereAndBack) {
    netsnmp_variable_list *list = nullptr;
    const u_long nothing = 0;
    for (int i = 0; i < 3; ++i) {
        snmp_varlist_add_variable(&list, nullptr, 0, ASN_UNSIGNED, &nothing, sizeof nothing);
    }
    Row row;
    row.slot = 15;
    row.serial = {1, 2, 3, 4, 5, 6, 7, 8};
    row.number = {2};
    fill_index_list(ont_port, row, list);
    EXPECT_EQ(*list->val.integer, 16);
    EXPECT_EQ(list->next_variable->type, ASN_OCTET_STR);
    EXPECT_EQ(list->next_variable->val_len, 8U);
    EXPECT_EQ(*list->next_variable->next_variable->val.integer, 3);
    Row back;
    ASSERT_TRUE(parse_index_list(ont_port, list, back));
    EXPECT_EQ(back.slot, 15);
    EXPECT_EQ(back.serial, row.serial);
    EXPECT_EQ(back.number[0], 2);
    *list->val.integer = -1;
    EXPECT_FALSE(parse_index_list(ont_port, list, back));
    snmp_free_varbind(list);
    EXPECT_FALSE(parse_index_list(ont_port, nullptr, back));
}

}  // namespace
