"""What the agent tells by itself of cards, commits and ONTs, and what its own MIB shows, by all versions of SNMP."""

import itertools
import json
import re
import subprocess

import pytest

import commands
import snmp
from programs import BUILD, MIBS, free_port, run_to_end, wait_until
from snmp import ROOT, USER, USER_LINES
from trap_receiver import TrapReceiver

SLOT = 2  # as the chassis counts
STATE, ONT_STATE = f"{ROOT}.1.1.1", f"{ROOT}.3.1.1"
AGENT = "1.3.6.1.4.1.32473.1.23"


class Receiver(TrapReceiver):
    def told(self):
        """What was told, without the system's up time: the notification's name and its variables."""
        for line in self.lines():
            if name := re.search(r"snmpTrapOID\.0 (?:TARN-AGENT-MIB::)?(\S+)", line):
                yield name.group(1), dict(re.findall(r"tarnAgentNotified(\w+)\.0 (\"[^\"]*\"|\S+)", line)), line

    def wait_for(self, name, **variables):
        wait_until(lambda: any(told == name and found == variables for told, found, _ in self.told()),
                   f"{name} {variables}")


@pytest.fixture
def receiver(tmp_path):
    port = free_port()
    trap_receiver = Receiver(tmp_path, port, ["createUser walker SHA-256 authentication AES encryption"])
    trap_receiver.port = port
    yield trap_receiver
    trap_receiver.process.terminate()
    trap_receiver.process.wait()


def sinks(receiver):
    user = " ".join(USER).replace("-v3", "-v 3")
    where = f"127.0.0.1:{receiver.port}"
    return [f"trapsink {where} public", f"trap2sink {where} public", f"informsink {where} public",
            f"trapsess -Ci {user} {where}"]


def tarnctl(system, *arguments):
    status, output = run_to_end("tarnctl", "--socket", "agent-control", *arguments, directory=system.agent.directory)
    assert status == 0, output
    return output


def test_cards_and_commits_are_told_of(start, receiver):
    system = start(cache_period=0, agent_lines=[f"trap2sink 127.0.0.1:{receiver.port} public", "tarnConfirmTime 4",
                                                "tarnControl agent-control"])
    slot = {"Slot": str(SLOT + 1)}
    system.chassis.ask("card-pull", slot=SLOT)
    receiver.wait_for("tarnAgentCardDown", **slot, Reason="noCard")
    system.chassis.ask("card-insert", slot=SLOT)
    receiver.wait_for("tarnAgentCardUp", **slot)
    channels = itertools.cycle(range(1, 9))  # a reading that failed is not tried again for a while
    for fault, reason in (("silent", "timedOut"), ("dropped", "connectionsLost")):
        system.chassis.fault(fault, slot=SLOT)
        wait_until(lambda: not tarnctl(system, "slots").count(f"slot {SLOT + 1}: up\n") or
                   system.snmp.get(f"{STATE}.6.{SLOT + 1}.{next(channels)}") is None, "the card to be left alone")
        receiver.wait_for("tarnAgentCardSilent", **slot, Reason=reason)
        system.chassis.clear_faults()
        wait_until(lambda: f"slot {SLOT + 1}: up\n" in tarnctl(system, "slots"), "the card to be back")
    receiver.wait_for("tarnAgentCardAnswering", **slot)
    tarnctl(system, "commit", SLOT + 1)
    wait_until(lambda: any(name == "tarnAgentCommitExpiring" for name, _, _ in receiver.told()), "the warning")
    told = [found for name, found, _ in receiver.told() if name == "tarnAgentCommitExpiring"]
    assert [(found["Slot"], int(found["Seconds"]) <= 2) for found in told] == [(str(SLOT + 1), True)]
    assert not any(name == "tarnAgentShutdown" for name, _, _ in receiver.told())
    assert system.agent.stop() == 0
    receiver.wait_for("tarnAgentShutdown")


def test_a_lost_ont_is_told_of_by_all_kinds_of_notification(start, receiver):
    system = start(cache_period=0, agent_lines=[*USER_LINES, *sinks(receiver)])
    codes = f"{ONT_STATE}.5.{SLOT + 1}"
    before = system.snmp.walk(codes)
    ont = next(ont for ont in system.chassis.ask("state-get", slot=SLOT, item="onts")["onts"] if ont["code"] == 7)
    system.chassis.ask("state-set", slot=SLOT, item="ont-signal", serial=ont["serial"], value=0)
    assert not [name for name, _, _ in receiver.told() if "Ont" in name], "nothing is read by itself"
    assert len(system.snmp.walk(codes)) == len(before)
    variables = {"Slot": str(SLOT + 1), "Channel": str(ont["channel"] + 1)}
    kinds = ["INFORM, SNMP v2c", "INFORM, SNMP v3", "TRAP2, SNMP v2c", "TRAP, SNMP v1"]
    # A version 1 trap has its name elsewhere.
    wait_until(lambda: all(any(kind in line and "NotifiedSerial" in line for line in receiver.lines())
                           for kind in kinds), "all kinds of notification")
    found = next(found for name, found, _ in receiver.told() if name == "tarnAgentOntLost")
    assert {key: found[key] for key in variables} == variables
    system.chassis.ask("state-set", slot=SLOT, item="ont-signal", serial=ont["serial"], value=1)
    system.chassis.ask("clock", factor=1000)
    wait_until(lambda: system.snmp.walk(codes) and any(name == "tarnAgentOntBack" for name, _, _ in receiver.told()),
               "the ONT to be back")


