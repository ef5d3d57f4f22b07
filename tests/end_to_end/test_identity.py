"""What every manager asks of an agent first, and what makes it the same agent after a restart."""

import pytest

from programs import PATIENCE, free_port, wait_until
from snmp import Value
from trap_receiver import TrapReceiver

SYSTEM = "1.3.6.1.2.1.1"
ENGINE_ID, ENGINE_BOOTS = "1.3.6.1.6.3.10.2.1.1.0", "1.3.6.1.6.3.10.2.1.2.0"
TARN, TARN_AGENT = ".1.3.6.1.4.1.32473.1.22", ".1.3.6.1.4.1.32473.1.22.99.1"
USER = "operator SHA-256 authentication AES encryption"
SESSION = "-v3 -l authPriv -u operator -a SHA-256 -A authentication -x AES -X encryption"


def test_the_system_group(start):
    system = start(agent_lines=["sysName olt-7", "sysLocation shelf 3", "sysServices 74"])
    values = dict(system.snmp.get(*(f"{SYSTEM}.{leaf}.0" for leaf in (1, 2, 5, 6, 7))))
    assert values[f"{SYSTEM}.1.0"].value.startswith(b"Tarn ")
    assert [values[f"{SYSTEM}.{leaf}.0"].value for leaf in (2, 5, 6, 7)] == [TARN_AGENT, b"olt-7", b"shelf 3", 74]
    assert Value("OID", TARN) in [value for _, value in system.snmp.walk(f"{SYSTEM}.9.1.2")]
    # The snmp group, the engine, the statistics of users, the access control model.
    for group in ("1.3.6.1.2.1.11", "1.3.6.1.6.3.10.2", "1.3.6.1.6.3.15.1.1", "1.3.6.1.6.3.16.1.4"):
        assert system.snmp.walk(group), group


def test_the_engine_outlives_restarts(start, tmp_path):
    state = tmp_path / "state"
    state.mkdir()
    lines = [f"tarnState {state}", f"createUser {USER}"]
    system = start(agent_lines=lines)

    def engine():
        identity, boots = (value.value for _, value in system.snmp.get(ENGINE_ID, ENGINE_BOOTS))
        return identity, boots

    identity, boots = engine()
    port = free_port()
    # A trap's user is known under the agent's engine, an inform's under the receiver's. The receiver refuses
    # both when the agent comes back with another engine, or with boots that it has seen pass.
    receiver = TrapReceiver(tmp_path, port, [f"createUser -e 0x{identity.hex()} {USER}", f"createUser {USER}"])
    try:
        for restart in (1, 2):
            system.restart_agent([*lines, f"trapsess {SESSION} 127.0.0.1:{port}",
                                  f"trapsess -Ci {SESSION} 127.0.0.1:{port}"])
            assert engine() == (identity, boots + restart)
            for kind in ("TRAP2", "INFORM"):
                wait_until(lambda: sum(line.startswith(kind) and "coldStart" in line
                                       for line in receiver.lines()) == restart, f"{kind} {restart}")
    finally:
        receiver.process.terminate()
        receiver.process.wait(PATIENCE)


@pytest.mark.parametrize("directory", ["none", "agent.conf"])
def test_a_state_directory_that_cannot_be(tmp_path, directory):
    from test_configuration import run_agent
    status, output = run_agent(tmp_path, [f"tarnState {tmp_path / directory}"])
    assert status == 1
    assert "agent.conf: line 3: " in output and "tarnState" in output
