"""What an operator provisions: ONTs, profiles and templates, compared byte by byte with what the chassis stores."""

import struct
from collections import Counter

import pytest

from chassis import scenario
from programs import wait_until
from snmp import SnmpError, Value, oid_key

SLOT = 3
SERIAL = b"TARN\x00\x00\xa0\x01"
OTHER_SERIAL = b"TARN\x00\x00\xa0\x02"
CHANNEL, ONT_ID = 6, 40
STORE_INDEX = CHANNEL * 64 + ONT_ID
SET_ONT_CONFIG, GET_ALL_CONFIG, SET_TEMPLATE = 123, 302, 301

# The fields of a record by column: what is written, and what then stands where. A column that is missing here
# is tested on its own below.


def u8(offset, value=0x5A):
    return "u", value, offset, struct.pack("<B", value)


def u16(offset, value=0x1234, letter="u"):
    return letter, value, offset, struct.pack("<H", value)


def u32(offset, value=0x12345678):
    return "u", value, offset, struct.pack("<I", value)


def s16(offset, value=-2):
    return "i", value, offset, struct.pack("<h", value)


def integer(field):
    return "i", *field[1:]


def flag(offset, stored=1):
    return "i", 1 if stored else 2, offset, struct.pack("<H", stored)


def text(offset, size, value="north"):
    return "s", value, offset, value.encode().ljust(size, b"\0")


def octets(offset, size):
    return "x", "c5" * size, offset, b"\xc5" * size


def address(offset):
    return "a", "192.0.2.7", offset, bytes([192, 0, 2, 7])


ONT = {6: text(272, 11), 7: flag(284), 8: text(6, 256), 9: u16(1824),
       **{11 + k: u16(1756 + 2 * k, k) for k in range(8)}, 19: u16(1754), 22: flag(286, 0),
       **{23 + k: u16(1788 + 2 * k, 100 + k) for k in range(8)}, 31: u16(1820), 32: u16(1828, 7, "i"),
       35: flag(262, 0), 37: u32(288), 38: u32(292), 39: flag(1830), 40: u16(1832, 9, "i"), 41: u16(1834),
       43: u16(1826)}

# What every kind of profile has: table, chassis' kind, record size, RowStatus.
PROFILES = [
    ("tarnONTCrossConnectProfileTable", "crossconnect", 298, 20), ("tarnONTAllocProfileTable", "alloc", 301, 20),
    ("tarnONTShapingProfileTable", "shaping", 1032, 10), ("tarnONTPortsProfileTable", "ports", 1622, 20),
    ("tarnONTManagementProfileTable", "management", 604, 20),
]
PROFILE = {2: text(22, 256), 3: text(6, 16)}

# Tables of entries: the last entry of a profile, and a column of each type.
PROFILE_ENTRIES = [
    ("tarnONTShapingProfileUpstreamTable", "shaping", 15, {2: flag(526), 4: u32(532)}),
    ("tarnONTPortsProfileUNITable", "ports", 3, {2: integer(u8(1569)), 14: u32(1608)}),
    ("tarnONTPortsProfileMCDynamicEntriesTable", "ports", 19, {2: u16(492, 65535), 4: address(498)}),
    ("tarnONTPortsProfileMLDDynamicEntriesTable", "ports", 19, {6: octets(1352, 16), 10: u16(1374)}),
]

TEMPLATE = {2: text(6, 16), 3: text(22, 256), 4: octets(278, 8), 6: text(288, 11), 7: flag(301), 18: u16(339, 7),
            32: u16(465, 3, "i"), 38: u32(315)}


def new_ont_record(serial=SERIAL):
    record = bytearray(2122)

    def put(offset, value):
        record[offset:offset + len(value)] = value

    put(4, b"\1\0")
    put(262, b"\1\0")
    put(264, serial)
    put(272, b"1111111111")
    put(286, b"\1\0")
    put(288, struct.pack("<II", 0xFFFFFFFF, 60))
    for k in range(16):
        put(300 + 7 * k, b"\xff" * 5)
    put(410, b"\xff" * 1344)
    put(1756, b"\xff" * 64)
    put(1824, b"\xff" * 4)
    put(1832, b"\4\0\xff\xff")
    for entry in (1861, 1966):
        put(entry, b"\1")
        put(entry + 76, struct.pack("<H", 600))
    put(2065, b"\1")
    for port in range(4):
        put(2072 + 12 * port + 9, b"\2")
    return record


