"""TARN-MIB for its readers: a checker, the tools' parser, and values shown by it."""

import os
import subprocess

import pytest

import snmp
from programs import MIBS, SOURCE


@pytest.mark.parametrize("name", ["TARN-MIB", "TARN-AGENT-MIB"])
def test_smilint_finds_nothing(tmp_path, name):
    # Without the machine's own configuration and modules.
    configuration = tmp_path / "smi.conf"
    configuration.write_text(f"path {SOURCE}/mibs/base:{SOURCE}/mibs\n")
    checked = subprocess.run(["smilint", "-c", configuration, "-m", "-s", "-l", "6", SOURCE / f"mibs/{name}.txt"],
                             env=dict(os.environ, SMIPATH=f"{SOURCE}/mibs/base:{SOURCE}/mibs"), capture_output=True, text=True,
                             check=True)
    # It exits with 0 whatever it finds.
    assert checked.stdout + checked.stderr == ""


def test_the_base_definitions_suffice(tables):
    # Without the machine's own MIBs: the tools have only ours.
    named = subprocess.run(["snmptranslate", "-M", MIBS, "-m", "ALL", "-On",
                            "TARN-MIB::tarnPONChannelAddressMacAddress.3.8.65535"],
                           env=snmp.ENVIRONMENT, capture_output=True, text=True, check=True)
    assert (named.stdout, named.stderr) == (".1.3.6.1.4.1.32473.1.22.1.3.1.9.3.8.65535\n", "")
    assert tables["tarnPONChannelAddressTable"].index == [
        "tarnSlotIndex", "tarnChannelIndex", "tarnPONChannelAddressEntryNumber"]
    for table in tables.values():
        assert table.index and table.columns, table.name


def test_values_are_shown_by_name(shared):
    shown = subprocess.run(["snmpget", "-v2c", "-c", "public", "-M", MIBS, "-m", "TARN-MIB", shared.snmp.target,
                            "TARN-MIB::tarnPONChannelActModeAuth.16.8",
                            "TARN-MIB::tarnPONChannelStateChannel.16.8"],
                           env=snmp.ENVIRONMENT, capture_output=True, text=True, check=True)
    assert shown.stdout == ("TARN-MIB::tarnPONChannelActModeAuth.16.8 = INTEGER: true(1)\n"
                            "TARN-MIB::tarnPONChannelStateChannel.16.8 = Gauge32: 7\n")


def test_a_mib_that_is_not_the_modules_is_told_at_start(start, tmp_path):
    system = start()
    assert not system.agent.log_lines("the MIB is not the module's")
    text = (SOURCE / "mibs/TARN-MIB.txt").read_text()
    column = "::= { tarnPONChannelActModeEntry 3 }"
    assert column in text
    (tmp_path / "TARN-MIB.txt").write_text(text.replace(column, column.replace("3", "7")))
    system.restart_agent([], mibs=f"{SOURCE}/mibs/base:{tmp_path}")
    told = system.agent.log_lines("the MIB is not the module's")
    assert len(told) == 1 and told[0].endswith(
        "tarnPONChannelActModeTable: the MIB is not the module's: column 3 is not in the MIB"), told
