// The MAC table: fetched in parts, sorted, served as rows and as text.
#include "module/store/address_sections.h"
#include "module/store/switch_sections.h"
#include "module/switch/switch_mac_table.h"

#include <algorithm>
#include <random>

#include "module/abi/sample_data.h"
#include "support/scripted_board.h"
#include "support/snmp_calls.h"

extern "C" {
get_next_entry_function tarnSwitchMacListTable_get_next_entry, tarnRawSwitchMacTable_get_next_entry,
    tarnRawMacTable_get_next_entry;
table_handler_nextgen_function tarnSwitchMacListTable_table_handler_nextgen,
    tarnRawSwitchMacTable_table_handler_nextgen, tarnRawMacTable_table_handler_nextgen;
std::uint8_t *get_switch_mac_list_entry_by_oid(int slot, const oid *name, std::size_t length);
}

namespace {

constexpr int slot = 1;
using Entries = std::vector<switch_mac_list_t>;

switch_mac_list_t entry(int vlan, std::uint64_t mac, int port = 0, int flags = 0) {
    switch_mac_list_t made{};
    made.port = static_cast<std::uint8_t>(port);
    made.flags = static_cast<std::uint8_t>(flags);
    tarn::store_le16(made.vlan, static_cast<std::uint16_t>(vlan));
    for (int i = 0; i < 6; ++i) {
        made.mac[i] = static_cast<std::uint8_t>(mac >> (40 - 8 * i));
    }
    return made;
}

Bytes part(const Entries &entries, bool last, std::uint32_t cursor, std::uint32_t count) {
    Bytes answer(1321 - 32, 0);
    tarn::store_le32(answer.data(), count);
    tarn::store_le32(&answer[4], cursor);
    const std::size_t held = std::min<std::size_t>(entries.size(), 128);
    const auto *bytes = reinterpret_cast<const std::uint8_t *>(entries.data());
    std::copy(bytes, bytes + held * 10, answer.begin() + 8);
    answer[1288] = last ? 1 : 0;
    return answer;
}

// A card that sends these entries in parts of at most `per_part`, with the position as its cursor.
void script_entries(const Entries &entries, std::size_t per_part = 128) {
    board.scripts[0xAB] = [entries, per_part](const SentRequest &request) {
        const std::size_t start = tarn::load_le32(&request.bytes[32]);
        const std::size_t end = std::min(entries.size(), start + per_part);
        const Entries some(entries.begin() + static_cast<std::ptrdiff_t>(start),
                           entries.begin() + static_cast<std::ptrdiff_t>(end));
        return make_answer(part(some, end == entries.size(), static_cast<std::uint32_t>(end),
                                static_cast<std::uint32_t>(some.size())));
    };
}

const Oid mac_table = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 4, 5};

Oid row_name(oid column, std::initializer_list<oid> index) {
    Oid name = mac_table;
    name.insert(name.end(), {1, column, slot + 1});
    name.insert(name.end(), index);
    return name;
}

class SwitchMacTest : public Started<ModuleTest, slot> {
  protected:
    void SetUp() override {
        Started::SetUp();
        db = tarn::slot_sections<tarn::SwitchSections>(slot);
    }
    Entries table() const {
        const auto *first = reinterpret_cast<const switch_mac_list_t *>(db->mac_table.bytes);
        return {first, first + db->mac_count};
    }
    std::vector<int> ports() const {
        std::vector<int> list;
        for (const switch_mac_list_t &e : table()) {
            list.push_back(e.port);
        }
        return list;
    }
    tarn::SwitchSections *db = nullptr;
};

TEST_F(SwitchMacTest, IsFetchedPartByPart) {
    script_entries({entry(2, 5, 1), entry(1, 9, 2), entry(0x100, 1, 3), entry(1, 3, 4), entry(1, 3 << 8, 5)},
                   2);
    get_switch_mac_table(256 + slot);
    EXPECT_EQ(ports(), (std::vector<int>{4, 2, 5, 1, 3}));  // VLAN 1 before 2 before 256
    ASSERT_EQ(board.sent.size(), 3U);
    Bytes expected(23, 0);
    tarn::store_le32(&expected[4], 16384);
    EXPECT_EQ(board.payload_of(0), expected);
    expected[0] = 2;
    EXPECT_EQ(board.payload_of(1), expected);
    expected[0] = 4;
    EXPECT_EQ(board.payload_of(2), expected);
    EXPECT_EQ(board.sent[0].destination(), 8);
    get_switch_mac_table(slot);
    EXPECT_EQ(board.sent.size(), 3U);
}

