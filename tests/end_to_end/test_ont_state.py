"""State, ports, connections and counters of ONTs and OLTs, from the chassis to the manager."""

import re
import struct
import time
from collections import Counter
from datetime import datetime

import pytest

import commands
from chassis import scenario
from programs import wait_until
from snmp import SnmpError, Value, oid_key

CARDS = 16
SLOT = 4          # as the chassis counts
INDEX = SLOT + 1  # and in instance identifiers
WORKING, LOST = 7, 11


def onts(system, slot=SLOT):
    return system.chassis.ask("state-get", slot=slot, item="onts")["onts"]


def serial_index(ont):
    return [8, *bytes.fromhex(ont["serial"])]


def working_ont(system):
    return next(ont for ont in onts(system) if ont["code"] == WORKING)


def record(system, item, ont):
    answer = system.chassis.ask("state-get", slot=SLOT, item=item, serial=ont["serial"])
    return bytes.fromhex(answer["hex"])


def text(octets):
    return octets.split(b"\0")[0]


def values(system, table, index):
    """Every served column of a row by its number."""
    numbers = [column.number for column in table.served()]
    answers = system.snmp.get(*[table.instance(number, *index) for number in numbers])
    return {number: value.value for number, (_, value) in zip(numbers, answers)}


def test_every_column_of_an_ont_is_what_its_card_says(shared, tables):
    ont = working_ont(shared)
    listed = record(shared, "ont-list-record", ont)
    state = record(shared, "ont-state-record", ont)
    i2c = struct.unpack("<hhBxhhhH", record(shared, "ont-i2c-record", ont))
    row = values(shared, tables["tarnONTStateTable"], [INDEX, *serial_index(ont)])
    power = row.pop(11)
    assert -285 <= power <= -115
    assert row == {
        1: INDEX, 2: bytes.fromhex(ont["serial"]), 3: ont["channel"], 4: ont["id"], 5: WORKING,
        6: ont["errors"], 7: 1 if state[68:70] == b"\1\0" else 2, 8: text(state[70:86]),
        9: struct.unpack_from("<h", state, 86)[0], 10: int(struct.unpack_from("<d", state, 128)[0] * 1000),
        12: text(listed[18:50]), 17: text(listed[50:68]), 18: text(listed[91:106]),
        13: 2 * i2c[0], 14: 2 * i2c[1], 15: int(i2c[3] / 256 * 10), 16: 1000 * i2c[4], 24: 1,
        25: 2 * i2c[5], 26: 2 * i2c[6], 20: 0, 21: 0, 22: 0, 23: 0}


def test_every_column_of_a_port_is_what_its_card_says(shared, tables):
    ont = working_ont(shared)
    ports = record(shared, "ont-uni-ports-record", ont)
    for port in range(4):
        fields = struct.unpack_from("<HHHHBBBBI", ports, 2 + 16 * port)
        row = values(shared, tables["tarnONTUNIPortsStateTable"], [INDEX, *serial_index(ont), port + 1])
        assert row == {
            1: INDEX, 2: bytes.fromhex(ont["serial"]), 3: port + 1, 4: 1 if ports[0] > port else 2,
            5: 1 if fields[0] else 2, 6: fields[1], 7: fields[2], 8: 1 if fields[3] == 1 else 2,
            **dict(zip(range(9, 14), fields[4:]))}


def test_the_state_of_the_olt_is_interleaved(start, tables):
    system = start()
    words = (99, 3, 38, 1, 192, 10, 168, 0, 1, 0, 20, 5, 0xAB, 0x12, 0xC, 0xFFFF)
    system.chassis.ask("state-set", slot=SLOT, item="olt-state", offset=0, hex=struct.pack("<16H", *words).hex())
    assert values(system, tables["tarnOLTStateTable"], [INDEX]) == {
        1: INDEX, 2: b"3.38.1", 3: b"192.168.1.20", 4: b"AB.C", 5: b"10.0.0.5", 6: b"12.FFFFFFFF", 10: 0}


