"""Firmware end to end: catalogue, downloads over real TFTP, updates over OMCI, schedules, rules, scalars."""

import os
import shutil
import subprocess
import time
import zlib
from pathlib import Path

import pytest

import snmp
from firmware import FIRMWARE, Site, make_image
from programs import PATIENCE, run_to_end, wait_until

OCTETS, UNSIGNED, INTEGER, HEX = "s", "u", "i", "x"
FILES, SPECIFICS, PRIORITY, OMCI = f"{FIRMWARE}.1.1", f"{FIRMWARE}.2.1", f"{FIRMWARE}.8.0", f"{FIRMWARE}.11"
SCHEDULE, RULES, ENABLED = f"{FIRMWARE}.12.1", f"{FIRMWARE}.20.1", f"{FIRMWARE}.23.0"
DISABLE = f"{snmp.ROOT}.3.30000"
ROW_STATUS, CREATE_AND_GO, DESTROY = 10, 4, 6

pytestmark = pytest.mark.skipif(os.geteuid() != 0, reason="in.tftpd changes its root directory")


def index(text):
    return f"{len(text)}." + ".".join(str(byte) for byte in text.encode())


@pytest.fixture
def site():
    place = Site()
    yield place
    place.close()


@pytest.fixture
def system(site, start):
    return start(agent_lines=[*site.agent_lines(), "tarnControl agent-control"], cache_period=0)


def text(client, oid):
    return client.get(oid)[0][1].value


def column(client, table, number):
    return [value.value for _, value in client.walk(f"{table}.{number}")]


def download(system, path, server="127.0.0.1"):
    return run_to_end("tarnctl", "--socket", "agent-control", "firmware", "download", server, path,
                      directory=system.agent.directory)


def left_in_tmp(name):
    return Path("/tmp", name).exists()


# ---- Downloads ----

def test_a_download_ends_in_the_catalogue_and_in_a_notification(site, system):
    name = f"{site.root.name}.img"
    image = make_image(site.served, name, payload=bytes(range(256)) * 7000)
    site.start_tftp_server()
    site.start_trap_receiver()
    status, output = download(system, name)
    assert status == 0, output
    assert site.wait_for_traps(1) == [("success", f'"{name} 127.0.0.1"')]
    assert (site.images / name).read_bytes() == image
    assert not left_in_tmp(name)
    assert site.commands() == [f"tftp -gr {name} 127.0.0.1", f"chown admin {site.images}//{name}"]
    assert column(system.snmp, FILES, 2) == [name.encode()]
    assert column(system.snmp, FILES, 3) == [b"3.38.1.36"]
    assert column(system.snmp, FILES, 4) == [b"ONT firmware"]


def test_a_download_is_announced_by_traps_and_informs(site, start):
    site.start_tftp_server()
    site.start_trap_receiver()
    user = " ".join(snmp.USER).replace("-v3", "-v 3")
    system = start(agent_lines=[*site.agent_lines(), "tarnControl agent-control",
                                f"informsink 127.0.0.1:{site.trap_port} public",
                                f"trapsess -Ci {user} 127.0.0.1:{site.trap_port}"])
    assert download(system, "none.img")[0] == 0
    site.wait_for_traps(3)
    kinds = ["INFORM, SNMP v2c, community public", "INFORM, SNMP v3, user walker, context ",
             "TRAP2, SNMP v2c, community public"]
    assert sorted(site.notifications()) == [(kind, "failure", '"none.img 127.0.0.1"') for kind in kinds]


