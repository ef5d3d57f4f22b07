"""The Ethernet switch of the cards, from the manager to the chassis and back."""

import pytest

from chassis import scenario
from snmp import ROOT, SnmpError, Value, oid_key

GET_MACS, GET_UTILIZATION, SET_VLAN, SET_GENERAL, SET_QOS, RESET_PORT = 171, 434, 195, 190, 201, 338
INTERVAL = f"{ROOT}.4.50.1.0"
SLOT = 3  # as managers count
CARD = SLOT - 1


@pytest.fixture
def system(start):
    return start()


def config_of(system, item="config", slot=CARD):
    return system.chassis.ask("state-get", slot=slot, item=item)


def sent(system, command):
    return [request.payload for request in system.chassis.requests(slot=CARD, command=command)]


def value_of(system, oid):
    return system.snmp.get(oid)[0][1].value


def test_the_life_of_a_vlan(system, tables):
    table = tables["tarnSwitchVLANTable"]

    def column(number, vlan=777):
        return table.instance(number, SLOT, vlan)

    with pytest.raises(SnmpError):
        system.snmp.set((column(3), "s", "too early"))
    assert "777" not in config_of(system, "vlans")["working"]

    system.snmp.set((column(6), "i", 4))
    system.snmp.set((column(3), "s", "office"), (column(4), "x", "80400800"), (column(5), "x", "00001000"),
                    (column(10), "i", 1), (column(11), "i", 2), (column(20), "i", 1), (column(21), "i", 1))
    assert [value.value for _, value in system.snmp.get(*(column(n) for n in (1, 2, 3, 4, 5, 6, 10, 11, 20, 21)))] == [
        SLOT, 777, b"office", bytes.fromhex("80400800"), bytes.fromhex("00001000"), 1, 1, 2, 1, 1]
    record = bytearray(84)
    record[0:6] = b"office"
    record[32] = 1
    record[34:38] = (0x201).to_bytes(4, "little")    # ports 0 and 9
    record[38:42] = (0x80000).to_bytes(4, "little")  # port 19
    record[42] = 1                                   # the first group
    record[46], record[47], record[67], record[68] = 1, 0, 1, 1
    record[50], record[52], record[53], record[55], record[56] = 3, 1, 125, 10, 2
    vlans = config_of(system, "vlans")
    assert vlans["working"]["777"] == record.hex()
    assert "777" not in vlans["running"]
    # Each SET was sent once, under the board's number.
    assert sent(system, SET_VLAN)[-1] == (776).to_bytes(2, "little") + record
    assert len(sent(system, SET_VLAN)) == 2
    # The same in one SET, whose last variable creates the VLAN.
    system.snmp.set((column(3, 778), "s", "office"), (column(4, 778), "x", "80400800"),
                    (column(5, 778), "x", "00001000"), (column(10, 778), "i", 1), (column(11, 778), "i", 2), (column(20, 778), "i", 1),
                    (column(21, 778), "i", 1), (column(6, 778), "i", 4))
    assert sent(system, SET_VLAN)[2:] == [(777).to_bytes(2, "little") + record]
    system.snmp.set((column(6, 778), "i", 6))

    rows = [oid_key(oid)[-1] for oid, _ in system.snmp.bulk_walk(20, table.instance(3, SLOT))]
    assert 777 in rows and rows == sorted(rows)
    system.snmp.set((column(6), "i", 6))
    assert "777" not in config_of(system, "vlans")["working"]
    rows = [oid_key(oid)[-1] for oid, _ in system.snmp.bulk_walk(20, table.instance(3, SLOT))]
    assert 777 not in rows
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((table.instance(6, SLOT, 778), "i", 6))
    assert refused.value.reason == "commitFailed"


