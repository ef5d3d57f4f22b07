// The configuration image and what is cut from it: ONT records with their staging copy, network blocks.
#include <algorithm>

#include "module/config/config_buffer.h"
#include "module/config/network_config.h"
#include "module/config/ont_config_staging.h"
#include "module/config/ont_config_store.h"
#include "module/config/ont_templates.h"
#include "module/start/start.h"
#include "module/store/ont_config_sections.h"
#include "support/config_image.h"
#include "wire/bytes.h"

using namespace std::string_literals;

namespace {

const std::string serial_a = "TARN\x00\x00\x00\x01"s;
const std::string serial_b = "TARN\x00\x00\x00\x02"s;
const std::string no_serial(8, '\0');

const std::uint8_t *bytes_of(const std::string &serial) {
    return reinterpret_cast<const std::uint8_t *>(serial.data());
}

class ConfigStoreTest : public Started<ModuleTest, 3> {
  protected:
    ConfigImage image;

    void SetUp() override {
        Started::SetUp();
        board.answer(123, {});
    }
    void TearDown() override {
        invalidate_config_buffer();
        ModuleTest::TearDown();
    }

    // The whole of what request number `request` carries: channel, id, record.
    static Bytes record_sent(std::size_t request) {
        const Bytes payload = board.payload_of(request);
        return {payload.begin() + 5, payload.end()};
    }
};

// ---- The image ----

TEST_F(ConfigStoreTest, FetchesAnImageWhole) {
    for (std::size_t i = 0; i < image.bytes.size(); ++i) {
        image.bytes[i] = static_cast<std::uint8_t>(i * i / 7);
    }
    image.serve();
    const std::uint8_t *fetched = get_all_config(18);
    EXPECT_EQ(Bytes(fetched, fetched + 1821429), image.bytes);
    const Bytes &request = board.sent.at(0).bytes;
    EXPECT_EQ(Bytes(request.begin(), request.begin() + 8), (Bytes{0x2E, 0x01, 1, 0, 0, 5, 0, 18}));
    EXPECT_EQ(request.size(), 32U);
    EXPECT_EQ(board.sent.at(0).timeout_ms, 30000);
    EXPECT_TRUE(board.log.empty());
}

TEST_F(ConfigStoreTest, LogsZlibsCodeOfADamagedImageAndKeepsWhatCameOut) {
    std::fill(image.bytes.begin(), image.bytes.end(), std::uint8_t{7});
    const Bytes whole = deflate_bytes(image.bytes);
    const auto size = static_cast<std::uint32_t>(whole.size());
    Bytes corrupt = whole;
    corrupt[corrupt.size() - 1] ^= 1;  // the check value
    Bytes bad_header = whole;
    bad_header[0] = 0;
    Bytes too_long(1821429 + 2000, 7);
    const struct {
        Bytes payload;
        int code;
    } cases[] = {
        {image_payload(whole, size - 1), 0},
        {image_payload(whole, size - 4), 0},
        {image_payload(whole, size / 2), 0},
        {image_payload(whole, 0), 0},
        {image_payload(corrupt, size), -3},
        {image_payload(bad_header, size), -3},
        {image_payload(deflate_bytes(too_long), 0xFFFFFFFF), 0},
    };
    for (const auto &damaged : cases) {
        board.log.clear();
        board.answer(302, damaged.payload);
        ASSERT_NE(get_all_config(3), nullptr);
        EXPECT_EQ(board.log, std::vector<std::string>{"3 get_all_config : decompression error : " +
                                                      std::to_string(damaged.code) + "\n"});
    }
    EXPECT_EQ(get_all_config(3)[1821428], 7);
}

TEST_F(ConfigStoreTest, TakesAnImageThatEndsLittleBehindTheBuffer) {
    const Bytes longer(1821429 + 267, 9);
    const Bytes compressed = deflate_bytes(longer);
    board.answer(302, image_payload(compressed, static_cast<std::uint32_t>(compressed.size())));
    EXPECT_EQ(get_all_config(3)[1821428], 9);
    EXPECT_TRUE(board.log.empty());
}

TEST_F(ConfigStoreTest, ServesTheOldImageWithoutAnAnswerOrWithAShortOne) {
    image.bytes[5] = 5;
    image.serve();
    get_all_config(3);
    board.answer(302, Bytes(1000, 1));
    EXPECT_EQ(get_all_config(3)[5], 5);
    EXPECT_TRUE(board.logged("3 get_all_config : short answer, 1032 bytes of 1024036\n"));
    board.silence(302);
    EXPECT_EQ(get_all_config(3)[5], 5);
}

// The buffer holds whatever came last: of any slot, and any part of it.
TEST_F(ConfigStoreTest, ShowsOfASlotOnlyItsOwnWholeImage) {
    slot_initializer(4);
    image.add_ont(0, serial_a);
    image.network()[0] = 7;
    image.serve();
    const Bytes own = image.payload();
    get_all_ont_config(3);
    image.add_ont(0, serial_b);
    const Bytes plain_head(image.bytes.begin(), image.bytes.begin() + 53054);
    const Bytes compressed = deflate_bytes(image.bytes);
    const Bytes damaged = image_payload(compressed, static_cast<std::uint32_t>(compressed.size() - 4));
    const Bytes head = deflate_bytes(plain_head);
    const Bytes ends_early = image_payload(head, static_cast<std::uint32_t>(head.size()));
    board.everything_stale = true;
    for (const Bytes &failing : {Bytes{}, damaged, ends_early}) {
        board.answer(302, failing);
        board.log.clear();
        EXPECT_EQ(get_all_ont_config(4)[264], 0);
        EXPECT_EQ(get_gpon_network_cfg(4)[0], 0);
        EXPECT_EQ(get_ont_templates()[0], 0);
        for (const int create : {0, 1}) {
            EXPECT_EQ(init_ont_config_buffer(4, bytes_of(serial_a), create), -1);
        }
        EXPECT_EQ(delete_ont_config(4, bytes_of(serial_a)), -1);
        EXPECT_TRUE(
            board.logged("3 init_ont_config_buffer : slot 5 has not sent its configuration, which is "
                         "not overwritten\n"));
        EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of(serial_a)), 0);  // what it had
    }
    EXPECT_EQ(board.count(123), 0);
    // An earlier image of the same slot can be read.
    board.answer(302, own);
    get_all_config(3);
    board.silence(302);
    EXPECT_EQ(get_gpon_network_cfg(3)[0], 7);
    board.everything_stale = false;
}