def test_every_failed_download_is_reported_and_leaves_nothing(site, system):
    name = f"{site.root.name}.img"
    site.start_trap_receiver()
    expected = [("failure", f'"{name} 127.0.0.1"')]
    # No server.
    assert download(system, name)[0] == 0
    assert site.wait_for_traps(1) == expected
    # No such file.
    site.start_tftp_server()
    assert download(system, name)[0] == 0
    assert site.wait_for_traps(2) == expected * 2
    # The move fails.
    make_image(site.served, name)
    site.stand_in("mv", "exit 1")
    assert download(system, name)[0] == 0
    assert site.wait_for_traps(3) == expected * 3
    # What names no image is not even asked for.
    before = site.commands()
    assert download(system, "images/")[0] == 0
    assert site.wait_for_traps(4)[3] == ("failure", '"images/ 127.0.0.1"')
    assert site.commands() == before
    assert not left_in_tmp(name) and not list(site.images.iterdir())
    log = system.agent.log()
    assert "acs_firmware_download_thread_proc : tftp result = 256" in log
    assert "acs_firmware_download_thread_proc : unable to move firmware" in log
    assert "acs_firmware_download_thread_proc : unable to determine filename" in log


def test_one_download_at_a_time_and_a_stop_ends_it(site, system):
    gate = site.root / "gate"
    site.stand_in("tftp", f'until test -e {gate}; do sleep 0.1; done; echo image >"${{2##*/}}"')
    name = f"{site.root.name}.img"
    assert download(system, name)[0] == 0
    status, output = download(system, name)
    assert status == 1 and "a download is running" in output
    status, output = run_to_end("tarnctl", "--socket", "agent-control", "firmware", "state",
                                directory=system.agent.directory)
    assert (status, output) == (0, "download: running\n")
    for bad in ([name, "not-an-address"], ["x" * 256], [""]):
        assert download(system, *bad)[0] == 1
    assert system.snmp.get(f"{DISABLE}.1.0")  # the agent goes on
    began = time.monotonic()
    assert system.agent.stop() == 0
    assert time.monotonic() - began < PATIENCE / 2
    gate.touch()
    assert "tftp result = 15" in system.agent.log()
    assert not left_in_tmp(name)


# ---- Catalogue ----

def test_images_and_their_parameter_files(site, system):
    make_image(site.images, "a.img", version="1.2.3", description="first\nsecond")
    (site.images / "plain").write_bytes(b"no header")
    os.mkfifo(site.images / "pipe")
    client = system.snmp
    names = column(client, FILES, 2)
    assert sorted(names) == [b"a.img", b"pipe", b"plain"]
    row = names.index(b"a.img") + 1
    assert text(client, f"{FILES}.3.{row}") == b"1.2.3"
    assert text(client, f"{FILES}.4.{row}") == b"first second"

    image = index("a.img")
    client.set((f"{SPECIFICS}.{ROW_STATUS}.{image}", INTEGER, CREATE_AND_GO))
    assert column(client, SPECIFICS, 1) == [b"a.img"]
    client.set((f"{SPECIFICS}.2.{image}", OCTETS, "1.0"), (f"{SPECIFICS}.3.{image}", OCTETS, "EQ-1,EQ-2"),
               (f"{SPECIFICS}.4.{image}", OCTETS, "ACME"))
    digest = subprocess.run(["md5sum", site.images / "a.img"], capture_output=True, text=True, check=True).stdout[:32]
    assert (site.images / "a.img.spec").read_text() == (
        f"VENDOR=ACME\nEQUIPMENT_LIST=EQ-1,EQ-2\nSOFTWARE_VERSION=1.0\nMD5_SUM={digest}\n")
    assert [text(client, f"{SPECIFICS}.{number}.{image}") for number in (2, 3, 4)] == [b"1.0", b"EQ-1,EQ-2", b"ACME"]
    for oid, letter, value, reason in (
            (f"{SPECIFICS}.2.{image}", HEX, "310a4d44353d30", "wrongValue"),
            (f"{SPECIFICS}.4.{image}", OCTETS, "ABC", "wrongLength"),
            (f"{SPECIFICS}.{ROW_STATUS}.{index('../a.img')}", INTEGER, CREATE_AND_GO, "genError"),
            (f"{SPECIFICS}.{ROW_STATUS}.{index('missing')}", INTEGER, CREATE_AND_GO, "genError")):
        with pytest.raises(snmp.SnmpError) as refused:
            client.set((oid, letter, value))
        assert refused.value.reason == reason
    client.set((f"{SPECIFICS}.{ROW_STATUS}.{image}", INTEGER, DESTROY))
    assert not (site.images / "a.img.spec").exists()
    assert column(client, SPECIFICS, 1) == []

    client.set((f"{FILES}.10.{column(client, FILES, 2).index(b'a.img') + 1}", UNSIGNED, 1))
    assert sorted(column(client, FILES, 2)) == [b"pipe", b"plain"]