def test_bad_writes_of_vlans_change_nothing(system, tables):
    table = tables["tarnSwitchVLANTable"]
    before = config_of(system, "vlans")
    for binding, reason in (((table.instance(3, SLOT, 1), "s", "x" * 32), "wrongLength"),
                            ((table.instance(4, SLOT, 1), "x", "800000"), "wrongLength"),
                            ((table.instance(10, SLOT, 1), "u", 1), "wrongType"),
                            ((table.instance(2, SLOT, 1), "u", 1), "notWritable"),
                            ((f"{table.oid}.1.12.{SLOT}.1", "i", 1), "notWritable"),
                            ((table.instance(6, SLOT, 4095), "i", 4), "genError"),
                            ((table.instance(6, SLOT, 65537), "i", 4), "genError")):
        with pytest.raises(SnmpError) as refused:
            system.snmp.set(binding)
        assert refused.value.reason == reason, binding
    with pytest.raises(SnmpError) as refused:
        system.snmp.set(*((table.instance(6, SLOT, vlan), "i", 4) for vlan in range(2001, 2018)))
    assert refused.value.reason == "genError"
    assert config_of(system, "vlans") == before
    assert not sent(system, SET_VLAN)


def test_operational_vlans_are_the_running_ones(system, tables):
    table = tables["tarnSwitchOperationalVLANTable"]
    running = config_of(system, "vlans")["running"]
    rows = system.snmp.bulk_walk(20, table.instance(3, SLOT))
    assert {oid_key(oid)[-1]: value.value for oid, value in rows} == {
        int(vlan): bytes.fromhex(record)[:32].split(b"\0")[0] for vlan, record in running.items()}


def test_ports_and_options(system, tables):
    ports = tables["tarnSwitchPortsTable"]
    names = {oid_key(oid)[-1]: value.value for oid, value in system.snmp.bulk_walk(20, ports.instance(2))}
    assert list(names) == [1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, 21]
    assert (names[1], names[8], names[21]) == (b"front-port 0", b"pon-port 2", b"slot-channel 0")
    for name, at in (("tarnSwitchIGMPSnoopingTable", 6), ("tarnP2PTable", 2572)):
        option = tables[name].instance(2, SLOT)
        section = bytes.fromhex(config_of(system, "switch-general")["hex"])
        for written, stored in ((1, 1), (2, 0), (1, 1)):
            system.snmp.set((option, "i", written))
            assert value_of(system, option) == written
            section = section[:at] + bytes([stored]) + section[at + 1:]
            assert config_of(system, "switch-general")["hex"] == section.hex()
        with pytest.raises(SnmpError) as refused:
            system.snmp.set((option, "i", 3))
        assert refused.value.reason == "wrongValue"
    system.chassis.fault("status", command=SET_GENERAL, status=5)
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((tables["tarnSwitchIGMPSnoopingTable"].instance(2, SLOT), "i", 2))
    assert refused.value.reason == "genError"
    system.snmp.set((tables["tarnP2PTable"].instance(2, SLOT), "i", 2))


def queues(system):
    section = bytes.fromhex(config_of(system, "switch-qos")["hex"])
    return [section[57 + q] for q in range(7)], [section[1 + 8 * q:9 + 8 * q] for q in range(7)]


# Also where every read fetches: the edits of one request must meet in the section that is sent.
@pytest.mark.parametrize("cache_period", (600, 0))
def test_one_priority_ends_in_one_queue(start, tables, cache_period):
    system = start(cache_period=cache_period)
    priorities = tables["tarnQOS8021pMappingTable"]
    code_points = tables["tarnQOSDSCPMappingTable"]
    assert value_of(system, priorities.instance(3, SLOT, 0)) == b"\x80"
    # Queue 4 takes priorities 0 and 5, queue 2 the first and the last code point; both in one request.
    system.snmp.set((priorities.instance(3, SLOT, 4), "x", "84"),
                    (code_points.instance(3, SLOT, 2), "x", "8000000000000001"))
    by_priority, by_code_point = queues(system)
    assert by_priority[4] == 0x21
    assert all(mask & 0x21 == 0 for q, mask in enumerate(by_priority) if q != 4)
    assert by_code_point[2] == bytes.fromhex("0100000000000080")
    assert all(mask[0] & 1 == 0 and mask[7] & 0x80 == 0 for q, mask in enumerate(by_code_point) if q != 2)
    assert sent(system, SET_QOS)[-1].hex() == config_of(system, "switch-qos")["hex"]
    # A commit by another table keeps the queues' last words.
    system.snmp.set((tables["tarnQOSConfigTable"].instance(3, SLOT), "i", 2))
    assert queues(system) == (by_priority, by_code_point)
    assert value_of(system, priorities.instance(3, SLOT, 0)) == b"\0"
    system.snmp.set((tables["tarnQOSConfigTable"].instance(2, SLOT), "u", 9))
    assert value_of(system, tables["tarnQOSConfigTable"].instance(2, SLOT)) == 9
    system.chassis.fault("silent", command=SET_QOS, slot=CARD)
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((tables["tarnQOSConfigTable"].instance(3, SLOT), "i", 1))
    assert refused.value.reason == "commitFailed"


