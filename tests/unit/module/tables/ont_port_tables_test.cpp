// The UNI ports table and the ONT address table.
#include "module/store/ont_sections.h"
#include "support/onts.h"
#include "tarn/host_services.h"

extern "C" {
get_next_entry_function tarnONTUNIPortsStateTable_get_next_entry, tarnONTAddressTable_get_next_entry;
table_handler_nextgen_function tarnONTUNIPortsStateTable_table_handler_nextgen,
    tarnONTAddressTable_table_handler_nextgen;
int is_ont_state_valid_unsafe(const std::uint8_t *);
int get_exact_state_index_2_oupt(int, const oid *, std::size_t);
int get_first_available_state_index_oupt(int, const oid *, std::size_t);
int get_port_id_from_oid_oupt(const oid *, std::size_t);
void append_index_oupt(table_entry *, const oid *, std::size_t, const std::uint8_t *, int, int, int);
int get_record_id_from_oid_tarnONTAddressTable(const oid *, std::size_t);
int get_first_available_config_index_2_tarnONTAddressTable(int, const oid *, std::size_t);
void append_index_tarnONTAddressTable(table_entry *, const oid *, std::size_t, const std::uint8_t *, int, int,
                                      int);
}

namespace {

const Oid ports = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 2};
const Oid addresses = {1, 3, 6, 1, 4, 1, 32473, 1, 22, 3, 4};

class OntPortTablesTest : public Started<ModuleTest, 2> {
  protected:
    static Outcome port(oid column, const std::string &ont, oid number) {
        return call_nextgen(tarnONTUNIPortsStateTable_table_handler_nextgen, MODE_GET, 2,
                            ont_oid(ports, column, 3, ont, {number}));
    }
    static Oid next_port(const Oid &name) {
        return next_of(tarnONTUNIPortsStateTable_get_next_entry, 2, name, 5);
    }
    static Outcome address(oid column, const std::string &ont, oid number) {
        return call_nextgen(tarnONTAddressTable_table_handler_nextgen, MODE_GET, 2,
                            ont_oid(addresses, column, 3, ont, {number}));
    }
    static Oid next_address(const Oid &name) {
        return next_of(tarnONTAddressTable_get_next_entry, 2, name, 7);
    }
    // CCCC0001 and AAAA0001 work, BBBB0001 does not.
    static void answer_list() {
        Bytes list = list_of({"CCCC0001", "BBBB0001", "AAAA0001"});
        list[5 + 106 + 68] = 6;
        board.answer(73, list);
    }
};

// Of AAAA0001 and CCCC0001.
const std::vector<Oid> port_rows = ont_oids(ports, 5, 3,
                                            {{"AAAA0001", {1}},
                                             {"AAAA0001", {2}},
                                             {"AAAA0001", {3}},
                                             {"AAAA0001", {4}},
                                             {"CCCC0001", {1}},
                                             {"CCCC0001", {2}},
                                             {"CCCC0001", {3}},
                                             {"CCCC0001", {4}}});

TEST_F(OntPortTablesTest, AnOntThatIsListedTwiceHasItsPortsOnce) {
    board.answer(73, list_of({"CCCC0001", "AAAA0001", "AAAA0001"}));
    EXPECT_EQ(walk_nextgen(tarnONTUNIPortsStateTable_get_next_entry, 2, ports, 5), port_rows);
}

TEST_F(OntPortTablesTest, WorkingOntsHaveFourPorts) {
    answer_list();
    EXPECT_EQ(walk_nextgen(tarnONTUNIPortsStateTable_get_next_entry, 2, ports, 5), port_rows);
    EXPECT_EQ(port_rows[0].size(), 24U);
    EXPECT_EQ(next_port(ont_oid(ports, 5, 3, "AAAA0001")), port_rows[0]);
    EXPECT_EQ(next_port(ont_oid(ports, 5, 3, "AAAA0001", {0})), port_rows[0]);
    EXPECT_EQ(next_port(ont_oid(ports, 5, 3, "AAAA0001", {4294967295})), port_rows[4]);
    EXPECT_EQ(next_port(ont_oid(ports, 5, 3, "BBBB0001", {2})), port_rows[4]);  // not working: after it
    EXPECT_TRUE(next_port(port_rows[7]).empty());
    EXPECT_EQ(board.sent.size(), 1U);
    board.link[2] = false;
    EXPECT_TRUE(next_port(ports).empty());
}