def test_a_directory_of_seventy_images_shows_sixty_four(site, system):
    for number in range(70):
        (site.images / f"image{number}").write_bytes(b"")
    assert len(column(system.snmp, FILES, 2)) == 64
    shutil.rmtree(site.images)
    assert len(column(system.snmp, FILES, 2)) == 64  # the last listing stays


def test_the_version_priority_file(site, system):
    system.snmp.set((PRIORITY, OCTETS, "first"))
    assert (site.images / "versions-prio.txt").read_text() == "first\n"
    assert text(system.snmp, PRIORITY) == b"first\n"
    assert site.commands() == ["sudo mount /dev/mtdblock6 /mnt/ext/ -o remount,ro,exec,noatime"]


# ---- Rules ----

PARSE_RULES = 310

def test_rules_of_automatic_updates(site, system):
    path = site.config / "ont_auto_update_entries.txt"
    head = "\nDescription  EquipmentID  FWVersion  FileName\n\n"
    client = system.snmp
    rule = index("lab")
    client.set((f"{RULES}.2.{rule}", OCTETS, "EQ"), (f"{RULES}.3.{rule}", OCTETS, "1.0"),
               (f"{RULES}.4.{rule}", OCTETS, "a.img"), (f"{RULES}.5.{rule}", INTEGER, 1),
               (f"{RULES}.{ROW_STATUS}.{rule}", INTEGER, CREATE_AND_GO))
    written = f"{head}lab|EQ|1.0|a.img|immediate\n"
    assert path.read_text() == written
    assert [text(client, f"{RULES}.{number}.{rule}") for number in (2, 3, 4, 5)] == [b"EQ", b"1.0", b"a.img", 1]
    for oid, letter, value, reason in (
            (f"{RULES}.2.{index('x')}", OCTETS, "a|b", "wrongValue"),
            (f"{RULES}.{ROW_STATUS}.{rule}", INTEGER, CREATE_AND_GO, "inconsistentName"),
            (f"{RULES}.{ROW_STATUS}.{index('bare')}", INTEGER, CREATE_AND_GO, "inconsistentValue"),
            (f"{RULES}.{ROW_STATUS}.{index('a|b')}", INTEGER, CREATE_AND_GO, "inconsistentName")):
        with pytest.raises(snmp.SnmpError) as refused:
            client.set((oid, letter, value))
        assert refused.value.reason == reason
    assert path.read_text() == written
    client.set((f"{RULES}.{ROW_STATUS}.{rule}", INTEGER, DESTROY))
    assert path.read_text() == head
    assert column(client, RULES, 2) == []

    assert text(client, ENABLED) == 0
    client.set((ENABLED, INTEGER, 2))
    assert (site.config / "ont_auto_update_set.txt").read_text() == "2\n"
    # Each SET above that was carried out, the last one too, has the card read the rules.
    wait_until(lambda: system.chassis.requests(slot=0, command=PARSE_RULES), "the card to read the rules")
    system.chassis.forget_requests()
    client.set((ENABLED, INTEGER, 1))
    wait_until(lambda: system.chassis.requests(slot=0, command=PARSE_RULES), "the card to read them again")
    client.set((ENABLED, INTEGER, 2))
    assert text(client, ENABLED) == 2


# ---- What cards do ----

def first_ont(system, slot):
    return system.chassis.ask("state-get", slot=slot, item="onts")["onts"][0]


