// A table's index and its rows: decoding, enumeration, order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/services/block_allocator.h"
#include "host/services/cache_clock.h"
#include "host/tables/row_cache.h"
#include "host/tables/row_source.h"
#include "support/captured_log.h"
#include "support/fake_table.h"

namespace tarn::host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Suffixes = std::vector<std::vector<std::uint32_t>>;

Suffixes suffixes_of(const RowIndex &rows) {
    Suffixes all;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const auto suffix = rows.suffix(row);
        all.emplace_back(suffix.begin(), suffix.end());
    }
    return all;
}

const IndexPart slot_part{.type = ASN_UNSIGNED, .is_slot = true};
const IndexPart number_part{.type = ASN_UNSIGNED};
const IndexPart serial_part{
    .type = ASN_OCTET_STR, .minimum_length = 8, .maximum_length = 8, .length_prefixed = true};
const IndexPart name_part{.type = ASN_OCTET_STR, .maximum_length = 31, .length_prefixed = true};
const IndexPart mac_part{.type = ASN_OCTET_STR, .minimum_length = 6, .maximum_length = 6};

TEST(IndexCodec, DecodesTypedValues) {
    IndexValues values(std::vector<IndexPart>{slot_part, serial_part, number_part});
    ASSERT_TRUE(values.decode(std::vector<oid>{16, 8, 84, 65, 82, 78, 0, 1, 2, 255, 4294967295UL}));
    const netsnmp_variable_list *value = values.list();
    EXPECT_EQ(*value->val.integer, 16);
    value = value->next_variable;
    EXPECT_EQ(value->type, ASN_OCTET_STR);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(value->val.string), value->val_len),
              std::string("TARN\0\1\2\xff", 8));
    value = value->next_variable;
    EXPECT_EQ(*value->val.integer, 4294967295L);
    std::vector<std::uint32_t> suffix;
    EXPECT_TRUE(
        encode_index(std::vector<IndexPart>{slot_part, serial_part, number_part}, values.list(), suffix));
    EXPECT_THAT(suffix, ElementsAre(16, 8, 84, 65, 82, 78, 0, 1, 2, 255, 4294967295U));
}

TEST(IndexCodec, FixedSizesHaveNoLength) {
    IndexValues values(std::vector<IndexPart>{slot_part, mac_part});
    EXPECT_TRUE(values.decode(std::vector<oid>{1, 0, 1, 2, 3, 4, 255}));
    EXPECT_FALSE(values.decode(std::vector<oid>{1, 6, 0, 1, 2, 3, 4, 255}));
}

