"""A manager's mistakes: the right error, nothing sent to a card, nothing changed."""

import pytest

import commands
from snmp import PON_CHANNELS, ROOT, SnmpError

WRITES = {commands.RECONFIGURE_CHANNEL, commands.RESET_COUNTERS, commands.SET_CHANNEL_CONFIG,
          commands.SET_ACTIVATION_AUTH_MODE}

STATE, MODE, ADDRESS = f"{ROOT}.1.1.1", f"{ROOT}.1.2.1", f"{ROOT}.1.3.1"

WRONG_WRITES = [
    # wrong types
    (f"{STATE}.20.1.1", "i", 1, "wrongType"),
    (f"{STATE}.21.1.1", "s", "1", "wrongType"),
    (f"{STATE}.5.1.1", "u", 1, "wrongType"),
    (f"{MODE}.3.1.1", "u", 1, "wrongType"),
    # values out of range
    (f"{MODE}.3.1.1", "i", 0, "wrongValue"),
    (f"{MODE}.3.1.1", "i", 3, "wrongValue"),
    (f"{MODE}.3.1.1", "i", -1, "wrongValue"),
    # columns that are read-only, or not there
    (f"{STATE}.1.1.1", "u", 0, "notWritable"),
    (f"{STATE}.6.1.1", "s", "text", "notWritable"),
    (f"{STATE}.13.1.1", "u", 1, "notWritable"),
    (f"{MODE}.1.1.1", "u", 1, "notWritable"),
    # rows that do not exist: channel or slot out of range
    (f"{STATE}.20.1.0", "u", 1, "noCreation"),
    (f"{STATE}.20.1.9", "u", 1, "noCreation"),
    (f"{STATE}.20.0.1", "u", 1, "noCreation"),
    (f"{STATE}.20.17.1", "u", 1, "noCreation"),
    (f"{STATE}.20.4294967295.4294967295", "u", 1, "noCreation"),
    (f"{STATE}.5.1.9", "i", 1, "noCreation"),
    (f"{MODE}.3.17.1", "i", 1, "noCreation"),
    (f"{MODE}.3.257.1", "i", 1, "noCreation"),
    # indexes that are too short or too long
    (f"{STATE}.20.1", "u", 1, "noCreation"),
    (f"{STATE}.20", "u", 1, "noCreation"),
    (f"{STATE}.20.1.1.1", "u", 1, "noCreation"),
    (f"{MODE}.3.1.1.1", "i", 1, "noCreation"),
]


@pytest.mark.parametrize("oid, kind, value, reason", WRONG_WRITES)
def test_a_wrong_write_is_refused_and_sends_nothing(shared, oid, kind, value, reason):
    shared.chassis.forget_requests()
    with pytest.raises(SnmpError) as refused:
        shared.snmp.set((oid, kind, value))
    assert refused.value.reason == reason
    assert not WRITES & {request.command for request in shared.chassis.requests()}


def test_one_wrong_binding_stops_the_whole_request(shared):
    shared.chassis.forget_requests()
    before = shared.snmp.get(f"{MODE}.3.1.1", f"{STATE}.5.1.1")
    with pytest.raises(SnmpError) as refused:
        shared.snmp.set((f"{MODE}.3.1.1", "i", 2), (f"{STATE}.5.1.1", "i", 2), (f"{STATE}.20.1.9", "u", 1))
    assert refused.value.reason == "noCreation"
    assert not WRITES & {request.command for request in shared.chassis.requests()}
    assert shared.snmp.get(f"{MODE}.3.1.1", f"{STATE}.5.1.1") == before


def test_writing_needs_the_community_for_it(shared):
    shared.chassis.forget_requests()
    with pytest.raises(SnmpError) as refused:
        shared.snmp.set((f"{STATE}.20.1.1", "u", 1), community="public")
    assert refused.value.reason == "noAccess"
    assert not WRITES & {request.command for request in shared.chassis.requests()}


def test_reads_of_what_is_not_there(shared):
    object_missing = "No Such Object available on this agent at this OID"
    instance_missing = "No Such Instance currently exists at this OID"
    expected = {
        f"{STATE}.2.1.9": object_missing,
        f"{STATE}.2.17.1": instance_missing,
        f"{STATE}.2.1": instance_missing,
        f"{STATE}.2.1.1.1": instance_missing,
        f"{STATE}.13.1.1": object_missing,
        f"{STATE}.22.1.1": object_missing,
        f"{MODE}.3.1.0": instance_missing,
        f"{MODE}.4.1.1": object_missing,
        f"{ADDRESS}.4.1.1": object_missing,
        f"{ADDRESS}.4.1.1.0": object_missing,
        f"{ADDRESS}.4.1.1.60000": object_missing,
        f"{ADDRESS}.17.1.1.1": object_missing,
        f"{ROOT}.1.4.1.1.1": object_missing,
    }
    answers = {oid: value.value for oid, value in shared.snmp.get(*expected)}
    assert answers == expected


def test_a_get_next_from_odd_places_goes_to_the_next_row(shared):
    rows = [oid for oid, _ in shared.snmp.walk()]
    last_state_row = f"{STATE}.1.16.8"
    following = {
        ROOT: rows[0],
        f"{STATE}.1": f"{STATE}.1.1.1",
        f"{STATE}.1.3": f"{STATE}.1.3.1",
        f"{STATE}.1.3.4.9": f"{STATE}.1.3.5",
        f"{STATE}.1.3.4294967295": f"{STATE}.1.4.1",
        f"{STATE}.1.4294967295.1": f"{STATE}.2.1.1",
        f"{STATE}.13": f"{STATE}.20.1.1",
        last_state_row: f"{STATE}.2.1.1",
        f"{STATE}.21.16.8": f"{MODE}.3.1.1",
    }
    assert [oid for oid, _ in shared.snmp.get_next(*following)] == list(following.values())
    after, end = shared.snmp.get_next(rows[-1])[0]
    assert end.type == "exception" or not after.startswith(PON_CHANNELS + ".")