def test_a_burst_is_cut_and_counted(start, receiver):
    system = start(cache_period=0, agent_lines=[f"trap2sink 127.0.0.1:{receiver.port} public",
                                                "tarnMaxNotifications 1", "tarnControl agent-control"])
    for slot in (SLOT, SLOT + 1, SLOT + 2):
        system.chassis.ask("card-pull", slot=slot)

    def held_back():
        return json.loads(tarnctl(system, "--json", "stats"))["agent"]["notifications_held_back"]
    wait_until(lambda: held_back() == 2, "two to be held back")
    receiver.wait_for("tarnAgentCardDown", Slot=str(SLOT + 1), Reason="noCard")
    assert [name for name, _, _ in receiver.told() if name.startswith("tarnAgent")] == ["tarnAgentCardDown"]
    assert system.snmp.get(f"{AGENT}.1.1.13.0", f"{AGENT}.1.1.14.0") == [
        (f"{AGENT}.1.1.13.0", snmp.Value("Counter32", 1)), (f"{AGENT}.1.1.14.0", snmp.Value("Counter32", 2))]


def test_the_agents_own_mib_is_served_to_all_versions(start):
    system = start(agent_lines=[*USER_LINES, "tarnControl agent-control"])
    assert system.snmp.get(f"{STATE}.6.{SLOT + 1}.1")
    scalars = {f"{AGENT}.1.1.{number}.0" for number in range(1, 15)}
    cells = {f"{AGENT}.1.2.1.{column}.{slot}" for column in range(2, 19) for slot in range(1, 20)}
    for access in (("-v1", "-c", "public"), snmp.READ, USER):
        assert {oid for oid, _ in system.snmp.walk(f"{AGENT}.1", community=access)} == scalars | cells
    assert {oid for oid, _ in system.snmp.bulk_walk(40, f"{AGENT}.1")} == scalars | cells
    named = subprocess.run(["snmpget", "-v2c", "-c", "public", "-M", MIBS, "-m", "TARN-AGENT-MIB", "-OqsU",
                            system.snmp.target, f"TARN-AGENT-MIB::tarnAgentSlotState.{SLOT + 1}",
                            f"TARN-AGENT-MIB::tarnAgentSlotAnswered.{SLOT + 1}"],
                           env=snmp.ENVIRONMENT, capture_output=True, text=True, check=True)
    answered = sum(row["answered"] for row in json.loads(tarnctl(system, "--json", "stats"))["commands"]
                   if row["slot"] == SLOT + 1)
    assert named.stdout == (f"tarnAgentSlotState.{SLOT + 1} ok\ntarnAgentSlotAnswered.{SLOT + 1} {answered}\n")
    assert system.snmp.get(f"{AGENT}.1.2.1.2.20")[0][1].type == "exception"


def test_a_trace_shows_requests_as_they_happen(start, tmp_path):
    system = start(cache_period=0, agent_lines=["tarnControl agent-control"])
    ont = system.chassis.ask("state-get", slot=SLOT, item="onts")["onts"][0]
    output = tmp_path / "trace"
    with output.open("w") as file:
        trace = subprocess.Popen([BUILD / "bin/tarnctl", "--socket", system.agent.directory / "agent-control", "--json",
                                  "trace", str(SLOT + 1)], stdout=file)
    wait_until(lambda: '"trace"' in output.read_text(), "the trace")
    assert system.snmp.walk(f"{ONT_STATE}.6.{SLOT + 1}")
    assert system.snmp.get(f"{STATE}.6.{SLOT + 2}.1")  # another slot
    assert system.agent.stop() == 0
    assert trace.wait(60) == 0
    lines = [json.loads(line) for line in output.read_text().splitlines()][1:]
    assert {line["slot"] for line in lines} == {SLOT + 1}
    state = next(line for line in lines if line["command"] == commands.GET_ONT_STATE and line["what"] == "request")
    assert (state["name"], state["length"], state["destination"], state["release"], len(state["serial"])) == (
        "get_ont_state", 45, 8, "3.3.38.1.36", 16)
    assert ont["serial"] in {line.get("serial") for line in lines}
    answer = next(line for line in lines if line["command"] == commands.GET_ONT_STATE and line["what"] == "answer")
    assert (answer["status"], answer["length"], answer["duration_ms"] > 0) == (0, 202, True)