TEST_F(SwitchMacTest, ATableThatCannotBeHadLeavesTheOldOne) {
    script_entries({entry(1, 1, 7)});
    get_switch_mac_table(slot);
    const auto refetch = [this] {
        db->mac_stamp.clear();
        board.sent.clear();
        board.log.clear();
        get_switch_mac_table(slot);
        EXPECT_EQ(ports(), std::vector<int>{7});
    };
    board.silence(0xAB);
    refetch();
    get_switch_mac_table(slot);
    EXPECT_EQ(board.sent.size(), 1U);

    script_entries(Entries(16385, entry(1, 2)));
    refetch();
    EXPECT_EQ(board.log,
              std::vector<std::string>{"3 get_switch_mac_table : records count exceeds 16384 limit!\n"});
    EXPECT_EQ(board.sent.size(), 129U);
    get_switch_mac_table(slot);
    EXPECT_EQ(board.sent.size(), 258U);  // asked again at once

    board.answer(0xAB, part({}, true, 0, 0xFFFFFFFF));
    refetch();
    EXPECT_EQ(board.log.size(), 1U);
    board.answer(0xAB, part({}, true, 0, 129));
    refetch();
    EXPECT_EQ(board.log, std::vector<std::string>{"3 get_switch_mac_table : 129 entries in one part\n"});
    board.answer(0xAB, part({}, false, 0, 0));  // never ends
    refetch();
    EXPECT_EQ(board.sent.size(), 16512U);
    board.answer(0xAB, Bytes(1288, 0));  // too short to say whether it is the last
    refetch();
    EXPECT_EQ(board.log,
              std::vector<std::string>{"3 get_switch_mac_table : short answer, 1320 bytes of 1321\n"});
}

TEST_F(SwitchMacTest, HoldsAFullTableAndAnEmptyOne) {
    Entries many;
    for (std::uint64_t i = 0; i < 16384; ++i) {
        many.push_back(entry(static_cast<int>(1 + i % 300), 1 + i * 0x10001));
    }
    std::shuffle(many.begin(), many.end(), std::minstd_rand());
    script_entries(many);
    get_switch_mac_table(slot);
    const Entries sorted = table();
    ASSERT_EQ(sorted.size(), 16384U);
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        ASSERT_LT(switch_mac_list_t_comparator(sorted[i - 1], sorted[i]), 0) << i;
    }
    EXPECT_EQ(walk_nextgen(tarnSwitchMacListTable_get_next_entry, slot, mac_table, 4).size(), 16384U);

    script_entries({});
    db->mac_stamp.clear();
    EXPECT_EQ(get_switch_mac_table(slot), nullptr);
    EXPECT_EQ(db->mac_count, 0U);
}

TEST_F(SwitchMacTest, ComparesUnsigned) {
    EXPECT_LT(switch_mac_list_t_comparator(entry(1, 9), entry(0x100, 1)), 0);
    EXPECT_EQ(switch_mac_list_t_comparator(entry(0xFFFF, 9), entry(0x100, 1)), 1);
    EXPECT_LT(switch_mac_list_t_comparator(entry(1, 0x010000000000), entry(1, 0xFF0000000000)), 0);
    EXPECT_EQ(switch_mac_list_t_comparator(entry(1, 9, 1), entry(1, 9, 2)), 0);
}

// The order in which entries of one address end up; worked out by hand from the two scans.
TEST_F(SwitchMacTest, EqualEntriesKeepTheSortsOwnOrder) {
    struct Case {
        std::vector<int> keys;
        std::vector<int> sorted_ports;  // the ports count the entries as they came
    };
    for (const auto &[keys, sorted_ports] : {Case{{1, 1}, {0, 1}},
                                             {{2, 1}, {1, 0}},
                                             {{1, 1, 1}, {2, 1, 0}},
                                             {{2, 1, 1}, {2, 1, 0}},
                                             {{1, 1, 1, 1}, {2, 1, 3, 0}},
                                             {{2, 3, 1, 2, 1}, {2, 4, 3, 0, 1}}}) {
        Entries entries;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            entries.push_back(entry(1, static_cast<std::uint64_t>(keys[i]), static_cast<int>(i)));
        }
        tarn::sort_mac_entries(entries);
        std::vector<int> got;
        for (const switch_mac_list_t &e : entries) {
            got.push_back(e.port);
        }
        EXPECT_EQ(got, sorted_ports) << keys.size();
    }
}