TEST_F(OntPortTablesTest, EveryPortColumnComesFromThePortsBlock) {
    answer_list();
    Bytes record(66);
    for (std::size_t b = 2; b < record.size(); ++b) {
        record[b] = static_cast<std::uint8_t>(0x80 + b);
    }
    record[0] = 3;
    record[1] = 0;
    record[2 + 32 + 6] = 1;  // port 3
    record[2 + 32 + 7] = 0;
    record[2 + 48] = 0;  // port 4
    record[2 + 49] = 0;
    board.answer(298, record);
    const auto third = [](oid column) { return port(column, "AAAA0001", 3); };
    expect_readings(third, is_number(1, 3), is_octets(2, "AAAA0001"), is_unsigned(3, 3));
    EXPECT_EQ(board.count(298), 0);
    expect_readings(third, is_number(4, 1), is_number(5, 1), is_integer(6, 0xA5A4), is_number(7, 0xA7A6),
                    is_number(8, 1), is_unsigned(9, 0xAA), is_number(10, 0xAB), is_number(11, 0xAC),
                    is_number(12, 0xAD), is_number(13, 0xB1B0AFAE), is_missing(14));
    expect_readings([](oid column) { return port(column, "AAAA0001", 4); }, is_integer(4, 2),
                    is_number(5, 2));
    EXPECT_EQ(port(8, "AAAA0001", 1).integer, 2);
    EXPECT_EQ(board.count(298), 1);
    EXPECT_EQ(board.last_payload(), (Bytes{'A', 'A', 'A', 'A', '0', '0', '0', '1', 0, 0, 0, 0, 0}));
}

