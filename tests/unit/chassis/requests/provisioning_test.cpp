// ONTs, profiles, templates, networks and alarms: what is written is read back, and what is wrong is refused.
#include <zlib.h>

#include "support/test_chassis.h"

namespace tarn::chassis {
namespace {

// The image of a slot, inflated.
Bytes image_of(TestChassis &test, int slot) {
    const Bytes answer = test.send(slot, 302, "", 5).bytes;
    EXPECT_EQ(answer.size(), 1024036U);
    const std::uint32_t compressed = load_le32(&answer.at(1024032));
    Bytes image(1821429);
    uLongf size = image.size();
    EXPECT_EQ(uncompress(image.data(), &size, answer.data() + 32, compressed), Z_OK);
    EXPECT_EQ(size, 1821429U);
    return image;
}

Bytes part(const Bytes &bytes, std::size_t from, std::size_t count) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

std::size_t ont_at(std::size_t index) {
    return 53054 + 2122 * index;
}

TEST(Provisioning, AnImageHoldsTheConfiguredOnts) {
    TestChassis test;
    const Bytes image = image_of(test, 0);
    // Places 0 and 1 of channel 0 and place 0 of channel 1 are taken.
    for (const std::size_t index : {0U, 1U, 2U, 63U, 64U, 65U, 531U}) {
        const bool taken = index < 2 || index == 64;
        EXPECT_EQ(load_le16(&image[ont_at(index) + 4]), taken ? 1 : 0) << index;
        EXPECT_EQ(image[ont_at(index) + 264] != 0, taken) << index;
    }
    EXPECT_EQ(part(image, ont_at(64) + 272, 11),
              (Bytes{'1', '1', '1', '1', '1', '1', '1', '1', '1', '1', 0}));
    const Bytes empty = image_of(test, 5);
    EXPECT_EQ(load_le16(&empty[ont_at(0) + 4]), 0);
}

TEST(Provisioning, EveryRecordIsTakenOnAFullCard) {
    TestChassis test("cards:\n  - {slots: 0, onts: 1024}\n");
    const Bytes image = image_of(test, 0);
    for (std::size_t index = 0; index < 532; ++index) {
        ASSERT_EQ(image[ont_at(index) + 4], 1) << index;
    }
}

TEST(Provisioning, AWrittenOntIsFoundInTheNextImageAndRunsOnceItIsCommitted) {
    TestChassis test;
    Bytes record(2122, 0x11);
    const Bytes before = part(image_of(test, 0), ont_at(2 * 64 + 5), 4);
    const std::string request = "0205000000" + to_hex(record);
    EXPECT_EQ(test.status(0, 123, request, 5), 0);
    EXPECT_EQ(test.status(0, 123, request, 8), 0);
    std::copy(before.begin(), before.end(), record.begin());  // the card's own word
    EXPECT_EQ(part(image_of(test, 0), ont_at(2 * 64 + 5), 2122), record);
    const auto running = [&] { return test.chassis.card(0)->config.running(0).provisioning.onts[133][4]; };
    EXPECT_EQ(running(), 0);
    EXPECT_EQ(test.status(0, 406, "", 5), 0);
    EXPECT_EQ(running(), 0x11);
    EXPECT_EQ(test.status(0, 420, "", 5), 0);
    EXPECT_EQ(running(), 0);
    EXPECT_EQ(image_of(test, 0)[ont_at(133) + 4], 0);
    EXPECT_EQ(test.status(0, 123, "0840000000" + to_hex(record), 5), 2);
    EXPECT_EQ(test.status(0, 123, "0040000000" + to_hex(record), 5), 2);
    EXPECT_EQ(test.status(0, 123, "0040000000" + to_hex(record), 8), 2);
}

TEST(Provisioning, NetworkBlocksOltSettingsAndAlarmsAreStoredPerSlot) {
    TestChassis test;
    const Bytes network(847, 0x22);
    EXPECT_EQ(test.status(0, 215, to_hex(network), 5), 0);
    EXPECT_EQ(part(test.send(0, 84, "", 5).bytes, 32, 847), network);
    EXPECT_EQ(part(image_of(test, 0), 1181958, 847), network);
    EXPECT_NE(part(image_of(test, 18), 1181958, 847), network);
    EXPECT_EQ(test.status(18, 215, to_hex(network), 5), 0);
    EXPECT_EQ(part(image_of(test, 18), 1181958, 847), network);

    const Bytes olt(9510, 0x33);
    EXPECT_EQ(test.status(0, 88, to_hex(olt), 5), 0);
    EXPECT_EQ(part(test.send(0, 87, "", 5).bytes, 32, 9510), olt);
    EXPECT_NE(part(test.send(5, 87, "", 5).bytes, 32, 9510), olt);

    const Bytes entry(17, 0x44);
    EXPECT_EQ(test.status(18, 403, "2d000000" + to_hex(entry), 5), 0);
    EXPECT_EQ(part(test.send(18, 208, "", 5).bytes, 32 + 45 * 17, 17), entry);
    EXPECT_EQ(test.status(18, 403, "2e000000" + to_hex(entry), 5), 2);
}

TEST(Provisioning, TemplatesAreStoredInTheProfileStore) {
    TestChassis test;
    const Bytes record(473, 0x55);
    EXPECT_EQ(test.status(16, 301, "1f00" + to_hex(record), 5), 0);
    EXPECT_EQ(part(image_of(test, 16), 1790165 + 31 * 473, 473), record);
    EXPECT_EQ(test.status(16, 301, "2000" + to_hex(record), 5), 2);
    EXPECT_EQ(test.status(0, 301, "1f00" + to_hex(record), 5), 3);
}

TEST(Provisioning, ProfilesOfEachKindAreAddedSetAndDeleted) {
    const struct {
        int get;
        std::size_t size;
        std::size_t count;
    } kinds[] = {{127, 604, 32}, {246, 298, 128}, {137, 1032, 128}, {280, 301, 128}, {142, 1622, 32}};
    TestChassis test("profiles: 3\ncards:\n  - {slots: 0, onts: 0}\n");
    for (const auto &kind : kinds) {
        const auto array = [&] {
            const Bytes answer = test.send(16, kind.get, "", 5).bytes;
            EXPECT_EQ(answer.size(), 32 + kind.size * kind.count);
            return part(answer, 32, kind.size * kind.count);
        };
        Bytes record(kind.size, 0x66);
        EXPECT_EQ(array()[2 * kind.size + 6], '2');
        EXPECT_EQ(array()[3 * kind.size + 4], 0);
        EXPECT_EQ(test.status(16, kind.get + 2, "0300" + to_hex(record), 5), 6);
        EXPECT_EQ(test.status(16, kind.get + 3, "0300", 5), 6);
        EXPECT_EQ(test.status(16, kind.get + 1, "0300" + to_hex(record), 5), 0);
        EXPECT_EQ(part(array(), 3 * kind.size, kind.size), record);
        EXPECT_EQ(test.status(16, kind.get + 1, "0300" + to_hex(record), 5), 2);
        record[6] = 'x';
        EXPECT_EQ(test.status(16, kind.get + 2, "0300" + to_hex(record), 5), 0);
        EXPECT_EQ(part(array(), 3 * kind.size, kind.size), record);
        EXPECT_EQ(test.status(16, kind.get + 3, "0300", 5), 0);
        EXPECT_EQ(part(array(), 3 * kind.size, kind.size), Bytes(kind.size, 0));
        EXPECT_EQ(test.status(16, kind.get + 3, "8000", 5), 2);
        EXPECT_EQ(test.status(0, kind.get, "", 5), 3);
    }
}

TEST(Provisioning, OltProfilesAreListedAtTheirOwnAddress) {
    TestChassis test("profiles: 40\ncards:\n  - {slots: 0, onts: 0}\n");
    const Bytes tables = test.send(17, 103, "", 5).bytes;
    const Bytes vlans = test.send(17, 97, "", 5).bytes;
    EXPECT_EQ(tables.size(), 32U + 32 * 7454);
    EXPECT_EQ(vlans.size(), 32U + 32 * 294);
    EXPECT_EQ(part(tables, 32 + 31 * 7454 + 22, 12),
              Bytes({'a', 'd', 'd', 'r', 'e', 's', 's', 'e', 's', '-', '3', '1'}));
    EXPECT_EQ(vlans[32 + 31 * 294 + 4], 1);
    EXPECT_EQ(test.status(16, 97, "", 5), 3);
}

TEST(Provisioning, TheControlSocketReadsRecords) {
    TestChassis test;
    Control control(test.chassis);
    const auto ask = [&](const std::string &line) { return Json::parse(control.answer(line)); };
    const Bytes record(473, 0x55);
    test.status(16, 301, "0100" + to_hex(record), 5);
    const std::string item = R"("do":"state-get","slot":16,"item":"ont-template","index":1)";
    EXPECT_EQ(ask("{" + item + "}")["hex"], to_hex(record));
    EXPECT_TRUE(ask(R"({"do":"state-get","slot":0,"item":"ont-template","index":1})").contains("error"));
    EXPECT_EQ(ask(R"({"do":"state-get","slot":16,"item":"profile","kind":"ports","index":0})")["hex"]
                  .get<std::string>()
                  .size(),
              2U * 1622);
    EXPECT_TRUE(
        ask(R"({"do":"state-get","slot":16,"item":"profile","kind":"port","index":0})").contains("error"));
}

}  // namespace
}  // namespace tarn::chassis