def test_an_ont_is_disabled_and_enabled(system):
    ont = first_ont(system, 2)
    system.snmp.set((f"{DISABLE}.1.0", UNSIGNED, 3), (f"{DISABLE}.2.0", HEX, ont["serial"]),
                    (f"{DISABLE}.3.0", UNSIGNED, ont["channel"]), (f"{DISABLE}.4.0", UNSIGNED, 1))
    assert not first_ont(system, 2)["enabled"]
    system.snmp.set((f"{DISABLE}.5.0", UNSIGNED, 1))
    assert first_ont(system, 2)["enabled"]
    for oid, value, reason in ((f"{DISABLE}.1.0", 0, "wrongValue"), (f"{DISABLE}.3.0", 8, "wrongValue")):
        with pytest.raises(snmp.SnmpError):
            system.snmp.set((oid, UNSIGNED, value))


def test_updates_are_scheduled_and_cancelled(system):
    ont = first_ont(system, 2)
    client = system.snmp
    new = f"{SCHEDULE}.{{}}.3.77"
    client.set((new.format(ROW_STATUS), INTEGER, CREATE_AND_GO), (new.format(3), HEX, ont["serial"]),
               (new.format(5), OCTETS, "a.img"))
    rows = client.walk(f"{SCHEDULE}.5")
    assert [value.value for _, value in rows] == [b"a.img"]
    task = rows[0][0].split(".")[-1]
    assert text(client, f"{SCHEDULE}.3.3.{task}").hex() == ont["serial"]
    assert text(client, f"{SCHEDULE}.9.3.{task}") == 1
    with pytest.raises(snmp.SnmpError) as refused:
        client.set((new.format(ROW_STATUS), INTEGER, CREATE_AND_GO), (new.format(5), OCTETS, "a.img"))
    assert refused.value.reason == "commitFailed"
    client.set((f"{SCHEDULE}.{ROW_STATUS}.3.{task}", INTEGER, DESTROY))
    assert client.walk(f"{SCHEDULE}.5") == []


def test_a_card_updates_itself(system):
    system.snmp.set((f"{snmp.ROOT}.2.30.1.2.3", UNSIGNED, 1))
    system.snmp.set((f"{snmp.ROOT}.3.31.1.2.3", UNSIGNED, 1))
    assert system.chassis.ask("state-get", slot=2, item="firmware")["card_updates"] == 1


def test_an_update_over_omci_announces_size_and_crc(site, system):
    configured = configured_ont(system, 2)
    image = make_image(site.images, "a.img")
    client = system.snmp
    client.set((f"{OMCI}.1.0", UNSIGNED, 3), (f"{OMCI}.2.0", HEX, configured["serial"]),
               (f"{OMCI}.3.0", OCTETS, "a.img"))
    client.set((f"{OMCI}.4.0", UNSIGNED, 1))
    payload = system.chassis.requests(slot=2, command=18)[-1].payload
    assert payload[:5] == bytes([configured["channel"], configured["id"], 0, 0, 0])
    assert payload[133:136] == b"cpe"
    assert payload[389:397] == len(image).to_bytes(4, "little") + zlib.crc32(image).to_bytes(4, "little")
    state = system.chassis.ask("state-get", slot=2, item="ont-firmware", serial=configured["serial"])
    assert (state["updates"], state["file"]) == (1, "a.img")
    with pytest.raises(snmp.SnmpError) as busy:
        client.set((f"{OMCI}.4.0", UNSIGNED, 1))
    assert busy.value.reason == "resourceUnavailable"
    client.set((f"{OMCI}.3.0", OCTETS, "../../../../etc/passwd"))
    with pytest.raises(snmp.SnmpError) as refused:
        client.set((f"{OMCI}.4.0", UNSIGNED, 1))
    assert refused.value.reason == "genError"


def configured_ont(system, slot):
    """The first ONT, which the card's configuration image must know, too."""
    return first_ont(system, slot)