def test_tables_have_the_rows_of_the_chassis(shared, tables):
    def indices(name, column):
        table = tables[name]
        prefix = table.oid + f".1.{column}."
        return [oid_key(oid.removeprefix(prefix)) for oid, _ in shared.snmp.bulk_walk(50, prefix[:-1])]

    listed = sorted((slot + 1, *serial_index(ont)) for slot in range(CARDS) for ont in onts(shared, slot))
    working = sorted((slot + 1, *serial_index(ont)) for slot in range(CARDS) for ont in onts(shared, slot)
                     if ont["code"] == WORKING)
    assert indices("tarnONTStateTable", 5) == listed
    assert indices("tarnONTResetCountersTable", 3) == listed
    assert indices("tarnONTUNIPortsStateTable", 3) == [(*ont, port) for ont in working for port in range(1, 5)]
    assert indices("tarnONTFecPerformMonitoringHistDataTable", 4) == [
        (*ont, 1, counter) for ont in listed for counter in range(1, 7)]
    assert indices("tarnONTCrossConnectUSTable", 1) == [
        (*ont, key, counter) for ont in listed for key in range(1, 17) for counter in range(1, 7)]
    for name in ("tarnOLTStateTable", "tarnSyncCountersTable", "tarnOLTResetCountersTable"):
        assert indices(name, 1) == [(slot,) for slot in range(1, CARDS + 1)]
    assert not indices("tarnONTMulticastGroupsTable", 1)
    addresses = indices("tarnONTAddressTable", 7)
    assert addresses == sorted(addresses)
    assert [index[-1] for index in addresses if index[0] == INDEX] == list(
        range(1, sum(index[0] == INDEX for index in addresses) + 1))


def test_an_ont_that_goes_down_is_seen_everywhere(start, tables):
    system = start(cache_period=1)
    ont = working_ont(system)
    index = [INDEX, *serial_index(ont)]
    state, ports = tables["tarnONTStateTable"], tables["tarnONTUNIPortsStateTable"]
    assert values(system, state, index)[5] == WORKING
    system.chassis.ask("state-set", slot=SLOT, item="ont-signal", serial=ont["serial"], value=0)
    wait_until(lambda: values(system, state, index)[5] == LOST, "the state to change")
    row = values(system, state, index)
    assert (row[11], row[16], row[24]) == (65535, 32767, 255)
    wait_until(lambda: system.snmp.get(ports.instance(3, *index, 1))[0][1].type == "exception",
               "the ports to go")
    assert all(not oid.startswith(ports.instance(3, *index)) for oid, _ in system.snmp.bulk_walk(50, ports.oid))
    system.chassis.ask("state-set", slot=SLOT, item="ont-signal", serial=ont["serial"], value=1)
    system.chassis.ask("state-set", slot=SLOT, item="optical-power", serial=ont["serial"], value=-243)
    system.chassis.ask("state-set", slot=SLOT, item="ont-code", serial=ont["serial"], value=WORKING)
    wait_until(lambda: values(system, state, index)[11] == -243, "the ONT to come back")
    wait_until(lambda: values(system, ports, [*index, 4])[3] == 4, "the ports to come back")


def test_triggers_act_on_exactly_one(start, tables):
    system = start()
    ont = working_ont(system)
    state = tables["tarnONTStateTable"]
    serial = bytes.fromhex(ont["serial"])
    for column, command, count in (("Reconfigure", commands.RECONFIGURE_ONT, "reconfigurations"),
                                   ("Reboot", commands.REBOOT_ONT, "reboots"),
                                   ("Default", commands.ONT_DEFAULT, "defaults")):
        oid = state.instance(f"tarnONTState{column}", INDEX, *serial_index(ont))
        for value in (0, 2, 1):
            system.snmp.set((oid, "u", value))
        assert [request.payload for request in system.chassis.requests(slot=SLOT, command=command)] == [
            serial + bytes(5)]
        assert system.chassis.ask("state-get", slot=SLOT, item="ont", serial=ont["serial"])[count] == 1
        system.chassis.fault("status", slot=SLOT, command=command, status=5, times=1)
        if column == "Reconfigure":
            system.snmp.set((oid, "u", 1))
        else:
            with pytest.raises(SnmpError) as failed:
                system.snmp.set((oid, "u", 1))
            assert failed.value.reason == "genError"
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((state.instance("tarnONTStateReboot", INDEX, 8, *b"NOBODY00"), "u", 1))
    assert refused.value.reason == "noCreation"