def edit(record, columns):
    for _, _, offset, stored in columns.values():
        record[offset:offset + len(stored)] = stored
    return record


class Provisioning:
    """A system, and its tables addressed by name, column and index."""

    def __init__(self, system, tables):
        self.system, self.tables = system, tables
        self.snmp, self.chassis = system.snmp, system.chassis

    def bindings(self, table, index, columns):
        return [(self.tables[table].instance(column, *index), letter, value)
                for column, (letter, value, *_) in columns.items()]

    def set(self, *bindings):
        return self.snmp.set(*bindings)

    def record(self, item, slot, **keys):
        return bytearray.fromhex(self.chassis.ask("state-get", slot=slot, item=item, **keys)["hex"])

    def ont(self, index=STORE_INDEX):
        """The stored record without its first word, which is the card's own."""
        record = self.record("ont-config", SLOT, index=index)
        record[:4] = bytes(4)
        return record

    def profile(self, kind, index):
        return self.record("profile", 16, kind=kind, index=index)

    def template(self, index):
        return self.record("ont-template", 16, index=index)

    def writes(self, command):
        return [request for request in self.chassis.requests() if request.command == command]

    def check_values(self, table, index, columns):
        shown = {"i": lambda v: v, "u": lambda v: v, "s": str.encode, "x": bytes.fromhex, "a": lambda v: v}
        names = [self.tables[table].instance(column, *index) for column in columns]
        read = [value.value for _, value in self.snmp.get_all(names)]
        assert read == [shown[letter](value) for letter, value, *_ in columns.values()]

    def set_each(self, table, index, columns, record, read):
        """Writes each column by itself and holds the stored record against the expected one."""
        for column, (letter, value, offset, stored) in columns.items():
            self.set((self.tables[table].instance(column, *index), letter, value))
            record[offset:offset + len(stored)] = stored
            assert read() == record, (table, column)
        self.check_values(table, index, columns)


def ont_index(serial=SERIAL):
    return (SLOT + 1, 8, *serial)


@pytest.fixture
def provisioning(start, tables):
    return Provisioning(start(), tables)


@pytest.fixture
def ont(provisioning):
    """A new ONT, and its record as it is stored."""
    place = {20: ("i", 4), 3: ("u", CHANNEL), 4: ("u", ONT_ID)}
    provisioning.set(*provisioning.bindings("tarnONTConfigTable", ont_index(), place))
    record = provisioning.ont()
    assert record == new_ont_record()
    return record


def test_an_ont_from_its_creation_to_its_end(provisioning, ont):
    table = "tarnONTConfigTable"
    provisioning.set_each(table, ont_index(), ONT, ont, provisioning.ont)
    provisioning.check_values(table, ont_index(), {3: ("u", CHANNEL), 4: ("u", ONT_ID), 20: ("i", 1)})
    taken = provisioning.tables["tarnONTConfigFreenessTable"].instance(4, SLOT + 1, CHANNEL, ONT_ID)
    assert provisioning.snmp.get(taken)[0][1].value == SERIAL

    provisioning.chassis.forget_requests()
    provisioning.set(*provisioning.bindings(table, ont_index(), {20: ("i", 6)}))
    assert len(provisioning.writes(SET_ONT_CONFIG)) == 2
    ont[4:6] = b"\0\0"
    assert provisioning.ont() == ont
    gone = [provisioning.tables[table].instance(9, *ont_index()), taken]
    assert [value.type for _, value in provisioning.snmp.get(*gone)] == ["exception"] * 2
    # The record takes a SET all the same, unseen but for the log.
    provisioning.set(*provisioning.bindings(table, ont_index(), {9: ("u", 1)}))
    row = ".".join(map(str, ont_index()))
    assert provisioning.system.agent.log_lines(f"{table}: a SET changed the row {row}, which does not exist")


def test_one_set_creates_rows_whatever_their_order(provisioning):
    """What belongs to an ONT or a profile may stand in front of it."""
    bindings = provisioning.bindings
    provisioning.set(*bindings("tarnOntConfigUniPortTable", (*ont_index(), 2), {7: ("u", 3), 4: ("i", 4)}),
                     *bindings("tarnONTPortsProfileUNITable", (20, 1), {5: ("u", 90)}),
                     *bindings("tarnONTPortsProfileTable", (20,), {20: ("i", 4)}),
                     *bindings("tarnONTConfigTable", ont_index(),
                               {3: ("u", CHANNEL), 4: ("u", ONT_ID), 20: ("i", 4)}))
    record = provisioning.ont()
    assert record[264:272] == SERIAL
    assert (record[2072 + 12 + 4], record[2072 + 12 + 9]) == (1, 3)
    assert provisioning.profile("ports", 20)[1407 + 57] == 90


