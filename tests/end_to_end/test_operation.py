"""What an operator does with a running agent: signals, its log, its user."""

import os
import pwd
import re
import signal
from pathlib import Path

import pytest

from programs import wait_until
from snmp import Client, SnmpError

SYSTEM_NAME = "1.3.6.1.2.1.1.5.0"


def answers(system, community):
    try:
        return Client(system.agent.port, timeout=1).get(SYSTEM_NAME, community=community)
    except SnmpError:
        return None


def rewrite(system, *changes):
    path = system.agent.directory / "agent.conf"
    text = path.read_text()
    for old, new in changes:
        assert old in text
        text = text.replace(old, new)
    path.write_text(text)


def test_a_hangup_reopens_the_log_and_reads_the_configuration_again(start):
    system = start(agent_lines=["tarnLog file agent.log"])
    log = system.agent.directory / "agent.log"
    for ignored in (signal.SIGUSR1, signal.SIGUSR2):
        system.agent.process.send_signal(ignored)
    assert system.snmp.get(SYSTEM_NAME)

    log.rename(log.with_suffix(".old"))
    rewrite(system, ("rocommunity public", "rocommunity changed"), ("tarnCachePeriod 600", "tarnCachePeriod 0"))
    system.agent.process.send_signal(signal.SIGHUP)
    wait_until(lambda: log.exists() and "the configuration is read again" in log.read_text(), "the new log")
    wait_until(lambda: answers(system, "changed"), "an answer")
    assert not answers(system, "public")

    # A mistake is said, and the agent goes on.
    rewrite(system, ("tarnCachePeriod 0", "tarnNonsense 0"))
    system.agent.process.send_signal(signal.SIGHUP)
    wait_until(lambda: "tarnNonsense" in log.read_text(), "the mistake")
    wait_until(lambda: answers(system, "changed"), "an answer")
    assert re.search(r"error: the agent's own settings stay as they were: mistakes in the configuration: 1$",
                     log.read_text(), re.M)


@pytest.mark.skipif(os.geteuid() != 0, reason="only root can become somebody else")
def test_the_agent_becomes_the_user_that_it_is_told(start):
    nobody = pwd.getpwnam("nobody")
    system = start(agent_lines=["agentuser nobody", "agentgroup nogroup", "tarnControl control-of-agent",
                                "tarnLog file agent.log"])
    status = Path(f"/proc/{system.agent.process.pid}/status").read_text()
    ids = {key: set(values.split()) for key, values in re.findall(r"^(Uid|Gid|Groups):(.*)$", status, re.M)}
    assert ids == {"Uid": {str(nobody.pw_uid)}, "Gid": {str(nobody.pw_gid)}, "Groups": {str(nobody.pw_gid)}}
    for name in ("control-of-agent", "agent.log"):
        assert (system.agent.directory / name).stat().st_uid == nobody.pw_uid
    assert system.snmp.get(SYSTEM_NAME)