def test_counters_are_reset(start, tables):
    system = start()
    ont = working_ont(system)
    system.snmp.set((tables["tarnONTResetCountersTable"].instance(3, INDEX, *serial_index(ont)), "u", 0))
    system.snmp.set((tables["tarnOLTResetCountersTable"].instance(2, INDEX), "u", 7))
    system.snmp.set((tables["tarnOLTStateTable"].instance(10, INDEX), "u", 1))
    assert [request.payload for request in system.chassis.requests(slot=SLOT, command=commands.RESET_COUNTERS)] == [
        bytes([5, 0, 0, 0, 0]) + bytes.fromhex(ont["serial"]) + bytes(5),
        bytes([16, 0, 0, 0, 0]) + bytes(13), bytes([16, 0, 0, 0, 4]) + bytes(13)]
    assert len(system.chassis.requests(slot=SLOT, command=commands.RECONFIGURE_OLT)) == 1


def test_performance_monitoring_is_fetched_once_an_ont(start, tables):
    # A quarter of an hour in a second.
    system = start(scenario=scenario(onts_per_channel=1).replace("time_factor: 0", "time_factor: 1000"))
    ont = working_ont(system)
    table = tables["tarnONTEthPerformMonitoringHistDataTable"]
    time.sleep(1)
    column = table.instance(6, INDEX, *serial_index(ont))
    rows = dict(system.snmp.walk(column))
    assert len(rows) == 4 * 30
    assert all(value.type == "Gauge32" for value in rows.values())
    assert rows[f"{column}.1.1"].value > 0
    assert sum(value.value for value in rows.values()) > 1000
    # The walk ends on the next ONT, on another channel.
    asked = Counter((request.payload[0], request.payload[5])
                    for request in system.chassis.requests(slot=SLOT, command=commands.GET_COUNTERS)
                    if request.payload[4] == ont["channel"])
    assert asked == {(module, port): 1 for module in (5, 6, 7) for port in range(4)}
    names = dict(system.snmp.walk(table.instance(5, INDEX, *serial_index(ont))))
    prefix = table.instance(5, INDEX, *serial_index(ont))
    assert names[f"{prefix}.2.16"] == Value("OCTET STRING", b"PPPoE filtered frame counter")
    assert names[f"{prefix}.2.17"] == Value("OCTET STRING", b"Drop events")


def test_what_clients_watch_and_hold_goes_with_their_ont(start, tables):
    system = start(scenario=scenario(onts_per_channel=8), cache_period=0)
    groups, total = tables["tarnONTMulticastActiveGroupsTable"], tables["tarnONTMulticastStatTable"]
    sessions = tables["tarnOLTPPPoESessionsTable"]

    def watched(ont):
        """The rates of the groups, and what the ONT counts in all: bandwidth, joins, exceeded, groups."""
        index = [INDEX, *serial_index(ont)]
        rates = system.snmp.get_all([groups.instance(6, *index, group, 6) for group in range(1, 17)])
        return ([value.value for _, value in rates if value.value],
                [value.value for _, value in system.snmp.get_all([total.instance(6, *index, 1, n)
                                                                  for n in range(1, 5)])])

    viewer = next(ont for ont in onts(system) if ont["code"] == WORKING and watched(ont)[0])
    rates, counted = watched(viewer)
    assert (counted[0], counted[2], counted[3]) == (sum(rates), 0, len(rates))

    def session_owners():
        return [value.value for _, value in system.snmp.walk(sessions.instance(2, INDEX))]

    owner = session_owners()[0]
    rows = [values(system, sessions, [INDEX, number]) for number in range(1, len(session_owners()) + 1)]
    assert all(1 <= row[8] <= 16 and row[5][0] == 2 for row in rows)
    for serial in {owner.hex(), viewer["serial"]}:
        system.chassis.ask("state-set", slot=SLOT, item="ont-code", serial=serial, value=LOST)
    assert owner not in session_owners()
    assert watched(viewer) == ([], [0, 0, 0, 0])