def test_twelve_columns_reach_the_card_as_one_record(provisioning, ont):
    twelve = {column: ONT[column] for column in (43, 6, 40, 8, 7, 38, 11, 30, 22, 19, 35, 9)}
    provisioning.chassis.forget_requests()
    provisioning.set(*provisioning.bindings("tarnONTConfigTable", ont_index(), twelve))
    first, second = provisioning.writes(SET_ONT_CONFIG)
    assert first.payload == second.payload
    assert first.payload[:5] == bytes([CHANNEL, ONT_ID, 0, 0, 0])
    assert provisioning.ont() == edit(ont, twelve)

    # The same of a new ONT, in one SET whose last variable creates it.
    provisioning.set(*provisioning.bindings("tarnONTConfigTable", ont_index(), {20: ("i", 6)}))
    provisioning.chassis.forget_requests()
    place = {3: ("u", CHANNEL), 4: ("u", ONT_ID + 1), 20: ("i", 4)}
    provisioning.set(*provisioning.bindings("tarnONTConfigTable", ont_index(OTHER_SERIAL), {**twelve, **place}))
    first, second = provisioning.writes(SET_ONT_CONFIG)
    assert first.payload == second.payload
    created = provisioning.ont(STORE_INDEX + 1)
    assert created == edit(new_ont_record(OTHER_SERIAL), twelve)


def test_the_entries_of_an_ont(provisioning, ont):
    ports = "tarnOntConfigUniPortTable"
    index = (*ont_index(), 2)
    provisioning.set(*provisioning.bindings(ports, index, {4: ("i", 4)}))
    ont[2088:2090] = b"\1\0"
    assert provisioning.ont() == ont
    provisioning.check_values(ports, index, {4: ("i", 1), 5: ("i", 1)})
    provisioning.set_each(ports, index, {6: u8(2092, 5), 7: u8(2093, 3)}, ont, provisioning.ont)
    provisioning.set(*provisioning.bindings(ports, index, {5: ("i", 2)}))
    ont[2088:2090] = b"\0\0"
    assert provisioning.ont() == ont
    assert provisioning.snmp.get(provisioning.tables[ports].instance(6, *index))[0][1].type == "exception"

    provisioning.set_each("tarnONTFullServicesConfigTable", (*ont_index(), 16),
                          {4: u16(1786), 5: u16(1818, 65535)}, ont, provisioning.ont)
    provisioning.set_each("tarnONTCustomCrossConnectTable", (*ont_index(), 16),
                          {4: flag(403), 5: s16(405), 6: integer(u8(407)), 7: s16(408)}, ont, provisioning.ont)
    tunnels = "tarnONTSelectiveTunnelTable"
    for place, vid in ((42, 4094), (7, 100)):
        provisioning.set(*provisioning.bindings(tunnels, (*ont_index(), 9, place), {5: ("i", vid)}))
    # Compacted after each write: the first one stands in front.
    ont[410 + 84 * 8:410 + 84 * 8 + 4] = struct.pack("<HH", 4094, 100)
    assert provisioning.ont() == ont
    provisioning.check_values(tunnels, (*ont_index(), 9, 3), {5: ("i", -1)})


@pytest.mark.parametrize("table, kind, size, status", PROFILES)
def test_a_profile_from_its_creation_to_its_end(provisioning, table, kind, size, status):
    def read():
        return provisioning.profile(kind, 20)

    create = provisioning.bindings(table, (20,), {status: ("i", 4)})
    provisioning.set(*create)
    expected = read()
    assert expected[:22] == b"\0\0\0\0\1\0" + b"20".ljust(16, b"\0")
    with pytest.raises(SnmpError, match="noCreation"):
        provisioning.set(*create)
    provisioning.set_each(table, (20,), PROFILE, expected, read)
    provisioning.check_values(table, (20,), {1: ("u", 20), status: ("i", 1)})
    # All of them in one SET, in front of them the creation, or after them.
    for index, bindings in ((21, {status: ("i", 4), **PROFILE}), (22, {**PROFILE, status: ("i", 4)})):
        provisioning.set(*provisioning.bindings(table, (index,), bindings))
        assert provisioning.profile(kind, index) == expected
    provisioning.set(*provisioning.bindings(table, (20,), {status: ("i", 6)}))
    assert read() == bytes(size)
    assert provisioning.snmp.get(provisioning.tables[table].instance(3, 20))[0][1].type == "exception"