TEST_F(ConfigStoreTest, NeitherCopiesNorStampsWithoutABuffer) {
    image.add_ont(2, serial_a);
    image.serve();
    ASSERT_NE(get_all_ont_config_by_serial(3, bytes_of(serial_a), nullptr), nullptr);
    board.everything_stale = true;
    deinit_config_buffer();
    EXPECT_NE(get_all_ont_config_by_serial(3, bytes_of(serial_a), nullptr), nullptr);
    EXPECT_EQ(board.log, std::vector<std::string>{"3 get_all_config : memory allocation error\n"});
    EXPECT_EQ(board.count(302), 1);
}

TEST_F(ConfigStoreTest, FetchesOnceACachePeriodAlsoAfterAFailure) {
    board.silence(302);
    get_all_ont_config(3);
    get_all_ont_config(3);
    EXPECT_EQ(board.count(302), 1);
    board.everything_stale = true;
    get_all_ont_config(3);
    EXPECT_EQ(board.count(302), 2);
}

// ---- Lookups ----

TEST_F(ConfigStoreTest, FindsRecordsBySerial) {
    image.add_ont(7, serial_b);
    image.add_ont(531, serial_a);
    std::uint8_t *deleted = image.add_ont(4, "DELETED!");
    deleted[4] = 0;
    image.add_ont(9, serial_a)[4] = 0;  // a deleted twin before the one in use
    image.serve();

    int index = 0;
    EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of(serial_b)), 7);
    EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of(serial_a)), 9);
    ASSERT_NE(get_all_ont_config_by_serial(3, bytes_of(serial_a), &index), nullptr);
    EXPECT_EQ(index, 531);
    EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of("DELETED!")), 4);
    EXPECT_EQ(get_all_ont_config_by_serial(3, bytes_of("DELETED!"), &index), nullptr);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of("ABSENT!!")), 65535);
    EXPECT_EQ(get_ont_config_index_by_serial(3, bytes_of(no_serial)), 0);
    EXPECT_EQ(get_ont_config_index_by_serial(4, bytes_of(serial_b)), 65535);  // a slot that is down
    EXPECT_EQ(get_all_ont_config(4), nullptr);
}

