// The requests for VLANs.
#include "module/switch/switch_vlans.h"

#include "module/store/switch_sections.h"
#include "support/scripted_board.h"

namespace {

constexpr int slot = 2;

// A record whose name is one letter and whose byte 83 is that letter too.
Bytes vlan(char letter, bool present = true) {
    Bytes record(84, 0);
    record[0] = static_cast<std::uint8_t>(letter);
    record[32] = present ? 1 : 0;
    record[83] = record[0];
    return record;
}

Bytes numbered(int number, const Bytes &record) {
    Bytes answer = {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8)};
    answer.insert(answer.end(), record.begin(), record.end());
    return answer;
}

int asked_first(const SentRequest &request) {
    return tarn::load_le16(&request.bytes[32]);
}
int asked_count(const SentRequest &request) {
    return tarn::load_le16(&request.bytes[34]);
}

// A block answer as a card gives it: these records from `first` on.
Bytes block(int first, int count, const Bytes &record, int records) {
    Bytes answer(4);
    tarn::store_le16(answer.data(), static_cast<std::uint16_t>(first));
    tarn::store_le16(&answer[2], static_cast<std::uint16_t>(count));
    for (int i = 0; i < records; ++i) {
        answer.insert(answer.end(), record.begin(), record.end());
    }
    return answer;
}

class SwitchVlansTest : public Started<ModuleTest, slot> {};

TEST_F(SwitchVlansTest, BothListsAreOneRequestToTheirUnits) {
    Bytes list(8190, 0);
    list[0] = 2;
    list[2] = 9;
    board.answer(0xAA, list);
    EXPECT_EQ(tarn::load_le16(get_switch_vlan_list(slot) + 2), 9);
    EXPECT_EQ(tarn::load_le16(get_switch_vlan_list_operational(slot)), 2);
    get_switch_vlan_list(slot);
    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.sent[0].destination(), 5);
    EXPECT_EQ(board.sent[1].destination(), 8);
    EXPECT_EQ(board.sent[0].bytes.size(), 32U);
}

TEST_F(SwitchVlansTest, ABlockReadTakesNineRequests) {
    board.scripts[0xB4] = [](const SentRequest &request) {
        const int first = asked_first(request);
        return make_answer(block(first, asked_count(request), vlan('a'), asked_count(request)));
    };
    std::uint8_t **vlans = get_switch_vlans_block(slot);
    ASSERT_EQ(board.sent.size(), 9U);
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(asked_first(board.sent[i]), static_cast<int>(500 * i));
        EXPECT_EQ(asked_count(board.sent[i]), i == 8 ? 94 : 500);
        EXPECT_EQ(board.sent[i].destination(), 5);
        EXPECT_EQ(board.sent[i].bytes.size(), 36U);
    }
    EXPECT_EQ(vlans[0][83], 'a');
    EXPECT_EQ(vlans[4093][83], 'a');
    EXPECT_EQ(get_switch_vlans_block(slot), vlans);
    EXPECT_EQ(board.sent.size(), 9U);
}

TEST_F(SwitchVlansTest, ABlockReadKeepsWhatIsCachedAndForgetsWhatIsGone) {
    board.scripts[0xB4] = [](const SentRequest &request) {
        Bytes answer = block(0, 3, vlan('b'), 2);
        const Bytes absent = vlan('c', false);
        answer.insert(answer.end(), absent.begin(), absent.end());
        return asked_first(request) == 0 ? make_answer(answer) : Bytes{};
    };
    ASSERT_EQ(init_switch_vlan(slot, 1), 0);
    ASSERT_EQ(init_switch_vlan(slot, 3), 0);
    std::uint8_t **vlans = get_switch_vlans_block(slot);
    EXPECT_EQ(vlans[0][83], 0);
    ASSERT_NE(vlans[1], nullptr);
    EXPECT_EQ(vlans[1][83], 'b');
    EXPECT_EQ(vlans[2], nullptr);
    EXPECT_EQ(asked_first(board.sent[1]), 3);  // goes on after what came

    board.answer(0xB3, numbered(0, vlan('z')));
    EXPECT_EQ((*get_switch_vlan(slot, 1))[83], 'z');  // a single read does refresh
}