TEST_F(SwitchMacTest, RowsAreNamedByVlanAndAddress) {
    script_entries({entry(1, 0x0102030405FF, 4, 1), entry(1, 0), entry(1, 0x0102030405FF, 9),
                    entry(0x100, 0xAABBCCDDEEFF, 0, 2), entry(0x100, 1, 255, 3), entry(0, 7, 20)});
    const Oid first = row_name(4, {0, 0, 0, 0, 0, 0, 7});
    const Oid second = row_name(4, {1, 1, 2, 3, 4, 5, 255});
    const Oid third = row_name(4, {256, 0, 0, 0, 0, 0, 1});
    const Oid fourth = row_name(4, {256, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF});
    // The empty address and the repeated one are no rows of the walk.
    EXPECT_EQ(walk_nextgen(tarnSwitchMacListTable_get_next_entry, slot, mac_table, 4),
              (std::vector<Oid>{first, second, third, fourth}));
    EXPECT_EQ(first.size(), 21U);
    EXPECT_EQ(next_of(tarnSwitchMacListTable_get_next_entry, slot, row_name(4, {1, 1, 2}), 4), second);
    EXPECT_EQ(next_of(tarnSwitchMacListTable_get_next_entry, slot, row_name(4, {1, 1, 300}), 4), third);
    EXPECT_EQ(next_of(tarnSwitchMacListTable_get_next_entry, slot, row_name(4, {70000}), 4), Oid{});

    const auto get = [](int column, std::initializer_list<oid> index) {
        return call_nextgen(tarnSwitchMacListTable_table_handler_nextgen, MODE_GET, slot,
                            row_name(static_cast<oid>(column), index));
    };
    EXPECT_EQ(get(4, {256, 0, 0, 0, 0, 0, 1}).integer, 276);  // port group 255
    EXPECT_EQ(get(4, {256, 0, 0, 0, 0, 0, 1}).type, 66);
    EXPECT_EQ(get(4, {0, 0, 0, 0, 0, 0, 7}).integer, 21);
    EXPECT_EQ(get(4, {256, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}).integer, 21);
    EXPECT_EQ(get(5, {256, 0, 0, 0, 0, 0, 1}).integer, 1);
    EXPECT_EQ(get(5, {256, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}).integer, 2);
    EXPECT_EQ(get(6, {1, 1, 2, 3, 4, 5, 255}).octets, "01:02:03:04:05:FF");
    EXPECT_EQ(get(1, {1, 1, 2, 3, 4, 5, 255}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(4, {2, 1, 2, 3, 4, 5, 255}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(4, {1, 1, 2, 3, 4, 5}).error, SNMP_NOSUCHOBJECT);
    EXPECT_EQ(get(4, {1, 1, 2, 3, 4, 5, 256 + 255}).error, SNMP_NOSUCHOBJECT);
}

TEST_F(SwitchMacTest, EveryLookupIsTraced) {
    script_entries({entry(1, 5)});
    const Oid name = row_name(4, {1, 0, 0, 0, 0, 0, 5});
    EXPECT_EQ(get_switch_mac_list_entry_by_oid(slot, name.data(), name.size()), db->mac_table.bytes);
    const std::vector<std::string> trace = {
        "3 file: tarnSwitch/tarnSwitchMacListTable_handlers; line: 37; slot: 1",
        "3 file: tarnSwitch/tarnSwitchMacListTable_handlers; line: 43; slot: 1"};
    EXPECT_EQ(board.log, trace);
    board.log.clear();
    EXPECT_EQ(get_switch_mac_list_entry_by_oid(slot, name.data(), 20), nullptr);
    EXPECT_EQ(board.log, trace);
    for (const Oid &asked : {name, row_name(4, {1, 0, 0, 0, 0, 0}), row_name(4, {1, 0, 0, 0, 0, 0, 256})}) {
        board.log.clear();
        call_nextgen(tarnSwitchMacListTable_table_handler_nextgen, MODE_GET, slot, asked);
        EXPECT_EQ(board.log, trace);
    }
}

TEST_F(SwitchMacTest, IsRenderedAsText) {
    script_entries({entry(12345, 0xAABBCCDDEEFF, 255, 3), entry(7, 0x0102030405FF, 4, 0)});
    EXPECT_STREQ(get_raw_switch_mac_table(slot),
                 "v1|01:02:03:04:05:FF,0007,005,0|AA:BB:CC:DD:EE:FF,12345,276,");  // a wide VLAN is cut
    EXPECT_EQ(db->mac_text_length, 60U);
    script_entries({});
    get_raw_switch_mac_table(slot);
    EXPECT_EQ(db->mac_text_length, 60U);
    board.everything_stale = true;
    EXPECT_STREQ(get_raw_switch_mac_table(slot), "v1");
}

struct RawTable {
    get_next_entry_function *next;
    table_handler_nextgen_function *handler;
    tarn::Growable<1> &text;
    std::size_t &length;
    tarn::Stamp &stamp;
};

TEST_F(SwitchMacTest, TextsAreServedInChunks) {
    const Oid raw = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 5, 1};
    const auto chunk_name = [&](oid column, oid chunk) {
        Oid name = raw;
        name.insert(name.end(), {1, column, slot + 1, chunk});
        return name;
    };
    auto &addresses = *tarn::slot_sections<tarn::AddressSections>(slot);
    for (const RawTable &t :
         {RawTable{tarnRawSwitchMacTable_get_next_entry, tarnRawSwitchMacTable_table_handler_nextgen,
                   db->mac_text, db->mac_text_length, db->mac_text_stamp},
          RawTable{tarnRawMacTable_get_next_entry, tarnRawMacTable_table_handler_nextgen,
                   addresses.address_text, addresses.address_text_length, addresses.address_text_stamp}}) {
        const auto get = [&](oid chunk, oid column = 3) {
            return call_nextgen(t.handler, MODE_GET, slot, chunk_name(column, chunk));
        };
        const auto hold = [&](std::size_t length) {
            ASSERT_TRUE(t.text.resize(length + 1));
            std::fill_n(t.text.bytes, length, std::uint8_t{'x'});
            t.text.bytes[length] = 0;
            t.length = length;
        };
        t.stamp.set();
        EXPECT_EQ(get(1).octets, "");  // never fetched: one empty chunk
        EXPECT_EQ(get(1).type, ASN_OCTET_STR);
        hold(10240);
        EXPECT_EQ(walk_nextgen(t.next, slot, raw, 3),
                  (std::vector<Oid>{chunk_name(3, 1), chunk_name(3, 2), chunk_name(3, 3)}));
        expect_readings(get, is_octets(1, std::string(10240, 'x')), is_octets(2, ""));
        hold(10243);
        EXPECT_EQ(get(2).octets, "xxx");
        for (const oid chunk : {oid{0}, oid{3}, oid{4294967295}, oid{4294967297}}) {
            EXPECT_EQ(get(chunk).error, SNMP_NOSUCHINSTANCE) << chunk;
        }
        EXPECT_EQ(get(1, 4).error, SNMP_NOSUCHOBJECT);
        EXPECT_EQ(get(3, 4).error, SNMP_NOSUCHINSTANCE);
        Oid short_name = chunk_name(3, 1);
        short_name.pop_back();
        EXPECT_EQ(call_nextgen(t.handler, MODE_GET, slot, short_name).error, SNMP_NOSUCHINSTANCE);
        EXPECT_EQ(next_of(t.next, slot, chunk_name(3, 3), 3), Oid{});
        EXPECT_EQ(next_of(t.next, slot, chunk_name(3, 4294967295), 3), Oid{});
    }
}

TEST_F(SwitchMacTest, TheSamplesAreTables) {
    emulate_mac_table(slot);
    EXPECT_EQ(table().size(), 10240U);
    EXPECT_EQ(table()[257].mac[5], 1);
    fake_switch_mac_table(slot);
    EXPECT_EQ(table().size(), 16384U);
    EXPECT_TRUE(std::ranges::is_sorted(table(), {}, [](const auto &e) { return tarn::mac_key(e); }));
    EXPECT_TRUE(board.logged("6 fake_switch_mac_table : first sort start\n"));
}

}  // namespace
