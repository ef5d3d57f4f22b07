"""The commit commands: tarnctl, the agent's control socket, the module, and what the chassis makes of it."""

import json
import stat

import pytest

from chassis import scenario
from programs import run_to_end, wait_until

CONTROL = "agent-control"
SLOT = 5
CARD = SLOT - 1


def started(start, confirm_time=600):
    return start(scenario="confirm_seconds: 60\n" + scenario(),
                 agent_lines=[f"tarnControl {CONTROL}", f"tarnConfirmTime {confirm_time}"])


@pytest.fixture
def system(start):
    return started(start)


def tarnctl(system, *arguments):
    return run_to_end("tarnctl", "--socket", CONTROL, "--chassis-socket", system.chassis.CONTROL, *arguments,
                      directory=system.agent.directory)


def state(system, slot=CARD):
    return system.chassis.ask("state-get", slot=slot, item="config")


def edit(system, tables, name):
    table = tables["tarnSwitchVLANTable"]
    system.snmp.get(table.instance(3, SLOT, 1))
    system.snmp.set((table.instance(3, SLOT, 1), "s", name))


def shown(system, tables):
    return system.snmp.get(tables["tarnSwitchVLANTable"].instance(3, SLOT, 1))[0][1].value


def names(system):
    vlans = system.chassis.ask("state-get", slot=CARD, item="vlans")
    return [bytes.fromhex(vlans[kind]["1"])[:32].split(b"\0")[0].decode() for kind in ("working", "running")]


def test_every_command_of_a_slot_reaches_its_card(system, tables):
    edit(system, tables, "first")
    assert names(system) == ["first", "default"]
    assert tarnctl(system, "commit", SLOT) == (0, f"slot {SLOT}: done\n")
    assert names(system) == ["first", "first"]
    assert "confirm_within_ms" in state(system)
    assert tarnctl(system, "confirm", SLOT) == (0, f"slot {SLOT}: done\n")
    assert "confirm_within_ms" not in state(system)
    assert tarnctl(system, "save", SLOT)[0] == 0
    assert state(system)["saved"]

    edit(system, tables, "second")
    assert tarnctl(system, "commit", SLOT)[0] == 0
    assert tarnctl(system, "--yes", "rollback", SLOT)[0] == 0
    assert names(system) == ["first", "first"]
    # The agent does not go on showing what was taken back.
    assert shown(system, tables) == b"first"
    assert tarnctl(system, "--yes", "default", SLOT)[0] == 0
    assert names(system) == ["default", "first"]
    assert tarnctl(system, "reread", SLOT)[0] == 0
    assert tarnctl(system, "--yes", "reload", SLOT)[0] == 0
    assert names(system) == ["first", "first"]
    counts = state(system)
    assert {key: counts[key] for key in ("commits", "confirmations", "roll_backs", "saves", "defaults", "rereads",
                                         "reloads")} == {
        "commits": 2, "confirmations": 1, "roll_backs": 1, "saves": 1, "defaults": 1, "rereads": 1, "reloads": 1}
    assert state(system, slot=0)["commits"] == 0


@pytest.mark.parametrize("confirm_time, reread", [(1, False), (600, True)])
def test_a_commit_that_nobody_confirms_is_taken_back(start, tables, confirm_time, reread):
    system = started(start, confirm_time)
    edit(system, tables, "first")
    assert tarnctl(system, "commit", SLOT)[0] == 0
    assert names(system) == ["first", "first"]
    # Its minute passes in no time.
    assert tarnctl(system, "chassis", "clock", 1000)[0] == 0
    wait_until(lambda: names(system) == ["default", "default"], "the commit to be taken back")
    assert state(system)["roll_backs"] == 1
    if reread:
        assert tarnctl(system, "reread", SLOT)[0] == 0
        assert shown(system, tables) == b"default"
    wait_until(lambda: shown(system, tables) == b"default", "the agent to read the card again")


