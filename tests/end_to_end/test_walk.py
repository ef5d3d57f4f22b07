"""What managers see when they walk: every row once, in order, however they ask."""

import time
from collections import Counter

import commands
from mib import READABLE
from snmp import PON_CHANNELS, READ, ROOT, USER, USER_LINES, node_walk, oid_key
from chassis import ADDRESSES, scenario

CARDS, CHANNELS = 16, 8


def oids(rows):
    return [oid for oid, _ in rows]


def test_a_walk_of_everything_is_what_the_mib_states(shared, mib):
    rows = shared.snmp.bulk_walk(25, ROOT)
    keys = [oid_key(oid) for oid in oids(rows)]
    assert all(a < b for a, b in zip(keys, keys[1:]))

    objects = {oid_key(oid): stated for oid, stated in mib.objects.items()}
    seen = set()
    for key, (oid, value) in zip(keys, rows):
        stated = next((objects[key[:length]] for length in range(len(key) - 1, len(oid_key(ROOT)), -1)
                       if key[:length] in objects), None)
        assert stated, f"{oid} is not in the MIB"
        assert stated.access in READABLE, oid
        assert value.type == stated.type, oid
        assert stated.admits(value.value), (oid, value, stated)
        seen.add(stated.name)
    for table in mib.tables.values():
        if table.oid.startswith(PON_CHANNELS + "."):
            assert {column.name for column in table.served()} <= seen, table.name


def test_the_rows_of_the_pon_channels(shared, tables):
    def instances(table, number):
        return [oid_key(oid)[13:] for oid, _ in shared.snmp.bulk_walk(25, table.instance(number))]

    channels = [(slot, channel) for slot in range(1, CARDS + 1) for channel in range(1, CHANNELS + 1)]
    for name in ("tarnPONChannelStateTable", "tarnPONChannelActModeTable"):
        for column in tables[name].served():
            assert instances(tables[name], column.number) == channels, column.name
    addresses = tables["tarnPONChannelAddressTable"]
    rows = instances(addresses, 4)
    for column in addresses.served():
        assert instances(addresses, column.number) == rows, column.name
    for slot in range(1, CARDS + 1):
        assert sorted(row[2] for row in rows if row[0] == slot) == list(range(1, ADDRESSES + 1))


def test_every_way_of_asking_gives_the_same_rows(shared, node_directory):
    rows = shared.snmp.walk()
    assert shared.snmp.get_all(oids(rows)) == rows
    for repetitions in (1, 10, 50):
        assert shared.snmp.bulk_walk(repetitions) == rows, repetitions
    assert node_walk(shared.agent.port, node_directory) == rows


def test_one_getbulk_crosses_tables_and_repeats_columns(shared):
    rows = dict(shared.snmp.walk())
    ordered = list(rows)
    state, mode = f"{ROOT}.1.1.1.21.16.6", f"{ROOT}.1.2.1.3.1.1"
    answer = shared.snmp.get_bulk(5, state, mode)
    expected = []
    for repetition in range(1, 6):
        for start in (state, mode):
            oid = ordered[ordered.index(start) + repetition]
            expected.append((oid, rows[oid]))
    assert answer == expected


def test_two_managers_at_once_see_the_same(shared):
    rows = shared.snmp.walk()
    walks = [shared.snmp.start_walk() for _ in range(2)]
    for walk in walks:
        assert shared.snmp.finish_walk(walk) == rows


def test_a_restricted_view_shows_its_columns_only(start):
    system = start(agent_lines=[
        "view two included .1.3.6.1.4.1.32473.1.22.1.1.1.3",
        "view two included .1.3.6.1.4.1.32473.1.22.1.1.1.9",
        "com2sec viewer 127.0.0.1 viewer", "group viewers v2c viewer",
        'access viewers "" any noauth exact two none none',
    ])
    everything = system.snmp.walk()
    visible = [row for row in everything
               if oid_key(row[0])[:13] in (oid_key(f"{ROOT}.1.1.1.3"), oid_key(f"{ROOT}.1.1.1.9"))]
    assert len(visible) == 2 * CARDS * CHANNELS
    assert system.snmp.walk(community="viewer") == visible
    for repetitions in (1, 10, 50):
        assert system.snmp.bulk_walk(repetitions, community="viewer") == visible
    hidden = system.snmp.get(f"{ROOT}.1.1.1.4.1.1", community="viewer")
    assert hidden[0][1].type == "exception"


def test_an_answer_ends_with_what_its_message_takes(start, tables):
    """Long texts: more than a datagram holds, whatever SNMP version asks for them."""
    system = start(agent_lines=USER_LINES, scenario=scenario(onts_per_channel=4).replace(
        "addresses: 40", "addresses: 40\n    mac_addresses: 2000"))
    log, raw = tables["tarnONTConnectionLogTable"].instance(3), tables["tarnRawSwitchMacTable"].instance(3)
    logs, texts = system.snmp.bulk_walk(20, log), system.snmp.bulk_walk(5, raw)
    assert max(len(value.value) for _, value in texts) == 10240
    for community in (READ, USER):
        for column, rows in ((log, logs), (raw, texts)):
            answer = system.snmp.get_bulk(len(rows), column, community=community)
            assert answer == rows[:len(answer)]
            assert 55_000 < sum(len(value.value) for _, value in answer) < 65_000
            assert system.snmp.bulk_walk(len(rows), column, community=community) == rows
        answer = system.snmp.get_bulk(100, log, raw, community=community)
        assert answer == [row for pair in zip(logs, texts) for row in pair][:len(answer)]
        assert len(answer) > 8


def test_a_walk_asks_a_card_once_a_section(start):
    system = start()
    began = time.monotonic()
    rows = system.snmp.walk()
    system.snmp.bulk_walk(10)
    periods = 1 + int((time.monotonic() - began) // 20)
    assert rows

    # The last GETBULK reaches into the next table, whose request names no channel.
    counts = Counter((request.slot, request.command, request.channel)
                     for request in system.chassis.requests()
                     if request.command != commands.GET_ACTIVATION_AUTH_MODE and request.payload)
    for slot in range(CARDS):
        for channel in range(CHANNELS):
            assert 1 <= counts.pop((slot, commands.GET_CHANNEL_STATE, channel)) <= periods
            assert 1 <= counts.pop((slot, commands.GET_CHANNEL_CONFIG, channel)) <= periods
        for command in (commands.GET_CHANNELS_STATE_LITE, commands.GET_ADDRESS_TABLE):
            assert 1 <= counts.pop((slot, command, commands.ALL_CHANNELS)) <= periods
    assert not counts


def test_full_address_tables(start, tables):
    entries = 2000
    system = start(scenario=scenario(onts_per_channel=128, addresses=entries))
    table = tables["tarnPONChannelAddressTable"]
    rows = system.snmp.bulk_walk(50, table.oid)
    assert len(rows) == CARDS * entries * len(table.served())
    keys = [oid_key(oid) for oid in oids(rows)]
    assert all(a < b for a, b in zip(keys, keys[1:]))
    assert {value.type for _, value in rows} == {column.type for column in table.served()}
