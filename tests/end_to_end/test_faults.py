"""Cards that fail: managers get what is there, one line a section is logged, and the next request is unharmed."""

import re
from collections import Counter

import pytest

import commands
from chassis import ADDRESSES, Chassis, scenario
from programs import wait_until
from snmp import ROOT, SnmpError, oid_key

STATE, MODE, ADDRESS = f"{ROOT}.1.1.1", f"{ROOT}.1.2.1", f"{ROOT}.1.3.1"

SLOT = 2          # the card that fails, as the chassis counts
INDEX = SLOT + 1  # and in instance identifiers
FAILURE = re.compile(r"(\w+) : (?:.* [12]:\(-?\d+\)|short answer)")
REPEATS = re.compile(r"\(came (\d+) times more\)$")


def failures(system):
    """How often each operation has logged that a request failed. Ends the agent, which folds what repeats."""
    system.agent.stop()
    counts = Counter()
    for line in system.agent.log().splitlines():
        if failure := FAILURE.search(line):
            repeats = REPEATS.search(line)
            counts[failure.group(1)] += int(repeats.group(1)) if repeats else 1
    return counts


def others(rows):
    return [row for row in rows if oid_key(row[0])[13] != INDEX]


def value(system, oid):
    return system.snmp.get(oid)[0][1].value


def test_a_silent_card_does_not_hide_the_others(shared, start):
    healthy = shared.snmp.walk()
    system = start(agent_lines=["tarnSilentHold 600"])
    system.chassis.fault("silent", slot=SLOT)
    # Two requests wait in vain, for 3 s each; from then on nobody waits for this card.
    for channel in (1, 2):
        assert value(system, f"{STATE}.6.{INDEX}.{channel}") == b""
    system.chassis.forget_requests()
    rows = system.snmp.bulk_walk(50)
    assert not system.chassis.requests(slot=SLOT)
    assert others(rows) == others(healthy)
    assert [oid for oid, _ in rows if oid_key(oid)[12:14] == (1, INDEX)]
    counts = failures(system)
    counts.pop("get_olt_state", None)  # the last GETBULK reaches into the next table
    # Each channel's record, configuration and mode is a section of its own.
    assert counts == {
        "get_olt_channel_state": 8, "get_olt_channels_state_lite": 1, "get_olt_channel_config": 8,
        "get_activation_auth_mode": 8, "get_global_ont_address_table": 1}


@pytest.mark.parametrize("fault, keys, logged", [
    ("status", {"status": 5}, "card busy 2:(5)"),
    ("dropped", {}, "connection lost 1:"),
    ("truncated", {"bytes": 34}, "34 bytes"),
])
def test_a_card_that_fails_once_serves_what_was_there(start, fault, keys, logged):
    system = start(scenario=scenario(addresses=5), cache_period=1)
    column = f"{ADDRESS}.4.{INDEX}"
    healthy = system.snmp.walk(column)
    assert len(healthy) == 5
    system.chassis.fault(fault, slot=SLOT, command=commands.GET_ADDRESS_TABLE, times=1, **keys)

    def failed():
        assert system.snmp.get_next(column) == healthy[:1]
        return not system.chassis.ask("fault-list")["faults"]
    wait_until(failed, "the fault")
    # The request after the failed one is whole again.
    system.chassis.forget_requests()
    wait_until(lambda: system.snmp.walk(column) == healthy and system.chassis.requests(slot=SLOT), "an answer")
    assert len(system.agent.log_lines(logged)) == 1
    assert failures(system) == {"get_global_ont_address_table": 1}


def test_a_chassis_that_starts_anew_is_read_anew(start, tables):
    system = start()
    profile = tables["tarnONTCrossConnectProfileTable"].instance(3, 1)
    before = system.snmp.get(profile)
    directory = system.chassis.directory
    system.chassis.assert_clean_end()
    system.chassis.log_file.unlink()
    system.chassis = Chassis(directory, scenario())
    wait_until(lambda: system.snmp.get(profile) == before and
               system.chassis.requests(slot=16, command=commands.GET_CROSSCONNECT_PROFILES), "a request")


def test_an_oversized_count_is_clamped_to_the_answer(start):
    system = start()
    system.chassis.fault("wrong_count", slot=SLOT, command=commands.GET_ADDRESS_TABLE, count=65535)
    assert len(system.snmp.walk(f"{ADDRESS}.4.{INDEX}")) == ADDRESSES