def test_boards_say_what_they_are(shared, tables):
    row = values(shared, tables["tarnBoardStateTable"], [INDEX])
    serial = row.pop(3)
    assert re.fullmatch(rb"LC[0-9]{6}", serial)
    assert (row[1], row[2], row[5], row[6], row[10], row[11]) == (INDEX, b"TARN-LC8", b"slot 5", b"3.38.1", 1, 1)


def test_what_a_walk_of_the_ont_state_costs_in_requests(start, tables):
    system = start(scenario=scenario(onts_per_channel=4))
    state = tables["tarnONTStateTable"]
    rows = system.snmp.bulk_walk(50, state.oid)
    assert len(rows) == CARDS * 32 * len(state.served())
    counts = Counter((request.slot, request.command) for request in system.chassis.requests())
    for slot in range(CARDS):
        asked = sum(ont["code"] != 13 for ont in onts(system, slot))
        assert counts[slot, commands.GET_ONT_LIST] == 2
        assert counts[slot, commands.GET_ONT_STATE] == asked
        assert counts[slot, commands.GET_ONT_I2C] == 32
    system.chassis.forget_requests()
    assert system.snmp.bulk_walk(50, state.oid) == rows
    assert not system.chassis.requests()


@pytest.mark.parametrize("name", ["tarnONTStateTable", "tarnONTFecPerformMonitoringHistDataTable"])
def test_two_managers_get_the_rows_of_one(shared, tables, name):
    """One of them starts in the middle: with the second half of a column's slots."""
    table = tables[name]
    rows = shared.snmp.walk(table.oid)
    column = table.instance(table.served()[len(table.served()) // 2].number)
    half = [row for row in rows if row[0].startswith(column + ".") and oid_key(row[0])[len(oid_key(column))] > 8]
    assert half
    whole = shared.snmp.start_walk(table.oid)
    parts = [shared.snmp.start_walk(f"{column}.{slot}") for slot in range(9, 17)]
    assert [row for part in parts for row in shared.snmp.finish_walk(part)] == half
    assert shared.snmp.finish_walk(whole) == rows


def test_the_connection_log_tells_when_an_ont_was_away(start, tables):
    system = start(cache_period=1)
    ont = working_ont(system)
    log = tables["tarnONTConnectionLogTable"].instance(3, INDEX, *serial_index(ont))

    def shown():
        return system.snmp.get(log)[0][1].value.decode()

    listed = record(system, "ont-list-record", ont)
    serial = bytes.fromhex(ont["serial"])
    before = shown()
    assert before.count("Serial number") == 2
    system.chassis.ask("state-set", slot=SLOT, item="ont-signal", serial=ont["serial"], value=0)
    wait_until(lambda: shown() != before, "the log to change")
    earlier, latest = before.split("\n\n")[0] + "\n", before.split("\n\n")[1]
    link_up = re.search("LinkUp :             (.*)\n", latest).group(1)
    # The chassis' clock stands still at its start; the agent shows it in its time zone.
    now = datetime.fromtimestamp(1767225600).strftime("%Y-%m-%d %H:%M:%S")
    assert shown() == earlier + (
        "\n----------------------------------------------\n"
        f"    Serial number:       {serial[:4].decode()}{serial[4:].hex().upper()}\n"
        f"    Equipment ID:        {text(listed[18:50]).decode()}\n"
        f"    Version:             {text(listed[50:68]).decode()}\n"
        f"    LinkUp :             {link_up}\n"
        f"    LinkDown :           {now}\n"
        "    Last state :         loss of signal\n")
