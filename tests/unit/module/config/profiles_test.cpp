// Profiles of the five kinds, templates, the OLT's configuration and profile lists, alarms.
#include "module/config/profiles.h"

#include <algorithm>

#include "module/config/alarms_config.h"
#include "module/config/network_config.h"
#include "module/config/olt_config.h"
#include "module/config/ont_templates.h"
#include "module/start/start.h"
#include "module/switch/switch_operations.h"
#include "support/config_image.h"
#include "wire/bytes.h"

namespace {

using Words = std::map<std::size_t, std::uint32_t>;  // the offset of a 32-bit word, and its value

struct KindCase {
    const char *name;
    int first_command;  // get; add, set and delete follow
    std::size_t size;
    int count;
    std::uint8_t *(*get)();
    int (*add)(int);
    int (*set)(int);
    int (*remove)(int);
    Words defaults;
};

// The defaults as words, the fields cut at the odd ends.
const KindCase kinds[] = {
    {"management", 127, 604, 32, get_management_profiles, add_management_profile, set_management_profile,
     delete_management_profile, Words{{278, 1}}},
    {"crossconnect", 246, 298, 128, get_crossconnect_profiles, add_crossconnect_profile,
     set_crossconnect_profile, delete_crossconnect_profile,
     Words{{278, 0x00010000}, {282, 0xFF000100}, {286, 0x00000001}, {290, 0x00007FFF}}},
    {"shaping", 137, 1032, 128, get_shaping_profiles, add_shaping_profile, set_shaping_profile,
     delete_shaping_profile,
     [] {
         Words words;
         for (std::size_t i = 0; i < 16; ++i) {
             words[280 + 6 * i + 2] = 2488320;
             words[376 + 10 * i + 2] = 1244160;
             words[376 + 10 * i + 6] = 1244160;
         }
         return words;
     }()},
    {"alloc", 280, 301, 128, get_alloc_profiles, add_alloc_profile, set_alloc_profile, delete_alloc_profile,
     Words{{282, 0x0000BDD8}, {286, 8}, {291, 64}, {295, 0x00137000}}},
    {"ports", 142, 1622, 32, get_ports_profiles, add_ports_profile, set_ports_profile, delete_ports_profile,
     [] {
         Words words{{280, 3}, {290, 125}, {294, 100}, {298, 10}};
         for (std::size_t port = 0; port < 4; ++port) {
             for (const std::size_t at : {1423U, 1427U, 1433U, 1437U}) {
                 words[at + 57 * port] = 2488320;
             }
         }
         return words;
     }()},
};

class ProfilesTest : public Started<ModuleTest> {
  protected:
    void SetUp() override {
        Started::SetUp();
        reset_shaping_profiles_commit_needs();
        reset_ports_profiles_commit_needs();
    }
    static Bytes array_of(const KindCase &kind) {
        return Bytes(kind.size * static_cast<std::size_t>(kind.count), 0);
    }
};

TEST_F(ProfilesTest, ReadsTheArrayOfEachKindOnceAPeriod) {
    for (const KindCase &kind : kinds) {
        Bytes array = array_of(kind);
        array.front() = 1;
        array.back() = 2;
        board.answer(kind.first_command, array);
        EXPECT_EQ(Bytes(kind.get(), kind.get() + array.size()), array) << kind.name;
        EXPECT_EQ(board.count(kind.first_command), 1);
        EXPECT_EQ(board.sent.back().slot(), 16);
        EXPECT_EQ(board.sent.back().destination(), 5);
        board.everything_stale = true;
        array.pop_back();
        board.answer(kind.first_command, array);  // too short: refused, the old array stays
        EXPECT_EQ(kind.get()[array.size()], 2) << kind.name;
        board.everything_stale = false;
        kind.get();
        EXPECT_EQ(board.count(kind.first_command), 2);
    }
}

TEST_F(ProfilesTest, AddsAProfileOfEachKindWithItsDefaults) {
    for (const KindCase &kind : kinds) {
        board.answer(kind.first_command, array_of(kind));
        board.answer(kind.first_command + 1, {});
        kind.get();
        EXPECT_EQ(kind.add(kind.count), -1);
        EXPECT_EQ(kind.add(-1), -1);
        EXPECT_EQ(kind.add(kind.count - 1), 0) << kind.name;
        const SentRequest &sent = board.sent.back();
        EXPECT_EQ(sent.command(), kind.first_command + 1);
        EXPECT_EQ(sent.slot(), 16);
        EXPECT_EQ(sent.destination(), 5);
        Bytes expected(2 + kind.size, 0);
        expected[0] = static_cast<std::uint8_t>(kind.count - 1);
        expected[2 + 4] = 1;
        const std::string name = std::to_string(kind.count - 1);
        std::copy(name.begin(), name.end(), expected.begin() + 2 + 6);
        for (const auto &[offset, word] : kind.defaults) {
            tarn::store_le32(&expected[2 + offset], word);
        }
        EXPECT_EQ(board.last_payload(), expected) << kind.name;
        // The profile exists now, whatever the chassis says.
        const std::size_t requests = board.sent.size();
        EXPECT_EQ(kind.add(kind.count - 1), -1);
        EXPECT_EQ(board.sent.size(), requests);
    }
}

TEST_F(ProfilesTest, KeepsARefusedNewProfileUntilTheNextRefresh) {
    board.answer(246, Bytes(38144, 0));
    board.refuse(247, 2);
    get_crossconnect_profiles();
    EXPECT_EQ(add_crossconnect_profile(5), -1);
    EXPECT_EQ(get_crossconnect_profiles()[5 * 298 + 6], '5');
    EXPECT_EQ(board.count(246), 1);
}

TEST_F(ProfilesTest, SetsAndDeletesAProfileOfEachKind) {
    for (const KindCase &kind : kinds) {
        board.answer(kind.first_command, array_of(kind));
        board.answer(kind.first_command + 2, {});
        board.silence(kind.first_command + 3);
        std::uint8_t *record = kind.get() + 3 * kind.size;
        record[4] = 1;
        record[kind.size - 1] = 0x77;
        EXPECT_EQ(kind.remove(3), -1);
        kind.get();
        EXPECT_EQ(board.count(kind.first_command), 1);  // not answered: the cached array stays
        EXPECT_EQ(kind.set(3), 0);
        Bytes payload = board.last_payload();
        EXPECT_EQ(payload.size(), 2 + kind.size) << kind.name;
        EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 8), (Bytes{3, 0, 0, 0, 0, 0, 1, 0}));
        EXPECT_EQ(payload.back(), 0x77);
        board.answer(kind.first_command + 3, {});
        EXPECT_EQ(kind.remove(3), 0);
        EXPECT_EQ(board.last_payload(), (Bytes{3, 0}));
        EXPECT_EQ(record[4], 1);
        kind.get();
        EXPECT_EQ(board.count(kind.first_command), 2) << kind.name;
        EXPECT_EQ(kind.set(kind.count), -1);
        EXPECT_EQ(kind.remove(-1), -1);
    }
}