@pytest.mark.parametrize("table, kind, entry, columns", PROFILE_ENTRIES)
def test_the_entries_of_a_profile(provisioning, table, kind, entry, columns):
    provisioning.set_each(table, (1, entry), columns, provisioning.profile(kind, 1),
                          lambda: provisioning.profile(kind, 1))


def test_a_template_from_its_creation_to_its_end(provisioning):
    values = "tarnONTTemplateValuesTable"
    expected = provisioning.template(20)
    assert expected == bytes(473)
    provisioning.set(*provisioning.bindings(values, (20,), {100: ("i", 4)}))
    expected[4] = 1
    assert provisioning.template(20) == expected
    provisioning.set_each(values, (20,), TEMPLATE, expected, lambda: provisioning.template(20))
    provisioning.set_each("tarnONTTemplateOverridesTable", (20,), {4: flag(286), 39: flag(471)}, expected,
                          lambda: provisioning.template(20))
    provisioning.set_each("tarnONTTemplateServicesValuesTable", (20, 16), {2: u16(355), 3: u16(419)}, expected,
                          lambda: provisioning.template(20))
    provisioning.set_each("tarnONTTemplateServicesOverridesTable", (20, 16), {2: flag(387), 3: flag(451)}, expected,
                          lambda: provisioning.template(20))
    provisioning.set(*provisioning.bindings(values, (20,), {100: ("i", 6)}))
    expected[4] = 0
    assert provisioning.template(20) == expected
    # One SET whose last variable creates the template.
    provisioning.set(*provisioning.bindings(values, (21,), {**TEMPLATE, 100: ("i", 4)}))
    created = edit(bytearray(473), TEMPLATE)
    created[4] = 1
    assert provisioning.template(21) == created


def test_a_template_is_whole_also_without_a_card(provisioning):
    before = provisioning.template(3)
    for slot in range(16):
        provisioning.chassis.ask("card-pull", slot=slot)
    wait_until(lambda: len(provisioning.system.agent.log_lines("line card down")) == 16, "the cards to be missed")
    provisioning.set_each("tarnONTTemplateValuesTable", (3,), {32: integer(u16(465, 2))}, before,
                          lambda: provisioning.template(3))


def test_the_olt_profiles_are_listed(provisioning):
    for name, prefix in (("tarnOLTAddressTableProfilesTable", "addresses"), ("tarnOLTVlanProfilesTable", "vlans")):
        table = provisioning.tables[name]
        rows = provisioning.snmp.walk(table.oid)
        assert rows == ([(table.instance(1, n), Value("Gauge32", n)) for n in range(8)] +
                        [(table.instance(2, n), Value("OCTET STRING", f"{prefix}-{n}".encode())) for n in range(8)])


def refused(provisioning, *bindings):
    with pytest.raises(SnmpError) as error:
        provisioning.set(*bindings)
    return error.value.reason


def test_a_set_that_fails_leaves_nothing_behind(provisioning, ont):
    def change(serial=SERIAL, **columns):
        return provisioning.bindings("tarnONTConfigTable", ont_index(serial),
                                     {int(name[1:]): value for name, value in columns.items()})

    listed = provisioning.snmp.walk(provisioning.tables["tarnONTConfigTable"].instance(2, SLOT + 1))
    other = next(value.value for _, value in listed if value.value != SERIAL)
    provisioning.chassis.forget_requests()
    assert refused(provisioning, *change(c9=("u", 1)), *change(other, c9=("u", 1))) == "inconsistentName"
    assert refused(provisioning, *change(OTHER_SERIAL, c9=("u", 1))) == "inconsistentName"
    assert refused(provisioning, *change(c3=("u", 1))) == "commitFailed"
    assert refused(provisioning, *change(OTHER_SERIAL, c20=("i", 4))) == "commitFailed"
    assert refused(provisioning, *change(c20=("i", 7))) == "badValue"
    assert refused(provisioning, *change(c11=("u", 99999999))) == "wrongValue"
    assert refused(provisioning, *change(c9=("i", 1))) == "wrongType"
    assert refused(provisioning, *change(c6=("s", "12345678901"))) == "wrongLength"
    assert not provisioning.writes(SET_ONT_CONFIG)
    provisioning.chassis.fault("status", slot=SLOT, command=SET_ONT_CONFIG, times=1, status=5)
    assert refused(provisioning, *change(c9=("u", 1))) == "commitFailed"
    assert provisioning.ont() == ont
    # The next one carries its own columns and nothing else.
    provisioning.set(*change(c40=("i", 8)))
    ont[1832] = 8
    assert provisioning.ont() == ont