TEST(IndexCodec, RefusesWhatDoesNotFit) {
    IndexValues numbers(std::vector<IndexPart>{slot_part, number_part});
    EXPECT_FALSE(numbers.decode(std::vector<oid>{1})) << "too short";
    EXPECT_FALSE(numbers.decode(std::vector<oid>{1, 2, 3})) << "too long";
    EXPECT_FALSE(numbers.decode(std::vector<oid>{1, 4294967296UL})) << "beyond 32 bits";
    EXPECT_FALSE(numbers.decode(std::vector<oid>{0, 2})) << "slots count from 1";
    EXPECT_FALSE(numbers.decode(std::vector<oid>{17, 2}));
    EXPECT_FALSE(numbers.decode({}));

    IndexValues serials(std::vector<IndexPart>{serial_part});
    EXPECT_FALSE(serials.decode(std::vector<oid>{0})) << "the empty serial";
    EXPECT_FALSE(serials.decode(std::vector<oid>{7, 1, 2, 3, 4, 5, 6, 7}));
    EXPECT_FALSE(serials.decode(std::vector<oid>{9, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_FALSE(serials.decode(std::vector<oid>{8, 1, 2, 3, 4, 5, 6, 7, 256})) << "an octet beyond 255";
    EXPECT_FALSE(serials.decode(std::vector<oid>{8, 1, 2, 3, 4, 5, 6, 7}));

    IndexValues names(std::vector<IndexPart>{name_part});
    EXPECT_TRUE(names.decode(std::vector<oid>{0}));
    EXPECT_FALSE(names.decode(std::vector<oid>{32, 1}));
    EXPECT_FALSE(names.decode(std::vector<oid>{4294967297UL, 1}));
    const std::string text(32, 'x');
    std::vector<std::uint32_t> suffix;
    (void)snmp_set_var_typed_value(names.list(), ASN_OCTET_STR, text.data(), 32);
    EXPECT_FALSE(encode_index(std::vector<IndexPart>{name_part}, names.list(), suffix));
    (void)snmp_set_var_typed_value(names.list(), ASN_OCTET_STR, text.data(), 31);
    EXPECT_TRUE(encode_index(std::vector<IndexPart>{name_part}, names.list(), suffix));
}

TEST(RowIndex, SortsAndKeepsTheFirstOfDuplicates) {
    RowIndexBuilder builder;
    int first = 0;
    int second = 0;
    builder.add(std::vector<std::uint32_t>{3, 1}, nullptr);
    builder.add(std::vector<std::uint32_t>{1, 9, 9}, &first);
    builder.add(std::vector<std::uint32_t>{4294967295U}, nullptr);
    builder.add(std::vector<std::uint32_t>{1, 9}, nullptr);
    builder.add(std::vector<std::uint32_t>{1, 9, 9}, &second);
    const RowIndex rows = builder.finish();
    EXPECT_EQ(suffixes_of(rows), (Suffixes{{1, 9}, {1, 9, 9}, {3, 1}, {4294967295U}}));
    EXPECT_EQ(rows.data(1), &first);
    EXPECT_EQ(builder.finish().size(), 0U);

    EXPECT_EQ(rows.find(std::vector<oid>{3, 1}), 2U);
    EXPECT_EQ(rows.find(std::vector<oid>{3}), 4U);
    EXPECT_EQ(rows.lower_bound(std::vector<oid>{1, 9}), 0U);
    EXPECT_EQ(rows.upper_bound(std::vector<oid>{1, 9}), 1U);
    EXPECT_EQ(rows.upper_bound(std::vector<oid>{2}), 2U);
    EXPECT_EQ(rows.upper_bound(std::vector<oid>{4294967296UL}), 4U) << "sub-identifiers are compared whole";
    EXPECT_EQ(rows.upper_bound({}), 0U);
}

class RowSourceTest : public testing::Test {
  protected:
    RowSourceTest() { fake = {}; }
    ~RowSourceTest() override { EXPECT_THAT(outstanding_blocks(), IsEmpty()); }
    RowIndex enumerate(const TableCallbacks &callbacks, int slot) {
        RowSource source(schema, callbacks);
        return enumerate(source, slot);
    }
    static RowIndex enumerate(RowSource &source, int slot, std::size_t steps = most_rows_of_a_slot) {
        Enumeration enumeration;
        while (!source.enumerate(slot, enumeration, steps)) {
        }
        return enumeration.rows.finish();
    }
    TableSchema schema = slot_table_schema();
    CapturedLog log;
};

TEST_F(RowSourceTest, EnumeratesAnIteratorTable) {
    fake.rows[2] = {7, 1, 7, 4};
    const RowIndex rows = enumerate(iterator_callbacks, 2);
    EXPECT_EQ(suffixes_of(rows), (Suffixes{{3, 1}, {3, 4}, {3, 7}}));
    EXPECT_EQ(rows.data(2), &fake.rows[2][0]);
    EXPECT_EQ(enumerate(iterator_callbacks, 5).size(), 0U);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(RowSourceTest, SortsWhatAFinderReturnsInTheBoardsOrder) {
    set_successors({{3, 9}, {3, 2}, {3, 5}});
    const RowIndex rows = enumerate(nextgen_callbacks, 2);
    EXPECT_EQ(suffixes_of(rows), (Suffixes{{3, 2}, {3, 5}, {3, 9}}));
    EXPECT_EQ(rows.data(0), &fake);
}

TEST_F(RowSourceTest, EndsASlotWhoseFinderComesBack) {
    set_successors({{3, 9}, {3, 2}, {3, 5}});
    fake.successors[instance(3, {3, 5})] = instance(3, {3, 2});
    RowSource source(schema, nextgen_callbacks);
    EXPECT_EQ(suffixes_of(enumerate(source, 2)), (Suffixes{{3, 2}, {3, 5}, {3, 9}}));
    EXPECT_EQ(enumerate(source, 2, 1).size(), 3U) << "also when it is done in parts";
    EXPECT_THAT(log.lines,
                ElementsAre("tarnTestTable: slot 3: the rows go round in circles; the rest is left out\n"));
}

TEST_F(RowSourceTest, GoesOnWhereItStoppedAndForgetsAPart) {
    set_successors({{3, 9}, {3, 2}, {4, 1}, {3, 5}, {3, 7}});
    RowSource source(schema, nextgen_callbacks);
    Enumeration enumeration;
    EXPECT_FALSE(source.enumerate(2, enumeration, 2));
    const Enumeration::Place place = enumeration.place();
    EXPECT_FALSE(source.enumerate(2, enumeration, 2)) << "a row that is left out counts, too";
    enumeration.go_back(place);
    EXPECT_EQ(enumeration.rows.size(), 2U);
    EXPECT_TRUE(source.enumerate(2, enumeration, 4));
    EXPECT_EQ(suffixes_of(enumeration.rows.finish()), (Suffixes{{3, 2}, {3, 5}, {3, 7}, {3, 9}}));
}

TEST_F(RowSourceTest, EndsASlotWhoseFinderStandsStill) {
    set_successors({{3, 9}});
    fake.successors[instance(3, {3, 9})] = instance(3, {3, 9});
    EXPECT_EQ(suffixes_of(enumerate(nextgen_callbacks, 2)), (Suffixes{{3, 9}}));
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(RowSourceTest, LeavesOutRowsThatNoOidCanName) {
    set_successors({{4, 1}, {3, 2}, std::vector<oid>(120, 3)});
    EXPECT_EQ(suffixes_of(enumerate(nextgen_callbacks, 2)), (Suffixes{{3, 2}}));
    fake.successors[instance(3, {3, 2})] = {1, 3, 6, 1};
    EXPECT_EQ(suffixes_of(enumerate(nextgen_callbacks, 2)), (Suffixes{{3, 2}}));
    EXPECT_THAT(
        log.lines,
        ElementsAre("tarnTestTable: slot 3: a row's name is not one of this table; the rest is left out\n"));
}

std::int64_t now = 0;

class RowCacheTest : public testing::Test {
  protected:
    RowCacheTest() {
        set_clock_source([] { return now; });
        now = 0;
    }
    ~RowCacheTest() override { set_clock_source(nullptr); }
    // Gets a slot's rows; returns how often they were built so far.
    int builds(RowCache &cache, int slot, long transaction, bool renew = false) {
        const auto build = [this] {
            ++built;
            RowIndexBuilder builder;
            builder.add(std::vector<std::uint32_t>{1}, nullptr);
            builder.add(std::vector<std::uint32_t>{2}, nullptr);
            return builder.finish();
        };
        const auto rows =
            renew ? cache.renew(this, slot, transaction, build) : cache.get(this, slot, transaction, build);
        EXPECT_EQ(rows->size(), 2U);
        return built;
    }
    int built = 0;
};

TEST_F(RowCacheTest, KeepsRowsForTheCachePeriod) {
    RowCache cache(100);
    EXPECT_EQ(builds(cache, 0, 1), 1);
    now = 19'999'999'999;
    EXPECT_EQ(builds(cache, 0, 2), 1);
    now = 20'000'000'000;
    EXPECT_EQ(builds(cache, 0, 1), 1) << "not within the transaction that built them";
    EXPECT_EQ(builds(cache, 0, 3), 2);
    EXPECT_EQ(builds(cache, 1, 3), 3);
    EXPECT_EQ(builds(cache, 0, 3, true), 3);
    EXPECT_EQ(builds(cache, 0, 4, true), 4) << "a SET wants fresh rows";
    cache.clear();
    EXPECT_EQ(builds(cache, 0, 4), 5);
}

TEST_F(RowCacheTest, DropsTheLeastRecentlyUsedBeyondTheBudget) {
    RowCache cache(5);
    EXPECT_EQ(builds(cache, 0, 1), 1);
    EXPECT_EQ(builds(cache, 1, 1), 2);
    EXPECT_EQ(builds(cache, 0, 2), 2);
    EXPECT_EQ(builds(cache, 2, 2), 3);
    EXPECT_EQ(builds(cache, 0, 3), 3);
    EXPECT_EQ(builds(cache, 1, 3), 4);
    RowCache tiny(1);
    EXPECT_EQ(builds(tiny, 0, 1), 5) << "a slot beyond the budget is served all the same";
}

}  // namespace
}  // namespace tarn::host::test