TEST_F(ProfilesTest, CommitsInAscendingOrderUpToTheFirstFailure) {
    board.answer(137, Bytes(132096, 0));
    board.answer(142, Bytes(51904, 0));
    get_shaping_profiles();
    get_ports_profiles();
    board.silence(139);
    for (const int index : {7, 3, 128, -1}) {
        set_shaping_profile_to_commit(index);
    }
    EXPECT_EQ(commit_shaping_profiles(), -1);
    ASSERT_EQ(board.count(139), 1);
    EXPECT_EQ(board.last_payload()[0], 3);
    board.answer(139, {});
    EXPECT_EQ(commit_shaping_profiles(), 0);
    EXPECT_EQ(board.count(139), 2);
    EXPECT_EQ(board.last_payload()[0], 7);
    set_shaping_profile_to_commit(1);
    reset_shaping_profiles_commit_needs();
    EXPECT_EQ(commit_shaping_profiles(), 0);
    EXPECT_EQ(board.count(139), 2);

    board.answer(144, {});
    set_ports_profile_to_commit(31);
    set_ports_profile_to_commit(0);
    EXPECT_EQ(commit_ports_profiles(), 0);
    EXPECT_EQ(board.count(144), 2);
    EXPECT_EQ(board.last_payload()[0], 31);
}

TEST_F(ProfilesTest, ReadsTemplatesFromTheImageAndSendsTheEditedOnes) {
    ConfigImage image;
    image.ont_template(0)[0] = 0xAA;
    image.ont_template(31)[472] = 0xBB;
    image.serve();
    board.answer(301, {});
    std::uint8_t *templates = get_ont_templates();
    EXPECT_EQ(board.sent.at(0).slot(), 16);
    EXPECT_EQ(templates[0], 0xAA);
    EXPECT_EQ(templates[15135], 0xBB);
    add_template_to_commit(31);
    add_template_to_commit(0);
    add_template_to_commit(32);
    EXPECT_EQ(commit_ont_templates(), 0);
    ASSERT_EQ(board.count(301), 2);
    EXPECT_EQ(board.sent.at(1).bytes.size(), 507U);
    EXPECT_EQ(board.sent.at(1).slot(), 16);
    const Bytes payload = board.payload_of(1);
    EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 3), (Bytes{0, 0, 0xAA}));
    EXPECT_EQ(board.payload_of(2)[0], 31);
    EXPECT_EQ(board.payload_of(2).back(), 0xBB);
    get_ont_templates();
    EXPECT_EQ(board.count(302), 2);
    cleanup_lib();
    EXPECT_EQ(get_ont_templates(), nullptr);
    EXPECT_EQ(commit_ont_templates(), 0);
    EXPECT_EQ(get_shaping_profiles(), nullptr);
    EXPECT_EQ(add_shaping_profile(1), -1);
}