def test_an_image_that_is_wrong_is_logged_and_read_again(start, tables):
    system = start(cache_period=0)
    table = tables["tarnONTConfigTable"]
    names = [oid for oid, _ in system.snmp.get_bulk(3, table.instance(8, SLOT + 1))]
    whole = system.snmp.get(*names)
    assert all(value.value.startswith(b"ONT 3/") for _, value in whole)

    def described(text):
        """A new description of the first ONT, which the card knows and the agent has not read yet."""
        serial = bytes(oid_key(names[0])[-8:]).hex()
        system.chassis.ask("state-set", slot=SLOT, item="ont-config", serial=serial, offset=6, hex=text.hex() + "00")

    for fault, keys, logged in (
            ("truncated", {"bytes": 500000}, "get_all_config : short answer, 500000 bytes of 1024036"),
            # The header of the compressed stream, and what it says of its length.
            ("corrupt", {"offset": 32}, "get_all_config : decompression error : -3"),
            ("wrong_count", {"count": 0}, "get_all_config : decompression error : 0")):
        described(fault.encode())
        system.chassis.fault(fault, slot=SLOT, command=GET_ALL_CONFIG, **keys)
        assert system.snmp.get(*names) == whole, fault
        assert logged in system.agent.log()
        system.chassis.clear_faults()
        assert system.snmp.get(names[0])[0][1].value == fault.encode()
        whole = system.snmp.get(*names)

    # What is damaged further on is not taken either; a length beyond the answer's is not believed.
    system.chassis.fault("corrupt", slot=SLOT, command=GET_ALL_CONFIG, offset=400000, times=1)
    assert system.snmp.get(*names) == whole
    described(b"oversized")
    system.chassis.fault("wrong_count", slot=SLOT, command=GET_ALL_CONFIG, count=0xFFFFFFFF)
    assert system.snmp.get(names[0])[0][1].value == b"oversized"


def test_every_record_of_a_full_chassis(start, tables):
    """532 ONTs on each of sixteen cards, walked completely from one image a card."""
    system = start(scenario=scenario(onts_per_channel=128, addresses=0))

    def walked(name, *where):
        """The indices of a walk of the last column, of the whole table or below an index."""
        table = tables[name]
        column = table.instance(table.served()[-1].number)
        keys = [oid_key(oid.removeprefix(column + "."))
                for oid, _ in system.snmp.bulk_walk(100, ".".join(map(str, (column, *where))))]
        assert all(a < b for a, b in zip(keys, keys[1:])), name
        return keys

    ont_indices = walked("tarnONTConfigTable")
    assert Counter(index[0] for index in ont_indices) == {slot: 532 for slot in range(1, 17)}
    assert Counter(index[:2] for index in walked("tarnONTConfigFreenessTable")) == {
        (slot, channel): 64 if channel < 8 else 20 for slot in range(1, 17) for channel in range(9)}
    assert walked("tarnONTFullServicesConfigTable") == [
        (*index, service) for index in ont_indices for service in range(1, 17)]
    # Of every ONT the first port is in use, of some the second.
    ports = walked("tarnOntConfigUniPortTable")
    assert [index[:-1] for index in ports if index[-1] == 1] == ont_indices
    records = [system.chassis.ask("state-get", slot=SLOT, item="ont-config", index=index)["hex"]
               for index in range(532)]
    enabled = [(SLOT + 1, 8, *bytes.fromhex(record[528:544]), port + 1) for record in records for port in range(4)
               if record[2 * (2076 + 12 * port):][:4] != "0000"]
    assert [index for index in ports if index[0] == SLOT + 1] == sorted(enabled)
    of_a_card = [index for index in ont_indices if index[0] == SLOT + 1]
    assert walked("tarnONTSelectiveTunnelTable", SLOT + 1) == [
        (*index, service, place) for index in of_a_card for service in range(1, 17) for place in range(1, 43)]
    assert Counter(request.slot for request in system.chassis.requests(command=GET_ALL_CONFIG)) == {
        slot: 1 for slot in range(16)}