TEST_F(OntPortTablesTest, MissingPortsAreNoInstanceAndNothingIsWritten) {
    answer_list();
    EXPECT_EQ(port(2, "BBBB0001", 1).error, SNMP_NOSUCHINSTANCE);  // not working
    EXPECT_EQ(port(14, "DDDD0001", 1).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(port(2, "AAAA0001", 0).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(port(2, "AAAA0001", 5).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(port(4, "AAAA0001", 1).integer, 2);  // no answer: zeros, and asked again
    EXPECT_EQ(port(5, "AAAA0001", 1).integer, 2);
    EXPECT_EQ(board.count(298), 2);
    EXPECT_EQ(set_nextgen(tarnONTUNIPortsStateTable_table_handler_nextgen, 2,
                          ont_oid(ports, 5, 3, "AAAA0001", {1}), integer_value(1)),
              0);
}

TEST_F(OntPortTablesTest, PortIdentifiersAreBuiltAndReadByPosition) {
    answer_list();
    table_entry entry{};
    append_index_oupt(&entry, ports.data(), ports.size(), serial("CCCC0001"), 2, 5, 3);
    const Oid name(entry.name, entry.name + entry.length);
    bfree("", 0, entry.name);
    EXPECT_EQ(name, ont_oid(ports, 5, 3, "CCCC0001", {4}));
    EXPECT_EQ(get_port_id_from_oid_oupt(name.data(), 24), 3);
    EXPECT_EQ(get_port_id_from_oid_oupt(name.data(), 23), -1);
    EXPECT_EQ(get_exact_state_index_2_oupt(2, name.data(), 24), 1023);
    EXPECT_EQ(get_first_available_state_index_oupt(2, name.data(), 24), -1);
    const Oid not_working = ont_oid(ports, 5, 3, "BBBB0001", {1});
    EXPECT_EQ(get_exact_state_index_2_oupt(2, not_working.data(), 24), -1);
    EXPECT_EQ(get_first_available_state_index_oupt(2, not_working.data(), 24), 1023);
    const auto &list = tarn::slot_sections<tarn::OntSections>(2)->ont_list;
    EXPECT_EQ(is_ont_state_valid_unsafe(list[0].data()), 1);
    EXPECT_EQ(is_ont_state_valid_unsafe(list[1].data()), 0);
    board.balloc_fails = true;
    EXPECT_TRUE(next_port(ports).empty());
    EXPECT_TRUE(board.logged("3 append_index_oupt : memory allocation error. Tried to allocate 96 bytes\n"));
}

// Entries of these serials, in the card's order; byte b of entry e is 16 e + b outside the serial.
Bytes addresses_of(const std::vector<std::string> &serials) {
    Bytes payload(3 + 37 * serials.size());
    payload[1] = static_cast<std::uint8_t>(serials.size());
    for (std::size_t e = 0; e < serials.size(); ++e) {
        for (std::size_t b = 0; b < 37; ++b) {
            payload[3 + 37 * e + b] = static_cast<std::uint8_t>(0x80 + 16 * e + b);
        }
        std::copy(serials[e].begin(), serials[e].end(), payload.begin() + static_cast<long>(3 + 37 * e + 21));
    }
    return payload;
}

TEST_F(OntPortTablesTest, AddressesAreWalkedBySerialUnderTheirSortedNumbers) {
    board.answer(80, addresses_of({"BBBB0001", "AAAA0001", "BBBB0001"}));
    const std::vector<Oid> rows =
        ont_oids(addresses, 7, 3, {{"AAAA0001", {1}}, {"BBBB0001", {2}}, {"BBBB0001", {3}}});
    EXPECT_EQ(walk_nextgen(tarnONTAddressTable_get_next_entry, 2, addresses, 7), rows);
    EXPECT_EQ(next_address(ont_oid(addresses, 7, 3, "BBBB0001")), rows[1]);  // every number qualifies
    EXPECT_EQ(next_address(ont_oid(addresses, 7, 3, "BBBB0001", {0})), rows[1]);
    EXPECT_EQ(next_address(ont_oid(addresses, 7, 3, "BBBB0001", {1})), rows[1]);
    EXPECT_EQ(next_address(ont_oid(addresses, 7, 3, "AAAA0001", {4294967295})), rows[1]);
    EXPECT_EQ(next_address(ont_oid(addresses, 7, 3, "AAAA9999", {3})), rows[1]);
    EXPECT_TRUE(next_address(rows[2]).empty());
    EXPECT_EQ(get_record_id_from_oid_tarnONTAddressTable(rows[2].data(), 24), 2);
    EXPECT_EQ(get_record_id_from_oid_tarnONTAddressTable(rows[2].data(), 23), -1);
    EXPECT_EQ(get_first_available_config_index_2_tarnONTAddressTable(2, rows[1].data(), 24), 2);
    EXPECT_EQ(get_first_available_config_index_2_tarnONTAddressTable(2, rows[2].data(), 24), -1);
    EXPECT_EQ(board.sent.size(), 1U);
    table_entry entry{};
    append_index_tarnONTAddressTable(&entry, addresses.data(), 11, serial("BBBB0001"), 2, 7, 2);
    EXPECT_EQ(Oid(entry.name, entry.name + entry.length), rows[2]);
    bfree("", 0, entry.name);
    board.link[2] = false;
    EXPECT_TRUE(next_address(addresses).empty());
}

TEST_F(OntPortTablesTest, EveryAddressColumnComesFromTheEntry) {
    Bytes payload = addresses_of({"BBBB0001", "AAAA0001"});
    payload[3 + 37 + 14] = 1;
    payload[3 + 37 + 15] = 0;
    board.answer(80, payload);
    expect_readings([&](oid column) { return address(column, "AAAA0001", 1); }, is_number(1, 3),
                    is_octets(2, "AAAA0001"), is_unsigned(3, 1), is_number(4, 0x9190 - 0x10000),
                    is_number(5, 0x9594 - 0x10000), is_integer(6, 0x9796 - 0x10000),
                    is_octets(7, "\x98\x99\x9A\x9B\x9C\x9D"), is_number(8, 1), is_number(9, 2),
                    is_unsigned(10, 0xAEAD), is_integer(11, 0xB0AF), is_number(12, 0xB2B1),
                    is_number(13, 0xB4B3), is_number(14, 0x9392 - 0x10000), is_missing(15));
    EXPECT_EQ(address(7, "AAAA0001", 2).error, SNMP_NOSUCHINSTANCE);  // another ONT's number
    EXPECT_EQ(address(7, "BBBB0001", 3).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(address(7, "BBBB0001", 0).error, SNMP_NOSUCHINSTANCE);
    EXPECT_EQ(set_nextgen(tarnONTAddressTable_table_handler_nextgen, 2,
                          ont_oid(addresses, 4, 3, "AAAA0001", {1}), integer_value(1)),
              SNMP_ERR_NOTWRITABLE);
}

}  // namespace