TEST_F(ConfigStoreTest, SortsBySerialAsUnsignedBytesWithEqualOnesInStoreOrder) {
    image.add_ont(2, "\xFFZZZZZZZ");
    image.add_ont(3, "AAAAAAAA");
    image.add_ont(4, "\x7FZZZZZZZ");
    image.serve();
    get_all_ont_config(3);
    const auto &view = tarn::slot_sections<tarn::OntConfigSections>(3)->ont_configs_by_serial;
    EXPECT_EQ(view[0], 0);
    EXPECT_EQ(view[1], 1);
    EXPECT_EQ(view[2], 5);
    EXPECT_EQ(view[528], 531);
    EXPECT_EQ(std::vector<int>(view.begin() + 529, view.end()), (std::vector<int>{3, 4, 2}));
}

// ---- A new record ----

TEST_F(ConfigStoreTest, ANewRecordHoldsExactlyTheDefaults) {
    Bytes record(2122, 0xEE);
    init_ont_config(record.data());
    Bytes expected(2122, 0);
    const auto put16 = [&expected](int at, int value) {
        expected[static_cast<std::size_t>(at)] = static_cast<std::uint8_t>(value);
        expected[static_cast<std::size_t>(at) + 1] = static_cast<std::uint8_t>(value >> 8);
    };
    put16(4, 1);
    put16(262, 1);
    std::fill_n(expected.begin() + 272, 10, std::uint8_t{'1'});
    put16(286, 1);
    std::fill_n(expected.begin() + 288, 4, std::uint8_t{0xFF});
    expected[292] = 60;
    for (int i = 0; i < 16; ++i) {
        std::fill_n(expected.begin() + 298 + 7 * i + 2, 5, std::uint8_t{0xFF});
    }
    std::fill_n(expected.begin() + 410, 1344, std::uint8_t{0xFF});
    std::fill_n(expected.begin() + 1756, 64, std::uint8_t{0xFF});
    put16(1824, 0xFFFF);
    put16(1826, 0xFFFF);
    put16(1832, 4);
    put16(1834, 0xFFFF);
    for (int entry : {1861, 1966}) {
        expected[static_cast<std::size_t>(entry)] = 1;
        put16(entry + 76, 600);
    }
    expected[2065] = 1;
    for (int port : {2072, 2084, 2096, 2108}) {
        expected[static_cast<std::size_t>(port) + 9] = 2;
    }
    EXPECT_EQ(record, expected);
}

// ---- Writing ----

TEST_F(ConfigStoreTest, WritesARecordTwiceWithTheCardsOwnFirstWord) {
    std::uint8_t *stored = image.add_ont(2 * 64 + 5, serial_a);
    tarn::store_le32(stored, 0xA1B2C3D4);
    image.serve();
    get_all_ont_config(3);
    Bytes record(2122, 0x11);
    board.sent.clear();
    EXPECT_EQ(set_ont_config_new(3, 2, 5, record.data()), 0);

    ASSERT_EQ(board.sent.size(), 2U);
    EXPECT_EQ(board.sent[0].bytes.size(), 2159U);
    EXPECT_EQ(Bytes(board.sent[0].bytes.begin(), board.sent[0].bytes.begin() + 8),
              (Bytes{0x7B, 0, 1, 0, 0, 5, 0, 3}));
    EXPECT_EQ(board.sent[1].destination(), 8);
    EXPECT_EQ(board.payload_of(0), board.payload_of(1));
    const Bytes payload = board.payload_of(0);
    EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 11),
              (Bytes{2, 5, 0, 0, 0, 0xD4, 0xC3, 0xB2, 0xA1, 0x11, 0x11}));
    EXPECT_EQ(payload.back(), 0x11);
    get_all_ont_config(3);
    EXPECT_EQ(board.count(302), 1);  // read again
}

