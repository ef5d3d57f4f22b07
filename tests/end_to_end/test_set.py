"""What a manager's writes do to the chassis, seen in its own request log, and which columns refuse them."""

import re

import pytest

import commands
import snmp
from snmp import SnmpError, Value

# The columns that ask a card to do something.
TRIGGERS = {"tarnPONChannelStateReconfigure", "tarnPONChannelStateResetCounters", "tarnOLTResetCountersAction",
            "tarnONTResetCountersAction"}
# The tables whose cards' answers do not change when one is written to.
STEADY = re.compile("tarn(PONChannel|OLTState|OLTReset|Sync|ONT(State|UNI|Connection|Address|Reset)"
                    "|ONT.*PerformMonitoring|ONTCrossConnect(DS|US)T)")


@pytest.fixture
def system(start):
    return start()


def sent(system, *wanted):
    return [(request.slot, request.command, request.payload) for request in system.chassis.requests()
            if request.command in wanted]


def test_triggers_act_on_any_value(system, tables):
    state = tables["tarnPONChannelStateTable"]
    reconfigure = state.instance("tarnPONChannelStateReconfigure", 3, 2)
    reset = state.instance("tarnPONChannelStateResetCounters", 16, 8)
    for oid in (reconfigure, reset):
        for value in (0, 1, 7):
            assert system.snmp.set((oid, "u", value)) == [(oid, Value("Gauge32", value))]
        assert system.snmp.get(oid) == [(oid, Value("Gauge32", 0))]
    group_and_channel = bytes([16, 0, 0, 0, 7]) + bytes(13)
    assert sent(system, commands.RECONFIGURE_CHANNEL, commands.RESET_COUNTERS) == [
        (2, commands.RECONFIGURE_CHANNEL, bytes([1]))] * 3 + [
        (15, commands.RESET_COUNTERS, group_and_channel)] * 3


def test_resetting_counters_restarts_them(system, tables):
    # The chassis' clock stands still, so nothing is counted between the two reads.
    received = tables["tarnPONChannelStateTable"].instance("tarnPONChannelStateValue4", 1, 2)
    before = {channel: system.chassis.channel(0, channel) for channel in (1, 2)}
    assert system.snmp.get(received) == [(received, Value("Gauge32", before[1]["received"]))]
    assert before[1]["received"] > 0

    system.snmp.set((tables["tarnPONChannelStateTable"].instance("tarnPONChannelStateResetCounters", 1, 2), "u", 1))
    assert system.chassis.channel(0, 1) == before[1] | {"received": 0, "counter_resets": 1}
    assert system.chassis.channel(0, 2) == before[2]


def test_the_switch_of_the_configuration(system, tables):
    flag = tables["tarnPONChannelStateTable"].instance("tarnPONChannelStateFlag5", 5, 4)
    assert system.snmp.get(flag) == [(flag, Value("INTEGER", 1))]
    # Only an exact 1 sets it.
    for written, stored in ((2, 0), (1, 1), (7, 0), (1, 1)):
        system.snmp.set((flag, "i", written))
        assert system.snmp.get(flag) == [(flag, Value("INTEGER", 1 if stored else 2))]
        writes = sent(system, commands.SET_CHANNEL_CONFIG)
        slot, _, payload = writes[-1]
        # The channel, then the 97 bytes of its configuration, whose first word is the switch.
        assert (slot, payload[0], payload[1:3], len(payload)) == (4, 3, bytes([stored, 0]), 98)
    assert len(sent(system, commands.SET_CHANNEL_CONFIG)) == 4
    # All else of the configuration goes back as it came.
    assert len({payload[3:] for _, _, payload in sent(system, commands.SET_CHANNEL_CONFIG)}) == 1


def test_the_activation_mode(system, tables):
    auth = tables["tarnPONChannelActModeTable"].instance("tarnPONChannelActModeAuth", 9, 1)
    assert system.snmp.get(auth) == [(auth, Value("INTEGER", 1))]
    for written, mode in ((2, 4), (1, 2)):
        system.snmp.set((auth, "i", written))
        assert system.snmp.get(auth) == [(auth, Value("INTEGER", written))]
        assert sent(system, commands.SET_ACTIVATION_AUTH_MODE)[-1] == (
            8, commands.SET_ACTIVATION_AUTH_MODE, bytes([0, mode, 0]))


def test_several_bindings_in_one_request(system, tables):
    state, mode = tables["tarnPONChannelStateTable"], tables["tarnPONChannelActModeTable"]
    bindings = [(state.instance("tarnPONChannelStateReconfigure", 1, 1), "u", 1),
                (mode.instance("tarnPONChannelActModeAuth", 2, 2), "i", 2),
                (state.instance("tarnPONChannelStateFlag5", 3, 3), "i", 2)]
    system.snmp.set(*bindings)
    assert sorted(sent(system, commands.RECONFIGURE_CHANNEL, commands.SET_ACTIVATION_AUTH_MODE)) == [
        (0, commands.RECONFIGURE_CHANNEL, bytes([0])),
        (1, commands.SET_ACTIVATION_AUTH_MODE, bytes([1, 4, 0]))]
    assert [slot for slot, _, _ in sent(system, commands.SET_CHANNEL_CONFIG)] == [2]


def test_access_is_as_the_mib_states(system, tables):
    """Every column of a row: what can be read, what can be written, and what refuses."""
    letters = {"INTEGER": "i", "Gauge32": "u", "OCTET STRING": "x"}
    checked = [table for table in tables.values() if STEADY.match(table.name)]
    assert len(checked) == 20
    for table in checked:
        first = system.snmp.get_next(table.oid)[0][0]
        assert first.startswith(table.oid + "."), table.name
        index = first.removeprefix(table.oid).split(".")[3:]
        for column in table.columns:
            oid = table.instance(column.number, *index)
            value = system.snmp.get(oid)[0][1]
            if column.access == "not-accessible":
                assert value.type == "exception", oid
                continue
            assert value.type == column.type, oid
            system.chassis.forget_requests()
            text = value.value.hex() if isinstance(value.value, bytes) else value.value
            binding = (oid, letters[column.type], text)
            if column.access == "read-write":
                # Writing what was read changes nothing but in a column that acts.
                system.snmp.set(binding)
                assert column.name in TRIGGERS or system.snmp.get(oid)[0][1] == value
                continue
            with pytest.raises(SnmpError) as refused:
                system.snmp.set(binding)
            assert refused.value.reason == "notWritable", oid
            assert not system.chassis.requests()
            assert system.snmp.get(oid)[0][1] == value


def test_writes_are_logged_with_who_and_what(start, tables):
    system = start(agent_lines=[snmp.USER_LINES[0], "rwuser walker authpriv"])
    mode = tables["tarnPONChannelActModeTable"].instance("tarnPONChannelActModeAuth", 1, 1)
    system.snmp.set((mode, "i", 2), community=snmp.USER)
    system.chassis.fault("status", slot=0, command=commands.SET_ACTIVATION_AUTH_MODE, status=1)
    with pytest.raises(SnmpError):
        system.snmp.set((mode, "i", 1))
    name = r"TARN-MIB::tarnPONChannelActModeAuth\.1\.1"
    logged = "\n".join(system.agent.log_lines(" SET by "))
    assert re.search(rf"SET by user walker at UDP: \[127\.0\.0\.1\]:\S+: {name} = INTEGER: false\(2\): done", logged)
    assert re.search(rf"SET by a community at UDP: \[127\.0\.0\.1\]:\S+: {name} = INTEGER: true\(1\): (?!done)", logged)
    assert "private" not in logged, logged