def test_the_first_set_after_a_rollback_can_destroy_a_vlan(system, tables):
    assert tarnctl(system, "--yes", "rollback", SLOT)[0] == 0
    system.snmp.set((tables["tarnSwitchVLANTable"].instance(6, SLOT, 1), "i", 6))
    assert "1" not in system.chassis.ask("state-get", slot=CARD, item="vlans")["working"]


def test_profiles_that_were_rolled_back_are_read_again(system, tables):
    table = tables["tarnONTCrossConnectProfileTable"]
    name, value = table.instance(3, 1), table.instance(9, 1)
    before = system.snmp.get(name)
    for command in ("rollback", "default"):
        system.snmp.set((name, "s", "edited"))
        assert tarnctl(system, "--yes", "profiles", command) == (0, "done\n")
        # What is written next goes into the profile that the chassis has.
        system.snmp.set((value, "i", 7))
        assert system.snmp.get(name) == before, command


def test_the_profiles_are_told_in_turn(system):
    for command, count in (("commit", "commits"), ("confirm", "confirmations"), ("rollback", "roll_backs"),
                           ("default", "defaults")):
        assert tarnctl(system, "--yes", "profiles", command) == (0, "done\n")
        assert [state(system, slot)[count] for slot in (16, 17, 18)] == [1, 1, 1], command
    system.chassis.fault("silent", slot=17)
    status, output = tarnctl(system, "profiles", "commit")
    assert (status, output) == (1, "failed: no answer (-1)\n")
    system.chassis.clear_faults()
    assert [state(system, slot)["commits"] for slot in (16, 17, 18)] == [2, 1, 1]


def test_the_alarms_are_listed_and_set(system):
    def alarms():
        status, output = tarnctl(system, "--json", "alarms", "list")
        assert status == 0, output
        return json.loads(output)["alarms"]

    before = alarms()
    assert [alarm["entry"] for alarm in before] == list(range(46))
    system.chassis.forget_requests()
    assert tarnctl(system, "alarms", "set", 45, 65535, 7) == (0, "done\n")
    # Entry 45 goes to every slot, then to the chassis.
    written = [(request.slot, request.payload[:4], request.payload[13:17])
               for request in system.chassis.requests(command=403)]
    assert written == [(slot, bytes([45, 0, 0, 0]), b"\xff\xff\7\0") for slot in (*range(16), 18)]
    assert alarms() == before[:45] + [before[45] | {"first": 65535, "second": 7}]
    for arguments in ((46, 1, 1), (1, 65536, 1), (1, 1)):
        assert tarnctl(system, "alarms", "set", *arguments)[0] == 2
    system.chassis.fault("silent", slot=18)
    assert tarnctl(system, "alarms", "set", 1, 1, 1)[0] == 1


def test_what_fails_is_said_for_each_slot(system):
    system.chassis.ask("card-pull", slot=1)
    system.chassis.fault("status", slot=2, command=406, status=5)
    status, output = tarnctl(system, "commit", "1-3")
    assert status == 1
    assert output in ("slot 1: done\nslot 2: failed: not up\nslot 3: failed: no answer (-1)\n",
                      # The agent has not noticed yet that the card is gone.
                      "slot 1: done\nslot 2: failed: no answer (-1)\nslot 3: failed: no answer (-1)\n")
    status, output = tarnctl(system, "--json", "reload", "--help")
    assert status == 0
    status, output = tarnctl(system, "--json", "--yes", "reload", "3,1")
    assert (status, json.loads(output)) == (0, {"results": [{"slot": 1, "result": 0}, {"slot": 3, "result": 0}]})


def test_destruction_needs_a_yes(system):
    for arguments in (("rollback", "all"), ("default", 3), ("reload", 3), ("profiles", "rollback"),
                      ("profiles", "default")):
        status, output = tarnctl(system, *arguments)
        assert status == 1 and "say --yes" in output, arguments
    assert not system.chassis.requests()
    assert tarnctl(system, "--yes", "rollback", "all")[0] == 0
    assert len(system.chassis.requests()) == 16