TEST_F(ConfigStoreTest, RefusesToWriteElsewhere) {
    const Bytes record(2122, 0);
    EXPECT_EQ(set_ont_config_new(3, 8, 0, record.data()), -1);
    EXPECT_EQ(set_ont_config_new(3, -5, 0, record.data()), -1);
    EXPECT_EQ(set_ont_config_new(3, 0, 64, record.data()), -1);
    EXPECT_EQ(board.log, (std::vector<std::string>{"3 set_ont_config_new : wrong channel index : 8\n",
                                                   "3 set_ont_config_new : wrong channel index : -5\n",
                                                   "3 set_ont_config_new : wrong ont id : 64\n"}));
    EXPECT_EQ(set_ont_config_new(5, 0, 0, record.data()), -1);  // a slot that is down
    board.firmware_select = 1;
    EXPECT_EQ(set_ont_config_new(3, 8, 0, record.data()), -1);
    EXPECT_EQ(board.log.size(), 3U);
    EXPECT_TRUE(board.sent.empty());
}

TEST_F(ConfigStoreTest, OnlyTheFirstOfTheTwoSendsCounts) {
    image.serve();
    get_all_ont_config(3);
    const Bytes record(2122, 0);
    board.scripts[123] = [](const SentRequest &request) {
        return request.destination() == 5 ? make_answer({}) : Bytes{};
    };
    EXPECT_EQ(set_ont_config_new(3, 0, 0, record.data()), 0);
    board.sent.clear();
    board.silence(123);
    EXPECT_EQ(set_ont_config_new(3, 0, 0, record.data()), -1);
    EXPECT_EQ(board.sent.size(), 1U);
}

// ---- Staging ----

TEST_F(ConfigStoreTest, StagesOneRecordAtATime) {
    image.add_ont(70, serial_a);
    image.serve();
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_b), 0), -1);
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_a), 0), 0);
    get_ont_cb()[6] = 'x';
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_a), 0), 0);
    EXPECT_EQ(get_ont_cb()[6], 'x');
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_b), 1), -1);
    slot_initializer(4);
    EXPECT_EQ(init_ont_config_buffer(4, bytes_of(serial_a), 0), -1);  // another card's
    EXPECT_EQ(commit_ont_config(3), 0);
    const Bytes payload = board.payload_of(1);
    EXPECT_EQ(Bytes(payload.begin(), payload.begin() + 5), (Bytes{1, 6, 0, 0, 0}));
    EXPECT_EQ(record_sent(1)[6], 'x');
    board.sent.clear();
    EXPECT_EQ(commit_ont_config(3), 0);
    EXPECT_TRUE(board.sent.empty());
    // A record from before the write would take it back: without a new image the one that was sent is staged.
    board.silence(302);
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_a), 0), 0);
    EXPECT_EQ(get_ont_cb()[6], 'x');
    invalidate_config_buffer();
}

TEST_F(ConfigStoreTest, NeitherStagesNorDeletesAnOntWithoutASerial) {
    image.add_ont(70, serial_a);
    image.serve();
    for (const int create : {0, 1}) {
        EXPECT_EQ(init_ont_config_buffer(3, bytes_of(no_serial), create), -1);
    }
    EXPECT_EQ(delete_ont_config(3, bytes_of(no_serial)), -1);
    EXPECT_EQ(board.count(123), 0);
}

TEST_F(ConfigStoreTest, ANewRecordNeedsAPlace) {
    image.serve();
    init_ont_config_buffer(3, bytes_of(serial_a), 1);
    set_ont_cb_tree(4);
    EXPECT_EQ(commit_ont_config(3), -1);  // its channel alone is none
    EXPECT_TRUE(board.logged("3 commit_ont_config : id or tree not specified\n"));
    EXPECT_EQ(init_ont_config_buffer(3, bytes_of(serial_b), 1), 0);  // idle again
    invalidate_config_buffer();
    EXPECT_EQ(commit_ont_config(3), 0);
    EXPECT_EQ(board.count(123), 0);
}