def test_a_short_answer_is_none(start):
    system = start()
    # It ends within the records of the channels.
    system.chassis.fault("truncated", slot=SLOT, command=commands.GET_CHANNEL_STATE, bytes=33 + 2 * 69)
    texts = system.snmp.walk(f"{STATE}.6.{INDEX}")
    assert [text.value for _, text in texts] == [b""] * 8
    assert failures(system) == {"get_olt_channel_state": 8}


def test_a_late_answer_is_never_taken_for_anothers(start):
    system = start()
    system.chassis.fault("slow", slot=SLOT, command=commands.GET_CHANNEL_STATE, milliseconds=3500, times=1)
    # The answer comes after the time-out of 3 s, with the texts as they are now.
    assert value(system, f"{STATE}.7.{INDEX}.1") == b""
    system.chassis.ask("state-set", slot=SLOT, item="channel-record", channel=1, offset=29, hex=b"new\0".hex())
    assert value(system, f"{STATE}.7.{INDEX}.2") == b"new"
    assert failures(system) == {"get_olt_channel_state": 1}


def test_a_failed_action_is_reported(start):
    system = start()
    for column, kind, command in ((20, "u", commands.RECONFIGURE_CHANNEL), (21, "u", commands.RESET_COUNTERS),
                                  (5, "i", commands.SET_CHANNEL_CONFIG)):
        system.chassis.fault("status", slot=SLOT, command=command, status=5, times=1)
        oid = f"{STATE}.{column}.{INDEX}.1"
        with pytest.raises(SnmpError) as failed:
            system.snmp.set((oid, kind, 1))
        assert failed.value.reason == "genError"
        system.snmp.set((oid, kind, 1))


def test_a_configuration_that_cannot_be_read_is_not_written(start):
    system = start()
    flag = f"{STATE}.5.{INDEX}.1"
    system.chassis.fault("status", slot=SLOT, command=commands.GET_CHANNEL_CONFIG, status=5)
    with pytest.raises(SnmpError):
        system.snmp.set((flag, "i", 2))
    assert not system.chassis.requests(command=commands.SET_CHANNEL_CONFIG)
    system.chassis.clear_faults()
    assert value(system, flag) == 1


def test_a_card_without_an_image_never_gets_anothers_onts(start, tables):
    system = start()
    instance = tables["tarnONTConfigTable"].instance
    system.chassis.fault("status", slot=SLOT, command=commands.GET_ALL_CONFIG, status=9)
    listed = system.snmp.walk(instance(2, INDEX - 1))
    assert listed
    assert not system.snmp.walk(instance(2, INDEX))
    foreign = (INDEX, *oid_key(listed[0][0])[-9:])
    for bindings in ([(9, "u", 1)], [(20, "i", 4), (3, "u", 0), (4, "u", 0)], [(20, "i", 6)]):
        with pytest.raises(SnmpError):
            system.snmp.set(*((instance(column, *foreign), letter, number) for column, letter, number in bindings))
    assert not system.chassis.requests(slot=SLOT, command=commands.SET_ONT_CONFIG)
    assert system.agent.log_lines("has not sent its configuration, which is not overwritten")


def test_a_card_that_is_pulled_and_put_back(start):
    system = start()
    healthy = system.snmp.walk()
    system.chassis.ask("card-pull", slot=SLOT)
    wait_until(lambda: not system.snmp.walk(f"{STATE}.1.{INDEX}"), "the card's rows to go")
    assert system.snmp.walk() == others(healthy)
    assert system.snmp.get(f"{STATE}.2.{INDEX}.1")[0][1].type == "exception"
    with pytest.raises(SnmpError) as refused:
        system.snmp.set((f"{STATE}.20.{INDEX}.1", "u", 1))
    assert refused.value.reason == "noCreation"

    system.chassis.ask("card-insert", slot=SLOT)
    wait_until(lambda: system.snmp.walk(f"{STATE}.1.{INDEX}"), "the card's rows to come back")
    assert system.snmp.walk() == healthy


def test_an_address_table_that_grows_and_empties(start):
    system = start(cache_period=1)
    for count in (0, 1, 3000, ADDRESSES):
        system.chassis.ask("state-set", slot=SLOT, item="addresses", value=count)
        wait_until(lambda: len(system.snmp.bulk_walk(50, f"{ADDRESS}.4.{INDEX}")) == count, f"{count} entries")
        assert len(system.snmp.walk(f"{ADDRESS}.4.{INDEX + 1}")) == ADDRESSES


def test_a_chassis_that_is_not_full(start):
    system = start(scenario=scenario().replace(", 2,", ","))
    slots = {oid_key(oid)[13] for oid, _ in system.snmp.walk()}
    assert slots == set(range(1, 17)) - {INDEX}