def test_the_command_line_is_checked(system):
    for arguments in ((), ("commit",), ("commit", "0"), ("commit", "17"), ("commit", "3-1"), ("commit", "x"),
                      ("profiles",), ("profiles", "save"), ("nonsense",), ("chassis",), ("chassis", "request", "[]"),
                      ("chassis", "pull", "profiles"), ("chassis", "ont", "down", "1"),
                      ("chassis", "ont", "down", "1", "short")):
        status, output = tarnctl(system, *arguments)
        assert status == 2, (arguments, output)
        assert output
    assert not system.chassis.requests()


def test_slots_and_the_chassis(system):
    status, output = tarnctl(system, "slots")
    assert status == 0 and output.splitlines() == [f"slot {slot}: up" for slot in range(1, 17)]
    status, output = tarnctl(system, "--json", "chassis", "request", '{"do":"version"}')
    assert status == 0 and json.loads(output)["program"] == "tarn-chassisd"
    assert tarnctl(system, "chassis", "request", '{"do":"nonsense"}')[0] == 1


def test_the_chassis_is_seen_and_changed(system):
    def chassis(*arguments, expected=0):
        status, output = tarnctl(system, "--json", "--yes", "chassis", *arguments)
        assert status == expected, output
        return json.loads(output)

    def ont(key):
        return chassis("ont", "show", SLOT, serial)[key]

    assert [card["slot"] for card in chassis("cards")["cards"]] == list(range(1, 17))
    serial = next(each["serial"] for each in chassis("ont", "list", SLOT)["onts"] if each["code"] == 7)
    chassis("ont", "power", SLOT, serial, "-24.3")
    chassis("ont", "down", SLOT, serial)
    assert ont("code") == 11
    chassis("ont", "up", SLOT, serial)
    assert ont("code") == 3
    # The clock stands still in this scenario; in a minute or less of chassis time the ONT is back.
    chassis("clock", "1000")
    wait_until(lambda: ont("code") == 7, "the ONT to register")
    assert chassis("clock", "0")["factor"] == 0
    assert len(chassis("ont", "record", SLOT, serial)["hex"]) == 2 * 2122

    assert chassis("fault", "add", "status", "--status", 5, "--slot", SLOT, "--times", 1) == {"id": 1}
    assert [(fault["slot"], fault["kind"]) for fault in chassis("fault", "list")["faults"]] == [(SLOT, "status")]
    assert tarnctl(system, "confirm", SLOT)[0] == 1
    assert tarnctl(system, "confirm", SLOT)[0] == 0
    logged = chassis("log", "show", "--slot", SLOT, "--command", 421)["requests"]
    assert [request["status"] for request in logged] == [5, 0]
    assert chassis("log", "count", "--command", 421) == {
        "counts": [{"slot": SLOT, "command": 421, "count": 2}], "total": 2}
    chassis("fault", "clear", "7", expected=1)
    chassis("pull", SLOT)
    assert [card["slot"] for card in chassis("cards")["cards"]] == [n for n in range(1, 17) if n != SLOT]
    assert tarnctl(system, "chassis", "pull", SLOT) == (1, "failed: no card in the slot\n")
    chassis("insert", SLOT)
    assert chassis("config", "network")["commits"] == 0
    assert tarnctl(system, "chassis", "shutdown")[0] == 1


def test_the_socket_is_the_users_alone_and_goes_with_the_agent(system):
    path = system.agent.directory / CONTROL
    assert stat.S_IMODE(path.stat().st_mode) == 0o600
    assert system.agent.stop() == 0
    assert not path.exists()
    status, output = tarnctl(system, "slots")
    assert (status, output) == (1, f"tarnctl: {CONTROL}: No such file or directory\n")
