"""Files and options that are wrong: the file, the line, what is wrong, exit status 1."""

import os

import pytest

from programs import MIBS, MODULE, free_port, run_to_end

GOOD_AGENT = ["agentAddress udp:127.0.0.1:{port}", "rocommunity public 127.0.0.1"]


def run_chassis(directory, scenario):
    (directory / "scenario.yaml").write_text(scenario)
    return run_to_end("tarn-chassisd", "--socket", "chassis.socket", "--scenario", "scenario.yaml",
                      directory=directory)


def run_agent(directory, lines, module=MODULE, mibs=MIBS):
    text = "\n".join([*GOOD_AGENT, *lines, ""]).format(port=free_port())
    (directory / "agent.conf").write_text(text)
    return run_agent_with(directory, "agent.conf", module, mibs)


def run_agent_with(directory, configuration, module=MODULE, mibs=MIBS):
    return run_to_end("tarn-agentd", "--foreground", "--config", configuration, "--module", module, "--mibs", mibs,
                      "--chassis", "unix:chassis.socket", directory=directory)


@pytest.mark.parametrize("scenario, line, what", [
    ("seed: 1\ncolour: red\n", 2, "colour"),
    ("seed: 1\ncards:\n  - slots: [0, 16]\n", 3, "slots"),
    ("seed: 1\ncards:\n  - slots: [0]\n    onts: 1025\n", 4, "onts"),
    ("seed: 1\ncards:\n  - slots: [0]\n  - slots: [0]\n", 4, "slot 0"),
    ("faults:\n  - kind: sleepy\n", 2, "sleepy"),
    ("seed: [1\n", 2, ""),
])
def test_a_wrong_scenario(tmp_path, scenario, line, what):
    status, output = run_chassis(tmp_path, scenario)
    assert status == 1
    assert f"scenario.yaml:{line}:" in output and what in output


def test_a_missing_scenario(tmp_path):
    status, output = run_to_end("tarn-chassisd", "--socket", "chassis.socket", "--scenario", "none.yaml",
                                directory=tmp_path)
    assert (status, "none.yaml" in output) == (1, True)


@pytest.mark.parametrize("directive, what", [
    ("tarnCachePeriod soon", "tarnCachePeriod"),
    ("tarnSlots 17", "tarnSlots"),
    ("tarnSlots 3-x", "tarnSlots"),
    ("tarnSilentHold -1", "tarnSilentHold"),
    ("tarnChassis carrier-pigeon:1", "tarnChassis"),
    ("tarnNonsense 1", "tarnNonsense"),
])
def test_a_wrong_agent_configuration(tmp_path, directive, what):
    status, output = run_agent(tmp_path, [directive])
    assert status == 1
    *_, reason, last = output.splitlines()
    assert "agent.conf: line 3: " in reason and what in reason
    assert last.endswith(" error: not started: mistakes in the configuration: 1")


def test_an_agent_that_would_listen_where_nobody_said(tmp_path):
    (tmp_path / "empty.conf").write_text("rocommunity public 127.0.0.1\n")
    os.mkfifo(tmp_path / "fifo.conf")
    for configuration, last in [
            (".", " error: .: not a file that can be read"),
            ("fifo.conf", " error: fifo.conf: not a file that can be read"),
            ("none.conf", " error: none.conf: not a file that can be read"),
            ("empty.conf", " error: not started: no agentAddress is given")]:
        status, output = run_agent_with(tmp_path, configuration)
        assert (status, output.splitlines()[-1].endswith(last)) == (1, True), output


def test_a_module_or_mib_that_is_not_there(tmp_path):
    for keys in ({"module": tmp_path / "none.so"}, {"mibs": tmp_path / "none"}):
        status, output = run_agent(tmp_path, [], **keys)
        assert status == 1
        assert "none" in output


def test_versions():
    for name in ("tarn-agentd", "tarn-chassisd"):
        status, output = run_to_end(name, "--version", directory="/")
        assert status == 0 and output.startswith(name)