TEST_F(ConfigStoreTest, CompactsTheTunnelLists) {
    image.add_ont(0, serial_a);
    image.serve();
    reorganize_ont_selective_tunnel_vids();  // nothing staged: nothing to do
    init_ont_config_buffer(3, bytes_of(serial_a), 0);
    std::fill_n(get_ont_cb() + 410, 1344, std::uint8_t{0xFF});
    tarn::store_le16(get_ont_cb() + 410 + 2 * 3, 100);
    tarn::store_le16(get_ont_cb() + 410 + 2 * 41, 7);
    tarn::store_le16(get_ont_cb() + 410 + 84 * 15 + 2 * 40, 4094);
    reorganize_ont_selective_tunnel_vids();
    Bytes expected(1344, 0xFF);
    tarn::store_le16(&expected[0], 100);
    tarn::store_le16(&expected[2], 7);
    tarn::store_le16(&expected[84 * 15], 4094);
    EXPECT_EQ(Bytes(get_ont_cb() + 410, get_ont_cb() + 410 + 1344), expected);
}

// ---- Network blocks ----

TEST_F(ConfigStoreTest, SendsASlotsNetworkBlock) {
    image.network()[846] = 9;
    image.serve();
    board.silence(215);
    ASSERT_EQ(get_gpon_network_cfg(3)[846], 9);
    EXPECT_EQ(set_gpon_network_cfg(3), -1);
    const SentRequest &sent = board.sent.at(1);
    EXPECT_EQ(sent.bytes.size(), 879U);
    EXPECT_EQ(sent.destination(), 5);
    EXPECT_EQ(sent.bytes[878], 9);
    get_gpon_network_cfg(3);
    EXPECT_EQ(board.count(302), 2);  // forgotten even though the card did not answer
    EXPECT_EQ(set_gpon_network_cfg(7), 0);
    EXPECT_TRUE(board.logged("3 set_gpon_network_cfg : skipping slot 8\n"));
}

TEST_F(ConfigStoreTest, SpreadsTheTerminalVlansUpToTheFirstFailure) {
    std::uint8_t *chassis = image.network();
    chassis[15 + 4] = 1;
    std::copy_n("uplink", 7, chassis + 15 + 5);
    std::fill_n(chassis + 15 + 26 + 5, 18, std::uint8_t{'N'});  // a name without its NUL, of a free entry
    image.serve();
    board.answer(215, {});
    Bytes slot_block(847, 0xAA);
    board.scripts[84] = [&](const SentRequest &request) {
        return request.slot() == 9 ? Bytes{} : make_answer(slot_block);
    };
    for (int slot = 0; slot < 16; ++slot) {
        board.configured[slot] = slot == 3 || slot >= 9;
    }
    ASSERT_NE(get_common_network_cfg(), nullptr);
    EXPECT_EQ(board.sent.at(0).slot(), 18);
    board.sent.clear();
    EXPECT_EQ(set_common_network_cfg(), -1);
    EXPECT_TRUE(board.logged("3 set_common_network_cfg : failed to update terminal vlans to slot 10\n"));

    ASSERT_EQ(board.sent.size(), 4U);  // chassis block; slot 3's block read and written; slot 9's not read
    EXPECT_EQ(board.sent[0].slot(), 18);
    EXPECT_EQ(board.sent[1].slot(), 3);
    EXPECT_EQ(board.sent[2].slot(), 3);
    Bytes expected(847, 0xAA);
    std::copy_n("uplink", 7, expected.begin() + 15 + 5);  // what stood after the NUL stays
    for (int entry = 1; entry < 32; ++entry) {
        std::uint8_t *vlan = &expected[static_cast<std::size_t>(15 + 26 * entry)];
        vlan[4] = 0;
        vlan[5] = 0;
        vlan[23] = 1;
        vlan[24] = 0;
        vlan[25] = 0xFF;
    }
    std::fill_n(expected.begin() + 15 + 26 + 5, 17, std::uint8_t{'N'});
    expected[15 + 26 + 22] = 0;
    EXPECT_EQ(board.payload_of(2), expected);
}

}  // namespace