TEST_F(SwitchVlansTest, ABlockReadEndsWithoutProgressAndReadsNoFurtherThanTheAnswer) {
    board.answer(0xB4, block(0, 0, {}, 0));
    get_switch_vlans_block(slot);
    EXPECT_EQ(board.sent.size(), 1U);

    board.everything_stale = true;
    board.answer(0xB4, block(0, 5, vlan('d'), 5));  // always from 0
    get_switch_vlans_block(slot);
    EXPECT_EQ(board.sent.size(), 3U);

    board.sent.clear();
    board.scripts[0xB4] = [](const SentRequest &request) {
        return make_answer(
            block(asked_first(request), 65535, vlan('e'), asked_first(request) == 0 ? 600 : 0));
    };
    get_switch_vlans_block(slot);
    EXPECT_EQ(board.sent.size(), 2U);  // 500 at most were asked for
    EXPECT_EQ(asked_first(board.sent[1]), 500);
    EXPECT_NE(get_switch_vlans_block(slot)[499], nullptr);
    EXPECT_EQ(tarn::slot_sections<tarn::SwitchSections>(slot)->vlans[500], nullptr);
    EXPECT_TRUE(board.logged("3 get_switch_vlans_block : 65535 VLANs stated, 500 taken\n"));

    board.scripts[0xB4] = [](const SentRequest &) { return make_answer(block(4093, 500, vlan('f'), 500)); };
    get_switch_vlans_block(slot);  // the card says that it went to the end
    EXPECT_EQ(tarn::slot_sections<tarn::SwitchSections>(slot)->vlans[4093], nullptr);
}

TEST_F(SwitchVlansTest, SingleReadsSendTheirNumber) {
    board.answer(0xB3, numbered(0, vlan('h')));
    std::uint8_t **place = get_switch_vlan(slot, 0x0102);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(place, &tarn::slot_sections<tarn::SwitchSections>(slot)->vlans[0x0101]);
    EXPECT_EQ((*place)[83], 'h');
    EXPECT_EQ(board.payload_of(0), (Bytes{0x01, 0x01}));
    EXPECT_EQ(board.sent[0].destination(), 5);
    EXPECT_EQ(get_switch_vlan_operational(slot, 0x0102)[83], 'h');
    EXPECT_EQ(board.payload_of(1), (Bytes{0x02, 0x01}));
    EXPECT_EQ(board.sent[1].destination(), 8);
    EXPECT_NE(get_switch_vlan_operational(slot, 4095), nullptr);
    EXPECT_EQ(board.sent.size(), 3U);

    for (const int index : {0, 4095, 65536, -1}) {
        EXPECT_EQ(get_switch_vlan(slot, index), nullptr) << index;
        EXPECT_EQ(init_switch_vlan(slot, index), -1) << index;
        EXPECT_EQ(set_switch_vlan(slot, index), -1) << index;
    }
    EXPECT_EQ(get_switch_vlan_operational(slot, 4096), nullptr);
    EXPECT_EQ(get_switch_vlan_operational(slot, -1), nullptr);
    EXPECT_EQ(board.sent.size(), 3U);
}

TEST_F(SwitchVlansTest, ASilentCardLeavesThePlaceEmptyForThePeriod) {
    std::uint8_t **place = get_switch_vlan(slot, 7);
    ASSERT_NE(place, nullptr);
    EXPECT_EQ(*place, nullptr);
    get_switch_vlan(slot, 7);
    EXPECT_EQ(board.sent.size(), 1U);
    EXPECT_EQ(get_switch_vlan_operational(slot, 7), nullptr);
}

TEST_F(SwitchVlansTest, ANewVlanHasItsDefaultsAndIsSentWhole) {
    board.answer(0xC3, {});
    board.answer(0xAA, Bytes(8190, 0));
    get_switch_vlan_list(slot);
    ASSERT_EQ(init_switch_vlan(256 + slot, 65536 + 4094), 0);
    tarn::slot_sections<tarn::SwitchSections>(slot)->vlans[4093][0] = 'n';
    ASSERT_EQ(init_switch_vlan(slot, 4094), 0);  // resets
    EXPECT_EQ(set_switch_vlan(slot, 4094), 0);
    EXPECT_EQ(board.sent.back().destination(), 5);
    Bytes expected(86, 0);
    expected[0] = 0xFD;  // board VLAN number 4093
    expected[1] = 0x0F;
    expected[2 + 32] = 1;
    expected[2 + 50] = 3;
    expected[2 + 52] = 1;
    expected[2 + 53] = 125;
    expected[2 + 55] = 10;
    expected[2 + 56] = 2;
    EXPECT_EQ(board.last_payload(), expected);
    get_switch_vlan_list(slot);
    EXPECT_EQ(board.count(0xAA), 2);  // the list is fetched anew

    board.silence(0xC3);
    EXPECT_EQ(set_switch_vlan(slot, 4094), -1);
    get_switch_vlan_list(slot);
    EXPECT_EQ(board.count(0xAA), 2);
    EXPECT_EQ(set_switch_vlan(slot, 5), -1);
    EXPECT_TRUE(board.logged("3 set_switch_vlan : attempt to commit nonexistent config\n"));
}

TEST_F(SwitchVlansTest, LackOfMemoryIsLogged) {
    board.balloc_fails = true;
    EXPECT_EQ(init_switch_vlan(slot, 1), -1);
    EXPECT_EQ(board.log, std::vector<std::string>{"3 init_switch_vlan : memory allocation error\n"});
}

}  // namespace