TEST_F(ProfilesTest, KeepsAHeldOltConfiguration) {
    slot_initializer(3);
    Bytes config(9510, 4);
    board.answer(87, config);
    board.answer(88, {});
    std::uint8_t *record = get_olt_cfg(3);
    EXPECT_EQ(record[9509], 4);
    tarn::store_le16(record + 9510, 1);  // an edit is pending
    board.everything_stale = true;
    record[0] = 5;
    EXPECT_EQ(get_olt_cfg(3)[0], 5);
    EXPECT_EQ(board.count(87), 1);
    EXPECT_EQ(set_olt_cfg(3), 0);
    EXPECT_EQ(board.sent.back().bytes.size(), 9542U);
    EXPECT_EQ(board.payload_of(1)[0], 5);
    tarn::store_le16(record + 9510, 0);
    EXPECT_EQ(get_olt_cfg(3)[0], 4);
    EXPECT_EQ(set_olt_cfg(5), -1);
}

TEST_F(ProfilesTest, SendsNoAlarmsThatWereNeverRead) {
    EXPECT_EQ(slot_lib_set_alarms_config(), -1);
    EXPECT_TRUE(board.sent.empty());
    EXPECT_EQ(board.log,
              (std::vector<std::string>{"3 slot_lib_set_alarms_config : address 18 has not sent its "
                                        "configuration, which is not overwritten\n"}));
}

class AlarmsTest : public ProfilesTest {
  protected:
    std::uint8_t *edited = nullptr;

    void SetUp() override {
        ProfilesTest::SetUp();
        Bytes config(801, 0);
        for (std::size_t i = 0; i < 46; ++i) {
            std::fill_n(config.begin() + static_cast<std::ptrdiff_t>(17 * i), 17,
                        static_cast<std::uint8_t>(i));
        }
        board.answer(208, config);
        board.answer(403, {});
        for (int slot = 0; slot < 16; ++slot) {
            board.configured[slot] = slot == 2 || slot == 5;
        }
        edited = static_cast<std::uint8_t *>(slot_lib_get_alarms_config());
    }
};

TEST_F(AlarmsTest, SendsOnlyChangedEntriesToTheSlotsThenToTheChassis) {
    edited[17 * 4 + 9] = 0x99;
    edited[17 * 4 + 12] = 0x88;
    edited[17 * 6 + 0] = 0x77;  // not one of the two values
    board.sent.clear();
    EXPECT_EQ(slot_lib_set_alarms_config(), 0);
    ASSERT_EQ(board.sent.size(), 4U);
    EXPECT_EQ(board.sent[0].command(), 208);
    EXPECT_EQ(board.sent[0].slot(), 18);
    EXPECT_EQ(board.sent[1].slot(), 2);
    EXPECT_EQ(board.sent[2].slot(), 5);
    EXPECT_EQ(board.sent[3].slot(), 18);
    EXPECT_EQ(board.payload_of(1),
              (Bytes{4, 0, 0, 0, 4, 4, 4, 4, 4, 4, 4, 4, 4, 0x99, 4, 4, 0x88, 4, 4, 4, 4}));
    EXPECT_EQ(board.payload_of(3), board.payload_of(1));
    EXPECT_EQ(board.log,
              (std::vector<std::string>{
                  "3 slot_lib_set_alarms_config : set config for id = 4, type = 67372036, slot = 3\n",
                  "3 slot_lib_set_alarms_config : set config for id = 4, type = 67372036, slot = 6\n"}));
}

TEST_F(AlarmsTest, StopsAtAnEntryThatASlotRefusesButNotAtTheChassis) {
    edited[17 * 1 + 9] = 0x99;
    edited[17 * 2 + 9] = 0x99;
    board.scripts[403] = [](const SentRequest &request) {
        return request.slot() == 18 ? Bytes{} : make_answer({});
    };
    EXPECT_EQ(slot_lib_set_alarms_config(), -1);
    EXPECT_EQ(board.count(403), 6);
    EXPECT_TRUE(
        board.logged("3 slot_lib_set_alarms_config : unable to set config for id = 2, type = 33686018\n"));
    board.sent.clear();
    board.scripts[403] = [](const SentRequest &request) {
        return request.slot() == 2 ? Bytes{} : make_answer({});
    };
    EXPECT_EQ(slot_lib_set_alarms_config(), -1);
    EXPECT_EQ(board.count(403), 2);
    EXPECT_TRUE(board.logged(
        "3 slot_lib_set_alarms_config : unable to set config for id = 1, type = 16843009, slot = 3\n"));
    board.silence(208);
    EXPECT_EQ(slot_lib_set_alarms_config(), -1);
    EXPECT_TRUE(board.logged("3 slot_lib_set_alarms_config : unable to get config\n"));
    // Read again in vain: it may be what the cards refused, and is not sent any more.
    slot_lib_get_alarms_config();
    board.sent.clear();
    EXPECT_EQ(slot_lib_set_alarms_config(), -1);
    EXPECT_TRUE(board.sent.empty());
}

}  // namespace