def test_port_counters_are_reset_one_port_at_a_time(system, tables):
    table = tables["tarnSwitchPortCountersTable"]
    first = [value.value for _, value in system.snmp.get(*(table.instance(n, SLOT, 2) for n in range(3, 34)))]
    counters = bytes.fromhex(config_of(system, "switch-ports")["ports"][1]["counters"])
    for n, value in enumerate(first):
        held = int.from_bytes(counters[8 * n:8 * n + 8], "little")
        quotient = held // 0xFFFFFFFF if held >> 32 else 0
        assert value == (quotient << 32) + (held + quotient) % 2**32, n
    other = value_of(system, table.instance(3, SLOT, 3))
    system.snmp.set((table.instance(50, SLOT, 2), "u", 0))
    assert sent(system, RESET_PORT) == [b"\1"]
    assert value_of(system, table.instance(3, SLOT, 2)) == 0
    assert value_of(system, table.instance(3, SLOT, 3)) == other
    assert system.snmp.get(table.instance(3, SLOT, 14))[0][1].type == "exception"


def test_utilization_follows_the_interval(system, tables):
    table = tables["tarnPortsUtilizationTable"]
    assert value_of(system, INTERVAL) == 300
    at_300 = value_of(system, table.instance(6, SLOT, 1))
    system.snmp.set((INTERVAL, "u", 65535))
    assert value_of(system, INTERVAL) == 65535
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((INTERVAL, "u", 65536))
    assert refused.value.reason == "wrongValue"
    # The other slots have not been asked yet; the values stay below 2^32.
    system.snmp.set((INTERVAL, "u", 10000))
    assert value_of(system, table.instance(6, SLOT + 1, 1)) % 10000 == 0
    assert at_300 % 300 == 0
    assert system.chassis.requests(command=GET_UTILIZATION)[-1].payload == (10000).to_bytes(2, "little") + b"\0"
    rows = system.snmp.bulk_walk(20, table.oid)
    assert len(rows) == 16 * 13 * 8
    assert {value.type for _, value in rows} == {"Counter64"}


def test_the_mac_tables_at_their_full_size(start, tables):
    full = start(scenario=scenario(onts_per_channel=0, addresses=0).replace(
        "    addresses: 0\n", "    addresses: 0\n    mac_addresses: 16384\n"))
    table = tables["tarnSwitchMacListTable"]
    rows = full.snmp.bulk_walk(500, table.instance(4))
    assert len(rows) == 16 * 16384
    keys = [oid_key(oid) for oid, _ in rows]
    assert all(a < b for a, b in zip(keys, keys[1:]))
    assert len({key[13] for key in keys}) == 16
    assert all(request.outcome == "answered" for request in full.chassis.requests(command=GET_MACS))

    # The text of one card says the same.
    raw = tables["tarnRawSwitchMacTable"]
    chunks = [value.value for _, value in full.snmp.walk(raw.instance(3, SLOT))]
    assert len(chunks) == (2 + 29 * 16384) // 10240 + 1
    assert {len(chunk) for chunk in chunks[:-1]} == {10240}
    head, *records = b"".join(chunks).decode().split("|")
    assert head == "v1"
    seen = {}
    for record in records:
        mac, vlan, port, _ = record.split(",")
        seen[(int(vlan), *(int(octet, 16) for octet in mac.split(":")))] = int(port)
    of_slot = {oid_key(oid)[14:]: value for oid, value in rows if oid_key(oid)[13] == SLOT}
    assert {key: Value("Gauge32", port) for key, port in seen.items()} == of_slot
